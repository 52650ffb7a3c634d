// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One log file between several processes, and what is left when one of them dies.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Support/ChildProcess.h"
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

    // Every line of every file that the writers share.
    std::vector<std::string> AllLines(std::uint64_t largest) const
    {
        std::vector<std::string> all;
        for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "log")) {
            if (entry.path().filename().string().rfind("shared", 0) != 0) continue;
            const std::string text = Support::ReadAll(entry.path().string());
            EXPECT_LE(text.size(), largest) << entry.path();
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

// Whether the text is less than the whole of that line, behind as much of a prefix as there is.
bool BeginsLine(const std::string& text, const std::string& name, unsigned number)
{
    const std::size_t level = text.find(" INFO ");
    if (text.empty()) return true;
    if (level == std::string::npos) return text.size() < 100 && text.front() == '[';
    const std::string message = text.substr(level + 6);
    return Support::CheckedLine(name, number).compare(0, message.size(), message) == 0;
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
    int fragments = 0;
    for (int round = 0; round < 10; ++round) {
        TakeAway();
        const auto writer = StartWriter({"endless"});
        long flushed = 0;
        for (int i = 0; i <= round; ++i)
            flushed = std::atol(writer->ReadLine().c_str());
        writer->Kill();
        EXPECT_EQ(writer->Wait(), ChildProcess::KILLED);
        // Whole lines, and behind them nothing but the beginning of the next one.
        const std::string left = Bytes("killed.txt");
        const std::string whole = left.substr(0, left.rfind('\n') + 1);
        const std::string fragment = left.substr(whole.size());
        const std::vector<std::string> lines = LinesOf(whole);
        const long count = static_cast<long>(lines.size());
        EXPECT_GT(flushed, 0);
        EXPECT_GE(count, flushed);
        EXPECT_EQ(NumbersOf(lines, "k"), UpTo(count));
        EXPECT_TRUE(BeginsLine(fragment, "k", static_cast<unsigned>(count))) << fragment;
        if (!fragment.empty()) ++fragments;
        // Whoever opens the file next takes the beginning away and nothing else.
        DbgLogFileC next(L"killed.txt", 0);
        ASSERT_TRUE(next.append("next\n"));
        EXPECT_EQ(Bytes("killed.txt"), whole + "next\n");
    }
    RecordProperty("fragments", fragments);
}

TEST_F(LogProcesses, LinesThatWaitAreWrittenWhenTheProcessEnds)
{
    EXPECT_EQ(StartWriter({"exit"})->Wait(), 0);
    const std::vector<std::string> lines = LinesOf(Bytes("ErrorLog.txt"));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[1].find(" INFO at the end"), std::string::npos);
}

} // namespace
