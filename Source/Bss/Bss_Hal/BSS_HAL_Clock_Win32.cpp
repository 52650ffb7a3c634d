// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

CalendarTime FieldsOf(const SYSTEMTIME& time) noexcept
{
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds};
}

// From 1601, in steps of 100 nanoseconds, to 1970.
constexpr std::int64_t EPOCH_STEPS = 116444736000000000;
constexpr std::int64_t STEPS_PER_SECOND = 10000000;

SYSTEMTIME SystemTimeOf(std::int64_t seconds) noexcept
{
    const std::int64_t steps = EPOCH_STEPS + seconds * STEPS_PER_SECOND;
    const FILETIME time = {static_cast<DWORD>(steps & 0xFFFFFFFF), static_cast<DWORD>(steps >> 32)};
    SYSTEMTIME fields = {};
    FileTimeToSystemTime(&time, &fields);
    return fields;
}

} // namespace

WallTime WallTimeNow() noexcept
{
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    const auto count = (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    const std::int64_t steps = static_cast<std::int64_t>(count) - EPOCH_STEPS;
    return {steps / STEPS_PER_SECOND, static_cast<int>(steps % STEPS_PER_SECOND / 10000)};
}

CalendarTime LocalTimeOf(std::int64_t seconds) noexcept
{
    const SYSTEMTIME utc = SystemTimeOf(seconds);
    SYSTEMTIME local = {};
    return FieldsOf(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) ? local : utc);
}

CalendarTime UtcTimeOf(std::int64_t seconds) noexcept
{
    return FieldsOf(SystemTimeOf(seconds));
}

CalendarTime LocalTimeNow() noexcept
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return FieldsOf(now);
}

CalendarTime UtcTimeNow() noexcept
{
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    return FieldsOf(now);
}

} // namespace BSS::HAL
