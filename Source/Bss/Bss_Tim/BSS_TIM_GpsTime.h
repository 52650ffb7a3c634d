// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// GPS time: weeks since 6 January 1980 and milliseconds within the week, without leap seconds. Plain values
// and arithmetic; knows no clock.
#pragma once

#include <compare>
#include <cstdint>

namespace BSS::TIM {

inline constexpr std::int64_t MS_PER_WEEK = 604800000;

/// From the beginning of 1970 in UTC to that of GPS time, when the two differed by no leap second.
inline constexpr std::int64_t GPS_EPOCH_UNIX_MS = 315964800000;

struct GpsTimeT
{
    std::uint32_t week = 0;
    std::uint32_t milliseconds = 0; ///< 0 to MS_PER_WEEK - 1

    friend auto operator<=>(const GpsTimeT&, const GpsTimeT&) = default;
};

/// Milliseconds since the beginning of GPS time.
constexpr std::int64_t GpsMilliseconds(const GpsTimeT& time) noexcept
{
    return static_cast<std::int64_t>(time.week) * MS_PER_WEEK + time.milliseconds;
}

/// What lies before the beginning is the beginning.
constexpr GpsTimeT GpsTimeOf(std::int64_t milliseconds) noexcept
{
    if (milliseconds < 0) return {};
    return {static_cast<std::uint32_t>(milliseconds / MS_PER_WEEK),
            static_cast<std::uint32_t>(milliseconds % MS_PER_WEEK)};
}

/// UTC, counted in milliseconds since 1970 as the system does, and GPS time. `leapSeconds` is how far GPS
/// time is ahead of UTC.
constexpr GpsTimeT GpsTimeOfUtc(std::int64_t unixMs, int leapSeconds) noexcept
{
    return GpsTimeOf(unixMs - GPS_EPOCH_UNIX_MS + static_cast<std::int64_t>(leapSeconds) * 1000);
}

constexpr std::int64_t UtcOfGpsTime(const GpsTimeT& time, int leapSeconds) noexcept
{
    return GpsMilliseconds(time) + GPS_EPOCH_UNIX_MS - static_cast<std::int64_t>(leapSeconds) * 1000;
}

} // namespace BSS::TIM
