// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The wall clock, broken down into calendar fields. Safe from any thread.
#pragma once

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

} // namespace BSS::HAL
