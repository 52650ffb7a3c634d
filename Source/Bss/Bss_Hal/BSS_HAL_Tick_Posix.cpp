// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <ctime>

namespace BSS::HAL {

std::uint32_t TickCount32() noexcept
{
    return static_cast<std::uint32_t>(TickCount64());
}

std::uint64_t TickCount64() noexcept
{
    return static_cast<std::uint64_t>(TickMicroseconds() / 1000);
}

std::int64_t TickMicroseconds() noexcept
{
    std::timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now); // cannot fail with a clock that exists
    return static_cast<std::int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

} // namespace BSS::HAL
