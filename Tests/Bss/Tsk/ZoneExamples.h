// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Zones of both halves of the earth, as records and as the system is told of them, and a store in memory.
#pragma once

#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Tim/BSS_TIM_TimeZone.h"

#include <map>

namespace Zones {

/// One hour ahead; daylight saving time from the last Sunday of March, 2 h, to the last of October, 3 h.
inline constexpr BSS::TIM::TimeZoneRecordT CENTRAL_EUROPE = {-60, 0, -60, {10, 0, 5, 180}, {3, 0, 5, 120}};
inline constexpr char CENTRAL_EUROPE_TZ[] = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Five hours behind; from the second Sunday of March to the first of November, both 2 h.
inline constexpr BSS::TIM::TimeZoneRecordT EASTERN_AMERICA = {300, 0, -60, {11, 0, 1, 120}, {3, 0, 2, 120}};
inline constexpr char EASTERN_AMERICA_TZ[] = "EST5EDT,M3.2.0,M11.1.0";

/// Ten and a half hours ahead, half an hour more over the turn of the year: from the first Sunday of October,
/// 2 h, to the first of April, 2 h.
inline constexpr BSS::TIM::TimeZoneRecordT LORD_HOWE = {-630, 0, -30, {4, 0, 1, 120}, {10, 0, 1, 120}};
inline constexpr char LORD_HOWE_TZ[] = "LST-10:30LDT-11,M10.1.0,M4.1.0";

class MemoryStoreC final : public BSS::OS::ConfigStoreI
{
public:
    BSS::ResultCodeT Read(const std::wstring& key, const std::wstring& name,
                          std::uint32_t& value) const override
    {
        const auto found = values.find(key + L"/" + name);
        if (found == values.end()) return BSS::RC_FAILED;
        value = found->second;
        return BSS::RC_OK;
    }
    BSS::ResultCodeT Write(const std::wstring& key, const std::wstring& name, std::uint32_t value) override
    {
        if (nWritesLeft-- == 0) return BSS::RC_FAILED;
        values[key + L"/" + name] = value;
        return BSS::RC_OK;
    }

    std::map<std::wstring, std::uint32_t> values;
    int nWritesLeft = -1;
};

} // namespace Zones
