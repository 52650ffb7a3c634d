// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimerWheel.h"

#include <algorithm>
#include <bit>

namespace BSS::TSK::Timer {

void TimerWheelC::reset(std::uint64_t now) noexcept
{
    m_slots = {};
    m_used = {};
    m_time = now;
    m_nTimers = 0;
}

void TimerWheelC::insert(TimerRecordT& timer) noexcept
{
    const std::uint64_t due = std::max(timer.dueTime, m_time);
    const std::uint64_t different = due ^ m_time;
    const std::size_t level =
        different == 0 ? 0 : static_cast<std::size_t>(63 - std::countl_zero(different)) / LEVEL_BITS;
    const std::size_t slot = (due >> (level * LEVEL_BITS)) % SLOTS;
    SlotT& list = m_slots[level][slot];
    timer.place = static_cast<std::uint16_t>(level * SLOTS + slot);
    timer.next = nullptr;
    timer.previous = list.last;
    (list.last != nullptr ? list.last->next : list.first) = &timer;
    list.last = &timer;
    m_used[level][slot / 64] |= std::uint64_t{1} << slot % 64;
    ++m_nTimers;
}

void TimerWheelC::remove(TimerRecordT& timer) noexcept
{
    const std::size_t level = timer.place / SLOTS;
    const std::size_t slot = timer.place % SLOTS;
    SlotT& list = m_slots[level][slot];
    (timer.previous != nullptr ? timer.previous->next : list.first) = timer.next;
    (timer.next != nullptr ? timer.next->previous : list.last) = timer.previous;
    timer.next = nullptr;
    timer.previous = nullptr;
    if (list.first == nullptr) m_used[level][slot / 64] &= ~(std::uint64_t{1} << slot % 64);
    --m_nTimers;
}

TimerRecordT* TimerWheelC::head(std::uint64_t now) noexcept
{
    NextT next = {};
    while (FindNext(next) && next.time <= now) {
        m_time = std::max(m_time, next.time);
        if (next.level == 0) return m_slots[0][next.slot].first;
        DealOut(next.level, next.slot);
    }
    m_time = std::max(m_time, now); // no slot begins between
    return nullptr;
}

std::uint64_t TimerWheelC::nextTime() const noexcept
{
    NextT next = {};
    return FindNext(next) ? next.time : NEVER;
}

// The lowest level that is used holds what comes first: every slot of a level begins after the whole of the
// level below it.
bool TimerWheelC::FindNext(NextT& next) const noexcept
{
    if (m_nTimers == 0) return false;
    for (std::size_t level = 0; level < LEVELS; ++level) {
        const std::size_t shift = level * LEVEL_BITS;
        const std::size_t slot = FirstUsed(level, (m_time >> shift) % SLOTS);
        if (slot == SLOTS) continue;
        const std::uint64_t above =
            level + 1 == LEVELS ? 0 : m_time >> (shift + LEVEL_BITS) << (shift + LEVEL_BITS);
        next = {above | static_cast<std::uint64_t>(slot) << shift, level, slot};
        return true;
    }
    return false;
}

std::size_t TimerWheelC::FirstUsed(std::size_t level, std::size_t from) const noexcept
{
    std::uint64_t mask = ~std::uint64_t{0} << from % 64;
    for (std::size_t word = from / 64; word < SLOTS / 64; ++word) {
        const std::uint64_t used = m_used[level][word] & mask;
        if (used != 0) return word * 64 + static_cast<std::size_t>(std::countr_zero(used));
        mask = ~std::uint64_t{0};
    }
    return SLOTS;
}

void TimerWheelC::DealOut(std::size_t level, std::size_t slot) noexcept
{
    TimerRecordT* timer = m_slots[level][slot].first;
    m_slots[level][slot] = {};
    m_used[level][slot / 64] &= ~(std::uint64_t{1} << slot % 64);
    while (timer != nullptr) {
        TimerRecordT* const next = timer->next;
        --m_nTimers;
        insert(*timer);
        timer = next;
    }
}

} // namespace BSS::TSK::Timer
