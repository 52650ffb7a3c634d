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

} // namespace

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
