// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One log file between several processes, and what is left when one of them dies.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Support/ChildProcess.h"
#include "Support/Eventually.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"

#include <boost/filesystem/operations.hpp>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

using namespace BSS::DBG;
using Support::ChildProcess;
using Support::LinesOf;
using Support::NumberOf;

namespace {

class LogProcesses : public Support::LogFolderTest
{
protected:
    std::string Folder() const { return m_directory.Narrow("log"); }

    std::unique_ptr<ChildProcess> StartWriter(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> command = {BSS_LOG_WRITER, Folder()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<ChildProcess>(command);
    }

    std::uintmax_t SizeOf(const std::string& name) const
    {
        boost::system::error_code none;
        const std::uintmax_t size = boost::filesystem::file_size(m_directory.Path() / "log" / name, none);
        return none ? 0 : size;
    }

    // Every line of every file that the writers share.
    std::vector<std::string> AllLines(std::uint64_t largest) const
    {
        std::vector<std::string> all;
        for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "log")) {
            if (entry.path().filename().string().rfind("shared", 0) != 0) continue;
            const std::string text = Support::ReadAll(entry.path().string());
            EXPECT_LE(text.size(), largest) << entry.path();
            EXPECT_TRUE(Support::PagesEndWithLines(text)) << entry.path();
            for (const std::string& line : LinesOf(text))
                all.push_back(line);
        }
        return all;
    }
};

std::multiset<long> NumbersOf(const std::vector<std::string>& lines, const std::string& name)
{
    std::multiset<long> numbers;
    for (const std::string& line : lines)
        if (const long number = NumberOf(line, name); number >= 0) numbers.insert(number);
    return numbers;
}

std::multiset<long> UpTo(long count)
{
    std::multiset<long> numbers;
    for (long i = 0; i < count; ++i)
        numbers.insert(numbers.end(), i);
    return numbers;
}

TEST_F(LogProcesses, TwoProcessesMixNoLinesAndLoseNone)
{
    const auto one = StartWriter({"lines", "one", "20000", "0"});
    const auto two = StartWriter({"lines", "two", "20000", "0"});
    EXPECT_EQ(one->Wait(), 0);
    EXPECT_EQ(two->Wait(), 0);
    const std::vector<std::string> lines = AllLines(1u << 30);
    EXPECT_EQ(lines.size(), 40000u);
    EXPECT_EQ(NumbersOf(lines, "one"), UpTo(20000));
    EXPECT_EQ(NumbersOf(lines, "two"), UpTo(20000));
}

TEST_F(LogProcesses, ThreeProcessesKeepTheLimitAndLoseNothingWhenFilesBecomeOlderOnes)
{
    std::vector<std::unique_ptr<ChildProcess>> writers;
    for (const char* name : {"a", "b", "c"})
        writers.push_back(StartWriter({"lines", name, "3000", "20000"}));
    for (const auto& writer : writers)
        EXPECT_EQ(writer->Wait(), 0);
    const std::vector<std::string> lines = AllLines(20000);
    EXPECT_EQ(lines.size(), 9000u);
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(NumbersOf(lines, name), UpTo(3000)) << name;
}

TEST_F(LogProcesses, ProcessThatIsKilledLeavesWholeLinesAndAllThatWereFlushed)
{
    for (int round = 0; round < 10; ++round) {
        TakeAway();
        const auto writer = StartWriter({"endless", "1000"});
        long flushed = 0;
        for (int i = 0; i <= round; ++i)
            flushed = std::atol(writer->ReadLine().c_str());
        writer->Kill();
        EXPECT_EQ(writer->Wait(), ChildProcess::KILLED);
        const std::string left = Bytes("killed.txt");
        const long count = static_cast<long>(LinesOf(left).size());
        EXPECT_GT(flushed, 0);
        EXPECT_GE(count, flushed);
        EXPECT_EQ(NumbersOf(LinesOf(left), "k"), UpTo(count));
        ASSERT_FALSE(left.empty());
        EXPECT_EQ(left.back(), '\n');
        // Whoever opens the file next takes nothing away.
        DbgLogFileC next(L"killed.txt", 0);
        ASSERT_TRUE(next.append("next\n"));
        EXPECT_EQ(Support::WithoutFilling(Bytes("killed.txt")), Support::WithoutFilling(left) + "next\n");
    }
}

// Such a one is within a write most of the time.
TEST_F(LogProcesses, ProcessThatIsKilledWhileItWritesWithoutPauseLeavesWholeLines)
{
    for (int round = 0; round < 30; ++round) {
        TakeAway();
        const auto writer = StartWriter({"endless", "1000000000"});
        const std::size_t enough = 1000000 + 30000 * static_cast<std::size_t>(round);
        EXPECT_TRUE(Support::Eventually([&] { return SizeOf("killed.txt") >= enough; }));
        writer->Kill();
        EXPECT_EQ(writer->Wait(), ChildProcess::KILLED);
        const std::string left = Bytes("killed.txt");
        ASSERT_FALSE(left.empty());
        EXPECT_EQ(left.back(), '\n') << left.size();
        EXPECT_EQ(left.find('\0'), std::string::npos);
        const std::vector<std::string> lines = LinesOf(left);
        EXPECT_EQ(Support::NumberOf(lines.back(), "k"), static_cast<long>(lines.size()) - 1);
    }
}

TEST_F(LogProcesses, LinesThatWaitAreWrittenWhenTheProcessEnds)
{
    EXPECT_EQ(StartWriter({"exit"})->Wait(), 0);
    const std::vector<std::string> lines = LinesOf(Bytes("ErrorLog.txt"));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[1].find(" INFO at the end"), std::string::npos);
}

} // namespace
