// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The configuration file: what is read, and that writing keeps what it does not change.
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Os/BSS_OS_Configuration.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/PageExamples.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace BSS;
using HAL::ReadConfigValue;
using HAL::WriteConfigValue;

namespace {

class ConfigFile : public testing::Test
{
protected:
    std::string Path() const { return m_directory.Narrow("scanreader.conf"); }
    void Make(const std::string& text) const { Support::WriteAll(Path(), text); }
    std::string Text() const { return Support::ReadAll(Path()); }

    // The value of "n" under "k", or 12345 when it cannot be read.
    static std::uint32_t Value()
    {
        std::uint32_t value = 12345;
        static_cast<void>(ReadConfigValue(L"k", L"n", value));
        return value;
    }

    const Support::TemporaryDirectory m_directory;
    const Support::ScopedEnvironment m_environment{"SCANREADER_CONFIG_DIR", m_directory.Narrow("")};
};

TEST_F(ConfigFile, MissingFileHasNoValue)
{
    std::uint32_t value = 3;
    EXPECT_FALSE(ReadConfigValue(L"k", L"n", value));
    EXPECT_EQ(value, 3u);
}

TEST_F(ConfigFile, ReadsDecimalAndHexadecimalNumbers)
{
    Make("[k]\nn = 42\n");
    EXPECT_EQ(Value(), 42u);
    Make("[k]\nn=0xFFFFFFFF\n");
    EXPECT_EQ(Value(), 0xFFFFFFFFu);
}

TEST_F(ConfigFile, ReadsTheExampleOfThePageOnLogs)
{
    std::string text;
    for (const std::string& line : Support::ExamplesOf("logging.md", "scanreader.conf"))
        text += line + "\n";
    Make(text);
    EXPECT_EQ(OS::ReadErrorLogLimitBytes(OS::PlatformConfigStore(), 1), 2048u << 10);
}

TEST_F(ConfigFile, ReadsOnlyBelowItsOwnKey)
{
    Make("n = 1\n[other]\nn = 2\n[k]\nm = 3\n");
    EXPECT_EQ(Value(), 12345u);
}

TEST_F(ConfigFile, SpacesCommentsAndCarriageReturnsDoNotMatter)
{
    Make("# n = 1\r\n  [ k ]\r\n; n = 2\r\n\r\n\tn\t=  7 \r\n");
    EXPECT_EQ(Value(), 7u);
}

TEST_F(ConfigFile, MarkAtTheBeginningDoesNotMatter)
{
    Make("\xEF\xBB\xBF[k]\nn = 7\n");
    EXPECT_EQ(Value(), 7u);
}

TEST_F(ConfigFile, WhatIsNoNumberOf32BitsIsNoValue)
{
    for (const char* text : {"", "x", "-1", "4294967296", "1 2", "0x", "0x1G", "1.5"}) {
        Make(std::string("[k]\nn = ") + text + "\n");
        EXPECT_EQ(Value(), 12345u) << text;
    }
}

TEST_F(ConfigFile, WritingMakesTheFileAndItsDirectory)
{
    const Support::ScopedEnvironment deeper("SCANREADER_CONFIG_DIR", m_directory.Narrow("a/b"));
    EXPECT_TRUE(WriteConfigValue(L"k", L"n", 5));
    EXPECT_EQ(Value(), 5u);
    struct stat info = {};
    ASSERT_EQ(::stat(m_directory.Narrow("a/b").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0700u);
}

TEST_F(ConfigFile, WritingKeepsEveryOtherLine)
{
    Make("# mine\n[k]\na = 1\nn = 2\n\n[z]\nn = 3\n");
    EXPECT_TRUE(WriteConfigValue(L"k", L"n", 9));
    EXPECT_EQ(Text(), "# mine\n[k]\na = 1\nn = 9\n\n[z]\nn = 3\n");
}

TEST_F(ConfigFile, WritingANewNamePutsItBelowItsKey)
{
    Make("[k]\na = 1\n\n[z]\nb = 3\n");
    EXPECT_TRUE(WriteConfigValue(L"k", L"n", 9));
    EXPECT_EQ(Text(), "[k]\na = 1\nn = 9\n\n[z]\nb = 3\n");
}

TEST_F(ConfigFile, WritingANewKeyPutsItLast)
{
    Make("[z]\nb = 3\n");
    EXPECT_TRUE(WriteConfigValue(L"k", L"n", 9));
    EXPECT_EQ(Text(), "[z]\nb = 3\n[k]\nn = 9\n");
}

TEST_F(ConfigFile, NamesThatWouldNotBeReadBackAreRefused)
{
    EXPECT_FALSE(WriteConfigValue(L"k]\n[x", L"n", 1));
    EXPECT_FALSE(WriteConfigValue(L"k", L"n=m", 1));
    EXPECT_FALSE(WriteConfigValue(L"", L"n", 1));
    EXPECT_FALSE(WriteConfigValue(L"k", L" n", 1));
    EXPECT_EQ(Text(), "");
}

TEST_F(ConfigFile, FileThatCannotBeReadIsNotOverwritten)
{
    ASSERT_EQ(::mkdir(Path().c_str(), 0700), 0);
    EXPECT_FALSE(WriteConfigValue(L"k", L"n", 1));
    EXPECT_TRUE(boost::filesystem::is_directory(Path()));
}

TEST_F(ConfigFile, WritingLeavesNoOtherFileBehind)
{
    EXPECT_TRUE(WriteConfigValue(L"k", L"n", 1));
    const boost::filesystem::directory_iterator end;
    EXPECT_EQ(std::distance(boost::filesystem::directory_iterator(m_directory.Path()), end), 1);
}

TEST_F(ConfigFile, PlatformStoreReadsAndWritesIt)
{
    EXPECT_EQ(OS::WriteAssertEnabled(OS::PlatformConfigStore(), true), RC_OK);
    EXPECT_EQ(Text(), "[Configuration]\nASSERTEnabled = 1\n");
    EXPECT_TRUE(OS::ReadAssertEnabled(OS::PlatformConfigStore()));
}

TEST_F(ConfigFile, PlatformStoreThatCannotBeOpenedFails)
{
    Support::WriteAll(m_directory.Narrow("file"), "");
    const Support::ScopedEnvironment below("SCANREADER_CONFIG_DIR", m_directory.Narrow("file/below"));
    std::uint32_t value = 0;
    EXPECT_EQ(OS::WriteAssertEnabled(OS::PlatformConfigStore(), true), RC_FAILED);
    EXPECT_EQ(OS::PlatformConfigStore().Read(L"k", L"n", value), RC_FAILED);
}

} // namespace
