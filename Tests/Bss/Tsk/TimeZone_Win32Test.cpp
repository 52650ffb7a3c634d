// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Definitions of time zones in the registry, below a key of this process's own that stands in for the user's.
#include "Support/Environment.h"
#include "ZoneExamples.h"

#include <gtest/gtest.h>
#include <windows.h>

using namespace BSS;
using namespace BSS::TIM;
using namespace Zones;

namespace {

class TimeZoneRegistry : public testing::Test
{
protected:
    static void MakeKey()
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, LR"(Software\ScanReader\TimeZones\Local)", 0, nullptr,
                                  REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    OS::ConfigStoreI& store = OS::PlatformConfigStore();
    TimeZoneRecordT record;

private:
    const Support::PrivateConfiguration m_configuration{""};
};

TEST_F(TimeZoneRegistry, DefinitionIsWrittenAndReadAgain)
{
    MakeKey();
    ASSERT_EQ(WriteTimeZone(store, L"Local", LORD_HOWE), RC_OK);
    EXPECT_EQ(ReadTimeZone(store, L"Local", record), RC_OK);
    EXPECT_EQ(record, LORD_HOWE);
}

TEST_F(TimeZoneRegistry, MissingKeyIsNoDefinitionAndIsNotMade)
{
    EXPECT_EQ(WriteTimeZone(store, L"Local", LORD_HOWE), RC_FAILED);
    EXPECT_EQ(ReadTimeZone(store, L"Local", record), RC_NOT_FOUND);
}

} // namespace
