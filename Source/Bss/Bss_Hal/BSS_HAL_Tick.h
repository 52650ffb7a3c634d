// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Clocks that only count up, in milliseconds from a moment of the system's own choosing. Setting the wall
// clock does not move them. While the computer is asleep they go on under Windows and stand still under
// Linux, where no wait ends by a clock that goes on. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

/// Wraps to 0 after 49.7 days.
std::uint32_t TickCount32() noexcept;

/// Does not wrap. Its low 32 bits are TickCount32.
std::uint64_t TickCount64() noexcept;

/// Goes on with a 64-bit clock, whose low half is the counter, by what a counter of 32 bits now says. It must
/// not have come round more than once since.
constexpr std::uint64_t ExtendTick(std::uint64_t extended, std::uint32_t tick) noexcept
{
    return extended + static_cast<std::uint32_t>(tick - static_cast<std::uint32_t>(extended));
}

/// The same clock in microseconds.
std::int64_t TickMicroseconds() noexcept;

} // namespace BSS::HAL
