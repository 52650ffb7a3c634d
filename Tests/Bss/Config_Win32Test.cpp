// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Configuration values in the registry, below a key of this process's own that stands in for the user's.
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"
#include "Support/Environment.h"

#include <gtest/gtest.h>
#include <windows.h>

using BSS::HAL::ReadConfigValue;
using BSS::HAL::WriteConfigValue;

namespace {

class Registry : public testing::Test
{
protected:
    static LSTATUS Store(const wchar_t* name, DWORD type, const void* data, DWORD size)
    {
        return RegSetKeyValueW(HKEY_CURRENT_USER, LR"(Software\ScanReader\Configuration)", name, type, data, size);
    }

    std::uint32_t value = 77;
    const Support::PrivateConfiguration m_configuration{""};
};

TEST_F(Registry, AWrittenValueIsReadBack)
{
    EXPECT_TRUE(WriteConfigValue(L"Configuration", L"ErrorLogSize", 0xFFFFFFFF));
    EXPECT_TRUE(ReadConfigValue(L"Configuration", L"ErrorLogSize", value));
    EXPECT_EQ(value, 0xFFFFFFFFu);
    EXPECT_TRUE(WriteConfigValue(L"Configuration", L"ErrorLogSize", 0));
    EXPECT_TRUE(ReadConfigValue(L"Configuration", L"ErrorLogSize", value));
    EXPECT_EQ(value, 0u);
}

TEST_F(Registry, AWrittenValueStandsBelowTheDocumentedRoot)
{
    EXPECT_TRUE(WriteConfigValue(L"Configuration", L"ASSERTEnabled", 5));
    DWORD stored = 0;
    DWORD size = sizeof stored;
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, LR"(Software\ScanReader\Configuration)", L"ASSERTEnabled",
                           RRF_RT_REG_DWORD, nullptr, &stored, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(stored, 5u);
}

TEST_F(Registry, AMissingValueIsNotRead)
{
    EXPECT_FALSE(ReadConfigValue(L"Configuration", L"Missing", value));
    EXPECT_EQ(value, 77u);
}

TEST_F(Registry, AMissingKeyIsNeitherReadNorMade)
{
    EXPECT_FALSE(ReadConfigValue(L"Other", L"Value", value));
    EXPECT_FALSE(WriteConfigValue(L"Other", L"Value", 1));
    EXPECT_FALSE(ReadConfigValue(L"Other", L"Value", value));
    EXPECT_EQ(value, 77u);
}

TEST_F(Registry, AValueThatIsNoNumberOf32BitsIsNotRead)
{
    const std::uint64_t wide = 3;
    EXPECT_EQ(Store(L"Wide", REG_QWORD, &wide, sizeof wide), ERROR_SUCCESS);
    EXPECT_EQ(Store(L"Text", REG_SZ, L"1", 4), ERROR_SUCCESS);
    EXPECT_EQ(Store(L"Short", REG_DWORD, &wide, 2), ERROR_SUCCESS);
    for (const wchar_t* name : {L"Wide", L"Text", L"Short"})
        EXPECT_FALSE(ReadConfigValue(L"Configuration", name, value));
    EXPECT_EQ(value, 77u);
}

TEST_F(Registry, AnEmptyNameIsNoName)
{
    EXPECT_FALSE(WriteConfigValue(L"Configuration", L"", 1));
    EXPECT_FALSE(WriteConfigValue(L"", L"Value", 1));
    EXPECT_FALSE(ReadConfigValue(L"", L"Value", value));
    EXPECT_FALSE(WriteConfigValue(L"Configuration", std::wstring(L"A\0B", 3), 1));
    EXPECT_FALSE(ReadConfigValue(L"Configuration", L"A", value));
}

} // namespace
