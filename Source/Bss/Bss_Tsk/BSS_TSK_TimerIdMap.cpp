// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimerIdMap.h"

#include <algorithm>
#include <utility>

namespace BSS::TSK::Timer {

namespace {

constexpr unsigned FIRST_BITS = 8;
constexpr unsigned GROUP_BITS = 2;           // so many neighbours stay together, in one cache line
constexpr std::uint32_t SPREAD = 0x9E3779B1; // 2^32 by the golden ratio: neighbouring groups end up far apart

} // namespace

TimerIdMapC::TimerIdMapC()
    : m_entries(std::size_t{1} << FIRST_BITS), m_homeShift(32 - FIRST_BITS + GROUP_BITS)
{}

std::size_t TimerIdMapC::Home(std::uint32_t id) const noexcept
{
    const std::uint32_t home = (id >> GROUP_BITS) * SPREAD >> m_homeShift;
    return home << GROUP_BITS | (id & ((1u << GROUP_BITS) - 1));
}

// Where the id is, or where it would be put.
std::size_t TimerIdMapC::PlaceOf(std::uint32_t id) const noexcept
{
    std::size_t place = Home(id);
    while (m_entries[place].id != 0 && m_entries[place].id != id)
        place = (place + 1) & (m_entries.size() - 1);
    return place;
}

TimerRecordT* TimerIdMapC::find(std::uint32_t id) const noexcept
{
    return id != 0 ? m_entries[PlaceOf(id)].timer : nullptr;
}

void TimerIdMapC::insert(std::uint32_t id, TimerRecordT& timer)
{
    if ((m_nUsed + 1) * 2 > m_entries.size()) Grow();
    m_entries[PlaceOf(id)] = {id, &timer};
    ++m_nUsed;
}

bool TimerIdMapC::erase(std::uint32_t id) noexcept
{
    if (id == 0) return false;
    std::size_t gap = PlaceOf(id);
    if (m_entries[gap].id == 0) return false;
    const std::size_t mask = m_entries.size() - 1;
    // Whatever stands behind the gap and could not be found across it moves into it.
    for (std::size_t place = (gap + 1) & mask; m_entries[place].id != 0; place = (place + 1) & mask) {
        const std::size_t home = Home(m_entries[place].id);
        if (((place - home) & mask) < ((place - gap) & mask)) continue;
        m_entries[gap] = m_entries[place];
        gap = place;
    }
    m_entries[gap] = {};
    --m_nUsed;
    return true;
}

void TimerIdMapC::clear() noexcept
{
    for (EntryT& entry : m_entries)
        entry = {};
    m_nUsed = 0;
}

std::size_t TimerIdMapC::getLongestRun() const noexcept
{
    std::size_t longest = 0;
    std::size_t run = 0;
    for (std::size_t i = 0; i < 2 * m_entries.size(); ++i) { // twice, for a run across the end
        run = m_entries[i % m_entries.size()].id != 0 ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

void TimerIdMapC::Grow()
{
    std::vector<EntryT> larger(m_entries.size() * 2);
    m_entries.swap(larger);
    --m_homeShift;
    for (const EntryT& entry : larger)
        if (entry.id != 0) m_entries[PlaceOf(entry.id)] = entry;
}

} // namespace BSS::TSK::Timer
