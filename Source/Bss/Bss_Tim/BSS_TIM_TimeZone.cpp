// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tim/BSS_TIM_TimeZone.h"

#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <algorithm>
#include <chrono>

namespace BSS::TIM {

namespace {

using MsT = std::chrono::milliseconds;
using TimeT = std::chrono::sys_time<MsT>; // of either clock

constexpr std::int64_t MS_OF_MINUTE = 60000;
constexpr std::int64_t MS_OF_DAY = 24 * 60 * MS_OF_MINUTE;
constexpr std::int64_t FIRST_MS = 0;
constexpr std::int64_t LAST_MS = 253402300799999; // of the year 9999

// Wraps where the numbers end, far outside of any calendar.
std::int64_t Sum(std::int64_t left, std::int64_t right) noexcept
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
}

bool IsInRange(std::int64_t utcMs) noexcept
{
    return utcMs >= FIRST_MS && utcMs <= LAST_MS;
}

std::int64_t CountOf(TimeT time) noexcept
{
    return time.time_since_epoch().count();
}

std::int64_t SystemOffsetMs(std::int64_t utcMs) noexcept
{
    using namespace std::chrono;
    const std::int64_t seconds =
        floor<std::chrono::seconds>(MsT(std::clamp(utcMs, FIRST_MS, LAST_MS))).count();
    const HAL::CalendarTime local = HAL::LocalTimeOf(seconds);
    const sys_days date = year(local.year) / local.month / local.day;
    const auto time = date + hours(local.hour) + minutes(local.minute) + std::chrono::seconds(local.second);
    return (time.time_since_epoch().count() - seconds) * 1000;
}

// By the clock as it goes until then.
std::int64_t BeginMs(const ZoneRuleT& rule, std::chrono::year year) noexcept
{
    using namespace std::chrono;
    const year_month inMonth = year / month(rule.month);
    const weekday day(rule.dayOfWeek);
    const sys_days date = rule.week == 5 ? sys_days(inMonth / day[last]) : sys_days(inMonth / day[rule.week]);
    return CountOf(date + minutes(rule.minute));
}

bool IsDaylightTime(const TimeZoneRecordT& record, std::int64_t utcMs) noexcept
{
    if (!record.hasDaylightTime() || !IsInRange(utcMs)) return false;
    const std::int64_t standardMs = (record.biasMinutes + record.standardBiasMinutes) * MS_OF_MINUTE;
    const std::int64_t daylightMs = (record.biasMinutes + record.daylightBiasMinutes) * MS_OF_MINUTE;
    // By standard time; no rule is so near to the turn of a year that it matters.
    const auto day = std::chrono::floor<std::chrono::days>(TimeT(MsT(utcMs - standardMs)));
    const std::chrono::year year = std::chrono::year_month_day(day).year();
    const std::int64_t begin = BeginMs(record.daylight, year) + standardMs;
    const std::int64_t end = BeginMs(record.standard, year) + daylightMs;
    if (begin < end) return utcMs >= begin && utcMs < end;
    return utcMs >= begin || utcMs < end; // it lasts over the turn of the year
}

} // namespace

std::int64_t TimeZoneC::offsetMsAt(std::int64_t utcMs) const noexcept
{
    if (!m_record) return SystemOffsetMs(utcMs);
    const bool bDaylight = IsDaylightTime(*m_record, utcMs);
    const std::int64_t added = bDaylight ? m_record->daylightBiasMinutes : m_record->standardBiasMinutes;
    return -(m_record->biasMinutes + added) * MS_OF_MINUTE;
}

std::int64_t TimeZoneC::localOfUtc(std::int64_t utcMs) const noexcept
{
    return Sum(utcMs, offsetMsAt(utcMs));
}

// A local time stands for the moments that it is shown at: those with the offset from before or after a
// change.
std::int64_t TimeZoneC::utcOfLocal(std::int64_t localMs, LocalTimeKind* pKind) const noexcept
{
    const std::int64_t before = Sum(localMs, -offsetMsAt(Sum(localMs, -MS_OF_DAY)));
    const std::int64_t after = Sum(localMs, -offsetMsAt(Sum(localMs, MS_OF_DAY)));
    const bool bBefore = localOfUtc(before) == localMs;
    const bool bAfter = localOfUtc(after) == localMs;
    LocalTimeKind kind = LocalTimeKind::Unique;
    if (bBefore && bAfter && before != after) kind = LocalTimeKind::Twice;
    if (!bBefore && !bAfter) kind = LocalTimeKind::Skipped;
    if (pKind != nullptr) *pKind = kind;
    return bBefore || !bAfter ? before : after;
}

ResultCodeT ReadLocalZone(const OS::ConfigStoreI& store, TimeZoneC& zone)
{
    TimeZoneRecordT record;
    const ResultCodeT rc = ReadTimeZone(store, L"Local", record);
    zone = rc == RC_OK ? TimeZoneC(record) : TimeZoneC();
    return rc;
}

} // namespace BSS::TIM
