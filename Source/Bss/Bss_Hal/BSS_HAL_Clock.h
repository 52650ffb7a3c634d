// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The wall clock, broken down into calendar fields, and a clock that only counts. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

struct CalendarTime
{
    int year = 1970;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

/// Now, in the process's time zone.
CalendarTime LocalTimeNow() noexcept;

/// Now, in UTC.
CalendarTime UtcTimeNow() noexcept;

/// The wall clock as a count.
struct WallTime
{
    std::int64_t seconds = 0; ///< since 1970 in UTC
    int millisecond = 0;
};

WallTime WallTimeNow() noexcept;

/// A count of seconds in the process's time zone and in UTC; the millisecond is 0.
CalendarTime LocalTimeOf(std::int64_t seconds) noexcept;
CalendarTime UtcTimeOf(std::int64_t seconds) noexcept;

} // namespace BSS::HAL
