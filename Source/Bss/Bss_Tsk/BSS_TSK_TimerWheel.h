// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Timers in the order in which they are due, those that are due at once in the order in which they were put
// in.
//
// A clock face with eight hands: timers that are due within the current 256 ms have a slot for each
// millisecond; those that are further away lie, by the highest byte in which their due time differs from the
// time of the wheel, in one of 256 slots for that byte. When the wheel's time comes to the beginning of such
// a slot, its timers are dealt out one level lower, in their order. Putting in and taking out cost the same
// however many timers there are.
//
// Since a timer always lies by the wheel's own time, which passes no slot before that has been dealt out, two
// timers that are due at once never lie on different levels for longer than that. Belongs to one thread at a
// time.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_TimerRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace BSS::TSK::Timer {

class TimerWheelC
{
public:
    static constexpr std::uint64_t NEVER = UINT64_MAX;

    /// Empty, at this time.
    void reset(std::uint64_t now) noexcept;

    /// A timer that is due in the past is due now.
    void insert(TimerRecordT& timer) noexcept;

    /// The timer must be in.
    void remove(TimerRecordT& timer) noexcept;

    /// The first timer that is due at this time or was before; null if there is none. Times never decrease.
    TimerRecordT* head(std::uint64_t now) noexcept;

    /// When head should be asked again: not later than the first timer is due. NEVER if there is none.
    std::uint64_t nextTime() const noexcept;

    bool isEmpty() const noexcept { return m_nTimers == 0; }

private:
    static constexpr std::size_t LEVELS = 8;
    static constexpr std::size_t SLOTS = 256;
    static constexpr unsigned LEVEL_BITS = 8;

    struct SlotT
    {
        TimerRecordT* first = nullptr;
        TimerRecordT* last = nullptr;
    };

    struct NextT
    {
        std::uint64_t time;
        std::size_t level;
        std::size_t slot;
    };

    bool FindNext(NextT& next) const noexcept;
    std::size_t FirstUsed(std::size_t level, std::size_t from) const noexcept;
    void DealOut(std::size_t level, std::size_t slot) noexcept;

    std::array<std::array<SlotT, SLOTS>, LEVELS> m_slots = {};
    std::array<std::array<std::uint64_t, SLOTS / 64>, LEVELS> m_used = {}; ///< one bit for each slot
    std::uint64_t m_time = 0;
    std::size_t m_nTimers = 0;
};

} // namespace BSS::TSK::Timer
