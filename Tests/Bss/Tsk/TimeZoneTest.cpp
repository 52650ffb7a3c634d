// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Zones that the configuration store defines, and local time by them.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"
#include "ZoneExamples.h"

#include <chrono>
#include <gtest/gtest.h>
#include <limits>

using namespace BSS;
using namespace BSS::TIM;
using namespace Zones;

namespace {

std::int64_t Ms(int year, unsigned month, unsigned day, int hour = 0, int minute = 0)
{
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / month / day;
    return duration_cast<milliseconds>((date + hours(hour) + minutes(minute)).time_since_epoch()).count();
}

constexpr std::int64_t HOUR = 3600000;

class TimeZoneRecord : public testing::Test
{
protected:
    std::uint32_t& Value(const std::wstring& name) { return store.values[LR"(TimeZones\zone/)" + name]; }
    ResultCodeT Read() { return ReadTimeZone(store, L"zone", record); }

    MemoryStoreC store;
    TimeZoneRecordT record = {7, 0, 0, {}, {}};
};

TEST_F(TimeZoneRecord, ComesBackFromTheStoreAsItWas)
{
    for (const TimeZoneRecordT& zone : {CENTRAL_EUROPE, EASTERN_AMERICA, LORD_HOWE, TimeZoneRecordT{}}) {
        ASSERT_EQ(WriteTimeZone(store, L"zone", zone), RC_OK);
        EXPECT_EQ(Read(), RC_OK);
        EXPECT_EQ(record, zone);
    }
}

TEST_F(TimeZoneRecord, NoDefinitionIsNotFound)
{
    EXPECT_EQ(Read(), RC_NOT_FOUND);
    EXPECT_EQ(record.biasMinutes, 7);
}

TEST_F(TimeZoneRecord, BiasAloneIsAZoneWithoutDaylightTime)
{
    Value(L"Bias") = static_cast<std::uint32_t>(-345);
    EXPECT_EQ(Read(), RC_OK);
    EXPECT_EQ(record, (TimeZoneRecordT{-345, 0, 0, {}, {}}));
}

TEST_F(TimeZoneRecord, DefinitionThatLacksAnyValueIsRejected)
{
    ASSERT_EQ(WriteTimeZone(store, L"zone", CENTRAL_EUROPE), RC_OK);
    const auto whole = store.values;
    ASSERT_EQ(whole.size(), 11U);
    for (const auto& [name, value] : whole) {
        store.values = whole;
        store.values.erase(name);
        EXPECT_EQ(Read(), RC_VALUE_REJECTED);
        EXPECT_EQ(record.biasMinutes, 7);
    }
}

TEST_F(TimeZoneRecord, ValueOutOfRangeIsRejected)
{
    struct WrongT
    {
        const wchar_t* pName;
        std::int32_t value;
    };
    for (const auto& [pName, value] :
         {WrongT{L"Bias", 841}, WrongT{L"Bias", -841},
          WrongT{L"Bias", std::numeric_limits<std::int32_t>::min()}, WrongT{L"StandardBias", 901},
          WrongT{L"DaylightBias", std::numeric_limits<std::int32_t>::max()}, WrongT{L"StandardMonth", 13},
          WrongT{L"StandardMonth", 0}, WrongT{L"StandardMonth", 3}, WrongT{L"DaylightMonth", 0},
          WrongT{L"DaylightDayOfWeek", 7}, WrongT{L"DaylightWeek", 0}, WrongT{L"StandardWeek", 6},
          WrongT{L"StandardMinute", 1440}, WrongT{L"DaylightMinute", -1}}) {
        ASSERT_EQ(WriteTimeZone(store, L"zone", CENTRAL_EUROPE), RC_OK);
        Value(pName) = static_cast<std::uint32_t>(value);
        EXPECT_EQ(Read(), RC_VALUE_REJECTED) << value;
    }
}

TEST_F(TimeZoneRecord, NothingIsWrittenOfWhatCannotBe)
{
    EXPECT_EQ(WriteTimeZone(store, L"zone", {-841, 0, 0, {}, {}}), RC_VALUE_REJECTED);
    EXPECT_TRUE(store.values.empty());
}

TEST_F(TimeZoneRecord, RefusalOfTheStoreIsAFailure)
{
    store.nWritesLeft = 5;
    EXPECT_EQ(WriteTimeZone(store, L"zone", CENTRAL_EUROPE), RC_FAILED);
}

TEST_F(TimeZoneRecord, NameThatWouldLeadElsewhereIsRefused)
{
    EXPECT_EQ(ReadTimeZone(store, L"", record), RC_INVALID_ARGUMENT);
    EXPECT_EQ(WriteTimeZone(store, LR"(a\b)", record), RC_INVALID_ARGUMENT);
}

TEST(TimeZone, DaylightTimeBeginsAndEndsAtItsMoments)
{
    const TimeZoneC zone(CENTRAL_EUROPE);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 3, 29, 1) - 1), HOUR);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 3, 29, 1)), 2 * HOUR);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 10, 25, 1) - 1), 2 * HOUR);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 10, 25, 1)), HOUR);
    EXPECT_EQ(zone.localOfUtc(Ms(2026, 7, 1, 12)), Ms(2026, 7, 1, 14));
}

