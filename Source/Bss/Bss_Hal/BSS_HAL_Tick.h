// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Clocks that only count up, in milliseconds from a moment of the system's own choosing. Setting the wall
// clock does not move them. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

/// Wraps to 0 after 49.7 days.
std::uint32_t TickCount32() noexcept;

/// Does not wrap. Its low 32 bits are TickCount32.
std::uint64_t TickCount64() noexcept;

/// The same clock in microseconds.
std::int64_t TickMicroseconds() noexcept;

} // namespace BSS::HAL
