// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <ctime>

namespace BSS::HAL {

namespace {

CalendarTime Now(std::tm* (*breakDown)(const std::time_t*, std::tm*)) noexcept
{
    std::timespec now = {};
    std::tm fields = {};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0 || breakDown(&now.tv_sec, &fields) == nullptr) return {};
    return {fields.tm_year + 1900,
            fields.tm_mon + 1,
            fields.tm_mday,
            fields.tm_hour,
            fields.tm_min,
            fields.tm_sec,
            static_cast<int>(now.tv_nsec / 1'000'000)};
}

} // namespace

CalendarTime LocalTimeNow() noexcept
{
    return Now(&::localtime_r);
}

CalendarTime UtcTimeNow() noexcept
{
    return Now(&::gmtime_r);
}

} // namespace BSS::HAL
