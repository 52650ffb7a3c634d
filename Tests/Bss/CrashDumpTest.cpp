// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The settings of crash dumps, and which older ones stay. What a crash leaves is tested for each platform.
#include "Bss/Bss_Hal/BSS_HAL_CrashDump.h"
#include "Bss/Bss_Os/BSS_OS_CrashDump.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <boost/filesystem/operations.hpp>
#include <gtest/gtest.h>
#include <set>

using namespace BSS;
using OS::CrashDumpC;

namespace {

class CrashDump : public testing::Test
{
protected:
    /// A file as a crash would leave it, or nearly so.
    void Make(const std::string& front, bool bSuffix = true) const
    {
        Support::WriteAll(m_directory.Narrow(front + (bSuffix ? Suffix() : "")), "x");
    }
    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }
    static std::string Suffix() { return HAL::NarrowPath(HAL::CrashDumpSuffix()); }
    std::wstring Directory() const { return HAL::WidePathOf(m_directory.Path()); }

    const Support::TemporaryDirectory m_directory;
    CrashDumpC m_dump;
};

TEST_F(CrashDump, ProgramThatCannotBeginAFileNameIsRefused)
{
    for (const std::wstring& name : {std::wstring(), std::wstring(L"a/b"), std::wstring(L"a b"),
                                     std::wstring(L"ä"), std::wstring(1, L'\0'), std::wstring(65, L'a')})
        EXPECT_EQ(m_dump.install({name, Directory()}), RC_INVALID_ARGUMENT);
}

TEST_F(CrashDump, NoneToKeepIsRefused)
{
    EXPECT_EQ(m_dump.install({L"a", Directory(), 0}), RC_INVALID_ARGUMENT);
}

TEST_F(CrashDump, OneHandlerServesAProcess)
{
    CrashDumpC second;
    EXPECT_EQ(m_dump.install({L"a", Directory()}), RC_OK);
    EXPECT_EQ(second.install({L"a", Directory()}), RC_FAILED);
    EXPECT_EQ(m_dump.install({L"a", Directory()}), RC_FAILED);
    m_dump.restore();
    EXPECT_EQ(second.install({L"a", Directory()}), RC_OK);
}

TEST_F(CrashDump, DestructionGivesTheHandlerBack)
{
    {
        CrashDumpC other;
        ASSERT_EQ(other.install({L"a", Directory()}), RC_OK);
    }
    EXPECT_EQ(m_dump.install({L"a", Directory()}), RC_OK);
}

TEST_F(CrashDump, MissingDirectoryIsMade)
{
    ASSERT_EQ(m_dump.install({L"a", m_directory.Wide("new")}), RC_OK);
    EXPECT_TRUE(boost::filesystem::is_directory(m_directory.Path() / "new"));
}

TEST_F(CrashDump, DirectoryThatCannotBeIsAFailure)
{
    Make("file", false);
    EXPECT_EQ(m_dump.install({L"a", m_directory.Wide("file")}), RC_FAILED);
}

TEST_F(CrashDump, TheNewestStayWithRoomForOneMore)
{
    Make("a-20260131T235959Z-9");
    Make("a-20251231T235959Z-99");
    Make("a-20260201T000000Z-1");
    ASSERT_EQ(m_dump.install({L"a", Directory(), 2}), RC_OK);
    EXPECT_EQ(Names(), std::set<std::string>{"a-20260201T000000Z-1" + Suffix()});
}

TEST_F(CrashDump, NothingButItsOwnDumpsIsRemoved)
{
    const std::set<std::string> others = {"a-b-20260131T235959Z-9",
                                          "b-20260131T235959Z-9",
                                          "a-20260131T235959Z-",
                                          "a-20260131T235959Z-9x",
                                          "a-2026013xT235959Z-9",
                                          "a-",
                                          "a"};
    std::set<std::string> expected = {"a-20260131T235959Z-9"};
    for (const std::string& other : others) {
        Make(other);
        expected.insert(other + Suffix());
    }
    Make("a-20260131T235959Z-9", false);
    Make("a-20260131T235959Z-8");
    ASSERT_EQ(m_dump.install({L"a", Directory(), 1}), RC_OK);
    EXPECT_EQ(Names(), expected);
}

TEST(CrashStamp, IsTheTimeInUtcAndTheProcess)
{
    const auto stamp = [](std::int64_t seconds) {
        HAL::FixedTextT<char, 64> text;
        HAL::AddCrashStamp(text, seconds, 4711);
        return std::string(text.getText());
    };
    EXPECT_EQ(stamp(0), "-19700101T000000Z-4711");
    EXPECT_EQ(stamp(951782399), "-20000228T235959Z-4711");
    EXPECT_EQ(stamp(951782400), "-20000229T000000Z-4711");
    EXPECT_EQ(stamp(4102444799), "-20991231T235959Z-4711");
}

TEST(FixedText, TakesWhatFits)
{
    HAL::FixedTextT<char, 5> text;
    text.add("abc").addNumber(255, 4, 16);
    EXPECT_STREQ(text.getText(), "abc00");
    text.cut(1);
    EXPECT_STREQ(text.add(L"z").getText(), "az");
    text.clear();
    EXPECT_STREQ(text.addNumber(0).addNumber(18446744073709551615U).getText(), "01844");
}

} // namespace
