// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The wall clock beside the system's own.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>

using namespace BSS::HAL;

namespace {

std::int64_t SystemMilliseconds()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::floor<std::chrono::milliseconds>(now).count();
}

// Long enough for the millisecond to change some twenty times.
TEST(Clock, WallTimeIsNeverAnotherMillisecondThanTheSystems)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
    std::uint64_t early = 0;
    std::uint64_t late = 0;
    do {
        const std::int64_t before = SystemMilliseconds();
        const WallTime now = WallTimeNow();
        const std::int64_t after = SystemMilliseconds();
        const std::int64_t count = now.seconds * 1000 + now.millisecond;
        early += count < before ? 1 : 0;
        late += count > after ? 1 : 0;
    } while (std::chrono::steady_clock::now() < end);
    EXPECT_EQ(early, 0u);
    EXPECT_EQ(late, 0u);
}

} // namespace
