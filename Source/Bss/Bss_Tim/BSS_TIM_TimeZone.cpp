// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tim/BSS_TIM_TimeZone.h"

#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

namespace BSS::TIM {

namespace {

constexpr wchar_t KEY[] = L"Configuration";
constexpr wchar_t TIME_ZONE_MINUTES[] = L"TimeZoneMinutes";

bool IsZone(std::int32_t minutes) noexcept
{
    return minutes >= -MAX_ZONE_MINUTES && minutes <= MAX_ZONE_MINUTES;
}

} // namespace

std::int32_t ReadTimeZoneMinutes(const OS::ConfigStoreI& store)
{
    std::uint32_t value = 0;
    if (store.Read(KEY, TIME_ZONE_MINUTES, value) != RC_OK) return 0;
    const auto minutes = static_cast<std::int32_t>(value);
    return IsZone(minutes) ? minutes : 0;
}

ResultCodeT WriteTimeZoneMinutes(OS::ConfigStoreI& store, std::int32_t minutes)
{
    if (!IsZone(minutes)) return RC_VALUE_REJECTED;
    return store.Write(KEY, TIME_ZONE_MINUTES, static_cast<std::uint32_t>(minutes));
}

} // namespace BSS::TIM
