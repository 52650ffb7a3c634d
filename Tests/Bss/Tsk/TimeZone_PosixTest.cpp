// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Our rules against those of the C library, which is told the same ones.
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "ZoneExamples.h"

#include <ctime>
#include <gtest/gtest.h>

using namespace BSS;
using namespace BSS::TIM;
using namespace Zones;

namespace {

class SystemZoneC
{
public:
    explicit SystemZoneC(const char* zone) : m_environment("TZ", zone) { ::tzset(); }

private:
    struct ReadAgainC
    {
        ~ReadAgainC() { ::tzset(); }
    };
    const ReadAgainC m_after; // after the environment has been put back
    const Support::ScopedEnvironment m_environment;
};

struct ExampleT
{
    const char* pSystem;
    TimeZoneRecordT record;
};

class TimeZonePosix : public testing::TestWithParam<ExampleT>
{};

TEST_P(TimeZonePosix, ZoneOfTheStoreAgreesWithTheSystemsOfTheSameRules)
{
    const SystemZoneC system(GetParam().pSystem);
    const TimeZoneC ours(GetParam().record);
    const TimeZoneC theirs;
    constexpr std::int64_t STEP = 30 * 60000;
    constexpr std::int64_t BEGIN = 946684800000; // 2000
    constexpr std::int64_t END = 1893456000000;  // 2030
    for (std::int64_t utc = BEGIN; utc < END; utc += STEP)
        ASSERT_EQ(ours.offsetMsAt(utc), theirs.offsetMsAt(utc)) << utc;
}

INSTANTIATE_TEST_SUITE_P(Several, TimeZonePosix,
                         testing::Values(ExampleT{CENTRAL_EUROPE_TZ, CENTRAL_EUROPE},
                                         ExampleT{EASTERN_AMERICA_TZ, EASTERN_AMERICA},
                                         ExampleT{LORD_HOWE_TZ, LORD_HOWE}));

TEST(TimeZoneFile, DefinitionInTheStoresFileIsRead)
{
    const Support::TemporaryDirectory directory;
    const Support::ScopedEnvironment environment("SCANREADER_CONFIG_DIR", directory.Narrow(""));
    Support::WriteAll(directory.Narrow("scanreader.conf"), "[TimeZones\\Local]\nBias = 4294966951\n");
    TimeZoneC zone;
    ASSERT_EQ(ReadLocalZone(OS::PlatformConfigStore(), zone), RC_OK);
    EXPECT_EQ(zone.offsetMsAt(0), 345 * 60000);
}

TEST(TimeZoneFile, DefinitionIsWrittenToTheStoresFileAndReadAgain)
{
    const Support::TemporaryDirectory directory;
    const Support::ScopedEnvironment environment("SCANREADER_CONFIG_DIR", directory.Narrow(""));
    ASSERT_EQ(WriteTimeZone(OS::PlatformConfigStore(), L"Local", LORD_HOWE), RC_OK);
    TimeZoneRecordT record;
    EXPECT_EQ(ReadTimeZone(OS::PlatformConfigStore(), L"Local", record), RC_OK);
    EXPECT_EQ(record, LORD_HOWE);
}

} // namespace