TEST(TimeZone, DaylightTimeMayLastOverTheTurnOfTheYear)
{
    const TimeZoneC zone(LORD_HOWE);
    EXPECT_EQ(zone.offsetMsAt(Ms(2025, 12, 31, 12)), 11 * HOUR);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 1, 1, 12)), 11 * HOUR);
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 7, 1)), 10 * HOUR + HOUR / 2);
}

TEST(TimeZone, EveryMomentComesBackFromItsLocalTimeButForTheSecondOfTwo)
{
    for (const TimeZoneRecordT& record : {CENTRAL_EUROPE, EASTERN_AMERICA, LORD_HOWE}) {
        const TimeZoneC zone(record);
        for (std::int64_t utc = Ms(2026, 1, 1); utc < Ms(2027, 1, 1); utc += HOUR / 4) {
            LocalTimeKind kind = LocalTimeKind::Skipped;
            const std::int64_t back = zone.utcOfLocal(zone.localOfUtc(utc), &kind);
            ASSERT_NE(kind, LocalTimeKind::Skipped);
            if (kind == LocalTimeKind::Unique) {
                ASSERT_EQ(back, utc);
            } else {
                ASSERT_TRUE(back == utc || back == utc + record.daylightBiasMinutes * 60000);
            }
        }
    }
}

TEST(TimeZone, LocalTimeThatComesTwiceIsTheFirst)
{
    LocalTimeKind kind = LocalTimeKind::Unique;
    EXPECT_EQ(TimeZoneC(CENTRAL_EUROPE).utcOfLocal(Ms(2026, 10, 25, 2, 30), &kind), Ms(2026, 10, 25, 0, 30));
    EXPECT_EQ(kind, LocalTimeKind::Twice);
}

TEST(TimeZone, LocalTimeThatIsSkippedGoesOnFromBefore)
{
    LocalTimeKind kind = LocalTimeKind::Unique;
    EXPECT_EQ(TimeZoneC(CENTRAL_EUROPE).utcOfLocal(Ms(2026, 3, 29, 2, 30), &kind), Ms(2026, 3, 29, 1, 30));
    EXPECT_EQ(kind, LocalTimeKind::Skipped);
}

TEST(TimeZone, TimesOutsideOfTheCalendarDoNoHarm)
{
    for (const TimeZoneC& zone : {TimeZoneC(), TimeZoneC(CENTRAL_EUROPE)}) {
        for (const std::int64_t ms : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                      std::numeric_limits<std::int64_t>::max()}) {
            static_cast<void>(zone.localOfUtc(ms));
            static_cast<void>(zone.utcOfLocal(ms));
        }
    }
    EXPECT_EQ(TimeZoneC(CENTRAL_EUROPE).offsetMsAt(std::numeric_limits<std::int64_t>::max()), HOUR);
}

TEST(LocalZone, IsTheOneThatTheStoreCallsLocal)
{
    MemoryStoreC store;
    TimeZoneC zone;
    ASSERT_EQ(WriteTimeZone(store, L"Local", LORD_HOWE), RC_OK);
    EXPECT_EQ(ReadLocalZone(store, zone), RC_OK);
    EXPECT_FALSE(zone.isSystems());
    EXPECT_EQ(zone.offsetMsAt(Ms(2026, 1, 1)), 11 * HOUR);
}

TEST(LocalZone, IsTheSystemsWithoutADefinition)
{
    TimeZoneC zone(LORD_HOWE);
    EXPECT_EQ(ReadLocalZone(MemoryStoreC(), zone), RC_NOT_FOUND);
    EXPECT_TRUE(zone.isSystems());
    const std::int64_t utc = Ms(2026, 7, 1, 12);
    const HAL::CalendarTime local = HAL::LocalTimeOf(utc / 1000);
    EXPECT_EQ(zone.localOfUtc(utc), Ms(local.year, static_cast<unsigned>(local.month),
                                       static_cast<unsigned>(local.day), local.hour, local.minute));
}

TEST(LocalZone, IsTheSystemsWithADefinitionThatCannotBe)
{
    MemoryStoreC store;
    ASSERT_EQ(WriteTimeZone(store, L"Local", LORD_HOWE), RC_OK);
    store.values[LR"(TimeZones\Local/Bias)"] = 5000;
    TimeZoneC zone(LORD_HOWE);
    EXPECT_EQ(ReadLocalZone(store, zone), RC_VALUE_REJECTED);
    EXPECT_TRUE(zone.isSystems());
}

} // namespace
