// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <ctime>

namespace BSS::HAL {

namespace {

CalendarTime FieldsOf(std::int64_t seconds, std::tm* (*breakDown)(const std::time_t*, std::tm*)) noexcept
{
    const std::time_t count = seconds;
    std::tm fields = {};
    if (breakDown(&count, &fields) == nullptr) return {};
    return {fields.tm_year + 1900,
            fields.tm_mon + 1,
            fields.tm_mday,
            fields.tm_hour,
            fields.tm_min,
            fields.tm_sec,
            0};
}

CalendarTime WithMillisecond(CalendarTime time, int millisecond) noexcept
{
    time.millisecond = millisecond;
    return time;
}

} // namespace

WallTime WallTimeNow() noexcept
{
    std::timespec now = {};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0) return {};
    return {now.tv_sec, static_cast<int>(now.tv_nsec / 1'000'000)};
}

CalendarTime LocalTimeOf(std::int64_t seconds) noexcept
{
    return FieldsOf(seconds, &::localtime_r);
}

CalendarTime UtcTimeOf(std::int64_t seconds) noexcept
{
    return FieldsOf(seconds, &::gmtime_r);
}

CalendarTime LocalTimeNow() noexcept
{
    const WallTime now = WallTimeNow();
    return WithMillisecond(LocalTimeOf(now.seconds), now.millisecond);
}

CalendarTime UtcTimeNow() noexcept
{
    const WallTime now = WallTimeNow();
    return WithMillisecond(UtcTimeOf(now.seconds), now.millisecond);
}

} // namespace BSS::HAL
