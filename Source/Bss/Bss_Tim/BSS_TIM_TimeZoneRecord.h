// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A time zone as the configuration store defines it: how far it is from UTC, and from when to when it has
// daylight saving time. The same rules hold for every year. Safe from any thread.
//
// The definition of the zone <name> lies under the key "TimeZones\<name>" as these 32-bit values, those of
// minutes signed:
//   Bias                 minutes from local time to UTC: -60 is one hour ahead of UTC
//   StandardBias         what is added to Bias in standard time, mostly 0
//   DaylightBias         what is added to Bias in daylight saving time, mostly -60
//   <X>Month             1 to 12, when <X>, which is Standard or Daylight, begins; both 0: never changed
//   <X>DayOfWeek         0 is Sunday
//   <X>Week              which such day of the month: 1 to 4, 5 the last
//   <X>Minute            of that day, 0 to 1439, by the clock as it went until then
// Bias alone is a zone without daylight saving time; with any of the others all must be there.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>
#include <string>

namespace BSS::OS {
class ConfigStoreI;
} // namespace BSS::OS

namespace BSS::TIM {

/// The moment of each year at which a kind of time begins.
struct ZoneRuleT
{
    std::uint32_t month = 0;
    std::uint32_t dayOfWeek = 0;
    std::uint32_t week = 0;
    std::uint32_t minute = 0;

    bool operator==(const ZoneRuleT&) const = default;
};

struct TimeZoneRecordT
{
    std::int32_t biasMinutes = 0;
    std::int32_t standardBiasMinutes = 0;
    std::int32_t daylightBiasMinutes = 0;
    ZoneRuleT standard = {};
    ZoneRuleT daylight = {};

    bool hasDaylightTime() const noexcept { return daylight.month != 0; }

    /// RC_VALUE_REJECTED for what cannot be: more than 14 hours from UTC, a rule out of range, one rule
    /// without the other, both in one month.
    ResultCodeT check() const noexcept;

    bool operator==(const TimeZoneRecordT&) const = default;
};

/// RC_NOT_FOUND when there is no such definition, RC_VALUE_REJECTED for one that is incomplete or cannot be;
/// `record` is unchanged then. The name holds no backslash and is not empty: RC_INVALID_ARGUMENT.
[[nodiscard]] ResultCodeT ReadTimeZone(const OS::ConfigStoreI& store, const std::wstring& name,
                                       TimeZoneRecordT& record);

/// RC_INVALID_ARGUMENT and RC_VALUE_REJECTED as above, with nothing written; RC_FAILED when the store
/// refuses, which may leave a part written.
[[nodiscard]] ResultCodeT WriteTimeZone(OS::ConfigStoreI& store, const std::wstring& name,
                                        const TimeZoneRecordT& record);

} // namespace BSS::TIM
