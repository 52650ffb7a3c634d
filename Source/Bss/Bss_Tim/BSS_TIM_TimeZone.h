// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The time zone that the configuration store names: how many minutes local time is ahead of UTC. Safe from
// any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>

namespace BSS::OS {
class ConfigStoreI;
} // namespace BSS::OS

namespace BSS::TIM {

inline constexpr std::int32_t MAX_ZONE_MINUTES = 14 * 60;

/// "TimeZoneMinutes" under "Configuration", a signed number in 32 bits; 0, which is UTC, when it is not there
/// or out of range.
std::int32_t ReadTimeZoneMinutes(const OS::ConfigStoreI& store);

/// RC_VALUE_REJECTED for more than 14 hours either way, RC_FAILED when the store refuses.
[[nodiscard]] ResultCodeT WriteTimeZoneMinutes(OS::ConfigStoreI& store, std::int32_t minutes);

/// UTC as local time, both in milliseconds since 1970.
constexpr std::int64_t LocalOfUtc(std::int64_t unixMs, std::int32_t zoneMinutes) noexcept
{
    return unixMs + static_cast<std::int64_t>(zoneMinutes) * 60000;
}

} // namespace BSS::TIM
