// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a crash leaves: a minidump, and the end that the process would have had without one.
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <csignal>
#include <gtest/gtest.h>
#include <process.h>

namespace {

class CrashDumpWin32 : public testing::Test
{
protected:
    /// The exit code.
    unsigned Run(const std::string& how, const std::string& earlier = "") const
    {
        const std::string directory = m_directory.Narrow("dumps");
        const char* const arguments[] = {"bss_crasher", directory.c_str(), how.c_str(),
                                         earlier.empty() ? nullptr : earlier.c_str(), nullptr};
        return static_cast<unsigned>(_spawnv(_P_WAIT, BSS_CRASHER, arguments));
    }
    std::vector<std::string> Dumps() const
    {
        std::vector<std::string> dumps;
        for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "dumps"))
            dumps.push_back(entry.path().string());
        return dumps;
    }
    bool HasOneMinidump() const
    {
        const std::vector<std::string> dumps = Dumps();
        return dumps.size() == 1 && dumps.front().ends_with(".dmp") &&
               Support::ReadAll(dumps.front()).starts_with("MDMP");
    }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(CrashDumpWin32, ExceptionThatNobodyHandlesEndsTheProcessAndLeavesADump)
{
    EXPECT_EQ(Run("access"), EXCEPTION_ACCESS_VIOLATION);
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, StackThatIsUsedUpLeavesADump)
{
    Run("overflow");
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, StackThatIsUsedUpEndsTheProcess)
{
    EXPECT_EQ(Run("overflow"), EXCEPTION_STACK_OVERFLOW);
}

TEST_F(CrashDumpWin32, CrashesOfSeveralThreadsLeaveOneDump)
{
    EXPECT_EQ(Run("threads"), EXCEPTION_ACCESS_VIOLATION);
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, AbortLeavesADump)
{
    EXPECT_EQ(Run("abort"), 3U);
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, ExceptionThatNobodyCatchesLeavesADump)
{
    EXPECT_EQ(Run("terminate"), 3U);
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, HandlerFromBeforeIsCalledAfterTheDump)
{
    EXPECT_EQ(Run("abort", std::to_string(SIGABRT)), 42U);
    EXPECT_TRUE(HasOneMinidump());
}

TEST_F(CrashDumpWin32, NoCrashLeavesNoFile)
{
    EXPECT_EQ(Run("none"), 0U);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDumpWin32, ProcessThatGaveTheHandlerBackLeavesNoFile)
{
    EXPECT_EQ(Run("restored"), EXCEPTION_ACCESS_VIOLATION);
    EXPECT_TRUE(Dumps().empty());
}

} // namespace
