// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The same rows serve for reading and for writing.
#include "Bss/Bss_Tim/BSS_TIM_TimeZoneRecord.h"

#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

#include <array>
#include <cstddef>

namespace BSS::TIM {

namespace {

constexpr std::int32_t MAX_MINUTES_FROM_UTC = 14 * 60;
constexpr std::uint32_t MINUTES_OF_DAY = 24 * 60;
constexpr std::size_t VALUE_COUNT = 11;

using ValuesT = std::array<std::uint32_t, VALUE_COUNT>;

constexpr std::array<const wchar_t*, VALUE_COUNT> NAMES = {
    L"Bias",          L"StandardBias",   L"DaylightBias",  L"StandardMonth",     L"StandardDayOfWeek",
    L"StandardWeek",  L"StandardMinute", L"DaylightMonth", L"DaylightDayOfWeek", L"DaylightWeek",
    L"DaylightMinute"};

ValuesT ValuesOf(const TimeZoneRecordT& record) noexcept
{
    const auto bits = [](std::int32_t minutes) { return static_cast<std::uint32_t>(minutes); };
    const ZoneRuleT& s = record.standard;
    const ZoneRuleT& d = record.daylight;
    return {bits(record.biasMinutes),
            bits(record.standardBiasMinutes),
            bits(record.daylightBiasMinutes),
            s.month,
            s.dayOfWeek,
            s.week,
            s.minute,
            d.month,
            d.dayOfWeek,
            d.week,
            d.minute};
}

TimeZoneRecordT RecordOf(const ValuesT& values) noexcept
{
    const auto minutes = [](std::uint32_t bits) { return static_cast<std::int32_t>(bits); };
    return {minutes(values[0]),
            minutes(values[1]),
            minutes(values[2]),
            {values[3], values[4], values[5], values[6]},
            {values[7], values[8], values[9], values[10]}};
}

// In 64 bits: what a store holds may be any number.
bool IsNearUtc(std::int64_t minutes) noexcept
{
    return minutes >= -MAX_MINUTES_FROM_UTC && minutes <= MAX_MINUTES_FROM_UTC;
}

bool IsRule(const ZoneRuleT& rule) noexcept
{
    return rule.month >= 1 && rule.month <= 12 && rule.dayOfWeek <= 6 && rule.week >= 1 && rule.week <= 5 &&
           rule.minute < MINUTES_OF_DAY;
}

bool IsName(const std::wstring& name)
{
    return !name.empty() && name.find(L'\\') == std::wstring::npos;
}

std::wstring KeyOf(const std::wstring& name)
{
    return LR"(TimeZones\)" + name;
}

} // namespace

ResultCodeT TimeZoneRecordT::check() const noexcept
{
    const std::int64_t bias = biasMinutes;
    if (!IsNearUtc(bias) || !IsNearUtc(bias + standardBiasMinutes) || !IsNearUtc(bias + daylightBiasMinutes))
        return RC_VALUE_REJECTED;
    if (standard.month == 0 && daylight.month == 0) return RC_OK;
    const bool bRules = IsRule(standard) && IsRule(daylight) && standard.month != daylight.month;
    return bRules ? RC_OK : RC_VALUE_REJECTED;
}

ResultCodeT ReadTimeZone(const OS::ConfigStoreI& store, const std::wstring& name, TimeZoneRecordT& record)
{
    if (!IsName(name)) return RC_INVALID_ARGUMENT;
    ValuesT values = {};
    std::size_t nFound = 0;
    bool bBias = false;
    for (std::size_t n = 0; n < VALUE_COUNT; ++n) {
        const bool bFound = store.Read(KeyOf(name), NAMES[n], values[n]) == RC_OK;
        nFound += bFound ? 1 : 0;
        if (n == 0) bBias = bFound;
    }
    if (nFound == 0) return RC_NOT_FOUND;
    const bool bComplete = nFound == VALUE_COUNT || (bBias && nFound == 1);
    const TimeZoneRecordT found = RecordOf(values);
    if (!bComplete || found.check() != RC_OK) return RC_VALUE_REJECTED;
    record = found;
    return RC_OK;
}

ResultCodeT WriteTimeZone(OS::ConfigStoreI& store, const std::wstring& name, const TimeZoneRecordT& record)
{
    if (!IsName(name)) return RC_INVALID_ARGUMENT;
    ResultCodeT rc = record.check();
    const ValuesT values = ValuesOf(record);
    for (std::size_t n = 0; n < VALUE_COUNT && rc == RC_OK; ++n)
        rc = store.Write(KeyOf(name), NAMES[n], values[n]);
    return rc;
}

} // namespace BSS::TIM
