// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One timer of an engine. Records stay where they are made. For the sources of BSS_TSK_Timer* only.
#pragma once

#include <cstdint>

namespace BSS::TSK::Timer {

struct TimerRecordT
{
    std::uint32_t period = 0;     ///< milliseconds between firings
    std::uint32_t resolution = 0; ///< milliseconds
    std::uintptr_t target = 0;    ///< the callback, or the handle of the event
    std::uint32_t user = 0;       ///< handed to the callback
    std::uint16_t flags = 0;
    std::uint32_t uId = 0;
    std::uint64_t dueTime = 0; ///< on the engine's clock
    bool bActive = false;      ///< armed

    // The place in the wheel, and in the list of free records.
    TimerRecordT* next = nullptr;
    TimerRecordT* previous = nullptr;
    std::uint16_t place = 0;
};

} // namespace BSS::TSK::Timer
