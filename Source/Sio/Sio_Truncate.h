// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How doubles become integers in scan data: truncation toward zero, then the low bits. Out-of-range values
// wrap, they are never clamped or rounded. Values that the intermediate integer cannot hold (NaN, infinities,
// too large) become its smallest value on every platform; that is what the x86-64 conversion instructions
// give, while C++ leaves it undefined.
#pragma once

#include <cstdint>
#include <limits>

namespace SIO {

/// Truncates through a signed 64-bit integer.
inline std::int64_t TruncateToInt64(double value) noexcept
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (value >= -limit && value < limit) return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

/// Truncates through a signed 32-bit integer.
inline std::int32_t TruncateToInt32(double value) noexcept
{
    constexpr double limit = 2147483648.0; // 2^31
    if (value > -limit - 1.0 && value < limit) return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/// Truncates through 64 bits and keeps the low bits that T has room for.
template<typename T>
T TruncateToLowBits(double value) noexcept
{
    return static_cast<T>(static_cast<std::uint64_t>(TruncateToInt64(value)));
}

} // namespace SIO
