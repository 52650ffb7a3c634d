// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Log lines, consumers, the log file and the manager.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"
#include "Support/TemporaryDirectory.h"

#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <thread>
#include <vector>

using namespace BSS::DBG;

namespace {

const BSS::HAL::CalendarTime SOME_TIME{2026, 1, 31, 23, 59, 58, 7};

LogLineContextT SomeContext()
{
    return {SOME_TIME, SOME_TIME, "Main Thread", 0x1A2B, -1, LEVEL_WARN};
}

class TextConsumer final : public DbgLogConsumerC
{
public:
    explicit TextConsumer(PrefixKind prefix = PrefixKind::None) : DbgLogConsumerC("name", prefix) {}
    std::string text;
    std::function<bool()> inside = [] { return true; };

protected:
    bool write(std::string_view lines) override
    {
        text += lines;
        return inside();
    }
};

constexpr wchar_t FAILURE[] = L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (name)!\n";

TEST(LogLine, FullPrefixHoldsSixValues)
{
    EXPECT_EQ(PrefixedLine(PrefixKind::Full, SomeContext(), "text"),
              "[2026-01-31T23:59:58.007] Main Thread         (1a2b)/  -1 WARN text");
}

TEST(LogLine, TimePrefix)
{
    EXPECT_EQ(PrefixedLine(PrefixKind::Time, SomeContext(), "text"), "2026-01-31T23:59:58.007 text");
}

TEST(LogLine, UtcPrefixBeginsWithTheDay)
{
    EXPECT_EQ(PrefixedLine(PrefixKind::UtcTime, SomeContext(), "text"), "[31/01/2026 23:59:58.007 UTC]text");
}

TEST(LogLine, OtherKindsHaveNoPrefix)
{
    EXPECT_EQ(PrefixedLine(PrefixKind::None, SomeContext(), "text"), "text");
    EXPECT_EQ(PrefixedLine(static_cast<PrefixKind>(9), SomeContext(), "text"), "text");
}

TEST(LogLine, LevelsHaveTheirTexts)
{
    const std::vector<std::string> expected = {"",     "FINEST", "FINER", "FINE", "INFO",
                                               "WARN", "ERROR",  "FATAL", ""};
    for (int level = 0; level <= 8; ++level) {
        EXPECT_EQ(LevelText(level), expected[static_cast<std::size_t>(level)]);
    }
    EXPECT_STREQ(LevelText(-1), "");
}

TEST(LogLine, MessageIsSplitAtInteriorLineEndsOnly)
{
    using PartsT = std::vector<std::string_view>;
    EXPECT_EQ(SplitMessage("a"), PartsT{"a"});
    EXPECT_EQ(SplitMessage("a\nb"), (PartsT{"a", "b"}));
    EXPECT_EQ(SplitMessage("a\r\nb\rc"), (PartsT{"a", "b", "c"}));
    EXPECT_EQ(SplitMessage("a\n\nb"), (PartsT{"a", "", "b"}));
    EXPECT_EQ(SplitMessage("a\r\n"), PartsT{"a"});
    EXPECT_EQ(SplitMessage("a\n\r\n"), PartsT{"a"});
    EXPECT_EQ(SplitMessage("\n"), PartsT{""});
    EXPECT_EQ(SplitMessage(""), PartsT{""});
}

TEST(LogLine, ControlCharactersAreWrittenOut)
{
    EXPECT_EQ(WithoutControls(std::string("a\tb\x1B[2J\x7F\0c\xC3\xA9", 12)),
              "a\tb\\x1B[2J\\x7F\\x00c\xC3\xA9");
}

TEST(LogConsumer, OneLineMessageIsWrittenAsALine)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "value %d\r\n", 5);
    consumer.Log(LEVEL_INFO, "no end");
    EXPECT_EQ(consumer.text, "value 5\nno end\n");
}

TEST(LogConsumer, MessageWithLineEndsIsWrittenAsNumberedLines)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "one\ntwo\r\nthree\n");
    EXPECT_EQ(consumer.text, "name: 001, one\nname: 002, two\nname: 003, three\n");
}

TEST(LogConsumer, EveryLineOfAMessageHasThePrefix)
{
    TextConsumer consumer(PrefixKind::Full);
    consumer.Log(LEVEL_ERROR, "one\ntwo");
    const std::string::size_type second = consumer.text.find('\n') + 1;
    EXPECT_EQ(consumer.text.substr(0, 1), "[");
    EXPECT_EQ(consumer.text.substr(second, 1), "[");
    EXPECT_NE(consumer.text.find("Main Thread         ("), std::string::npos);
    EXPECT_NE(consumer.text.find(" ERROR name: 002, two\n"), std::string::npos);
}

TEST(LogConsumer, ArgumentCannotForgeALine)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "file %s", "x\n[2026] FATAL forged\x1B");
    EXPECT_EQ(consumer.text, "name: 001, file x\nname: 002, [2026] FATAL forged\\x1B\n");
}

TEST(LogConsumer, LevelsBelowTheThresholdAreNotLogged)
{
    TextConsumer consumer;
    EXPECT_TRUE(consumer.isEnabled(LEVEL_FINEST));
    consumer.setLevel(LEVEL_WARN);
    consumer.Log(LEVEL_INFO, "no");
    consumer.Log(LEVEL_WARN, "yes");
    EXPECT_FALSE(consumer.isEnabled(LEVEL_INFO));
    EXPECT_EQ(consumer.text, "yes\n");
}

TEST(LogConsumer, LongMessageIsCutToTheLineBuffer)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "%s", std::string(100000, 'x'));
    EXPECT_EQ(consumer.text, std::string(DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE - 1, 'x') + "\n");
}

TEST(LogConsumer, FailedWriteIsToldOnTheDebugOutputAndLoggingGoesOn)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = [] { return false; };
    consumer.Log(LEVEL_INFO, "one");
    consumer.inside = [] { return true; };
    consumer.Log(LEVEL_INFO, "two");
    EXPECT_EQ(debug.Text(), FAILURE);
    EXPECT_EQ(consumer.text, "one\ntwo\n");
}

TEST(LogConsumer, ExceptionInsideNeverReachesTheCaller)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = []() -> bool { throw std::bad_alloc(); };
    EXPECT_NO_THROW(consumer.Log(LEVEL_INFO, "one"));
    EXPECT_EQ(debug.Text(), FAILURE);
    EXPECT_FALSE(DbgLogConsumerC::isWriting());
}

TEST(LogConsumer, LoggingFromInsideAWriteGoesToTheDebugOutput)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = [&consumer] {
        consumer.Log(LEVEL_INFO, "inner %d\n", 1);
        return true;
    };
    consumer.Log(LEVEL_INFO, "outer");
    EXPECT_EQ(consumer.text, "outer\n");
    EXPECT_EQ(debug.Text(), L"inner 1\n");
}

TEST(LogConsumer, LinesOfOneMessageStayTogether)
{
    TextConsumer consumer;
    const auto logging = [&consumer] {
        for (int i = 0; i < 300; ++i)
            consumer.Log(LEVEL_INFO, "a\nb");
    };
    std::thread other(logging);
    logging();
    other.join();
    std::string expected;
    for (int i = 0; i < 600; ++i)
        expected += "name: 001, a\nname: 002, b\n";
    EXPECT_EQ(consumer.text, expected);
}

// A log directory of the test's own; the run's usual one comes back afterwards.
class LogFile : public testing::Test
{
protected:
    LogFile() { BSS::OS::SetLogDirectory(m_directory.Wide("log")); }
    ~LogFile() override { BSS::OS::SetLogDirectory(L""); }

    std::string Bytes(const std::string& name) const
    {
        return Support::ReadAll(m_directory.Narrow("log/" + name));
    }
    bool Exists(const std::string& name) const
    {
        return boost::filesystem::exists(m_directory.Path() / name);
    }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(LogFile, NothingIsMadeBeforeTheFirstLine)
{
    const DbgLogFileConsumerC consumer("c", L"c.txt");
    EXPECT_FALSE(Exists("log"));
}

TEST_F(LogFile, LinesAreAppended)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n"));
    EXPECT_TRUE(DbgLogFileC(L"a.txt", 0).append("two\n"));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, FullFileBecomesTheOlderOne)
{
    DbgLogFileC file(L"a.txt", 10);
    EXPECT_TRUE(file.append("12345\n"));
    EXPECT_TRUE(file.append("678\n"));
    EXPECT_FALSE(Exists("log/a.1.txt"));
    EXPECT_TRUE(file.append("next\n"));
    EXPECT_EQ(Bytes("a.1.txt"), "12345\n678\n");
    EXPECT_EQ(Bytes("a.txt"), "next\n");
}

TEST_F(LogFile, OneOlderFileIsKept)
{
    DbgLogFileC file(L"a", 4);
    for (const char* line : {"1\n", "22\n", "333\n"})
        EXPECT_TRUE(file.append(line));
    EXPECT_EQ(Bytes("a.1"), "22\n");
    EXPECT_EQ(Bytes("a"), "333\n");
}

TEST_F(LogFile, TextLongerThanTheLimitIsCutToIt)
{
    DbgLogFileC file(L"a.txt", 4);
    EXPECT_TRUE(file.append("1234567\n"));
    EXPECT_EQ(Bytes("a.txt"), "1234");
}

TEST_F(LogFile, FullFileThatCannotBecomeTheOlderOneDoesNotGrow)
{
    DbgLogFileC file(L"a.txt", 4);
    EXPECT_TRUE(file.append("123\n"));
    boost::filesystem::create_directories(m_directory.Path() / "log/a.1.txt/in the way");
    EXPECT_FALSE(file.append("456\n"));
    EXPECT_EQ(Bytes("a.txt"), "123\n");
}

TEST_F(LogFile, DirectoryThatIsTakenAwayIsMadeAnew)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n"));
    boost::filesystem::remove_all(m_directory.Path() / "log");
    EXPECT_TRUE(file.append("two\n"));
    EXPECT_EQ(Bytes("a.txt"), "two\n");
}

TEST_F(LogFile, FlushSucceedsWithAndWithoutAFile)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(file.append("one\n"));
    EXPECT_TRUE(file.flush());
}

TEST_F(LogFile, UnwritableDirectoryIsToldOnTheDebugOutputAndWorkGoesOn)
{
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    const Support::DebugOutputCapture debug;
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.Log(LEVEL_ERROR, "lost");
    EXPECT_EQ(debug.Text(), FAILURE);
    boost::filesystem::remove(m_directory.Path() / "log");
    consumer.Log(LEVEL_ERROR, "found");
    EXPECT_NE(Bytes("a.txt").find("found\n"), std::string::npos);
}

TEST_F(LogFile, SystemErrorLoggerWritesItsOwnFileWithTheFullPrefix)
{
    DbgLogMgrC::instance().getSystemErrorLogger()->Log(LEVEL_ERROR, "hello");
    const std::string line = Bytes("ErrorLog.txt");
    EXPECT_EQ(line.substr(0, 1), "[");
    EXPECT_EQ(line.substr(25, 22), " Main Thread         (");
    EXPECT_EQ(line.substr(line.size() - 13), " ERROR hello\n");
    EXPECT_EQ(DbgLogMgrC::instance().getSystemErrorLogger()->getName(), "SystemErrorLogger");
}

TEST(LogMgr, MissingSystemErrorLoggerIsToldOnTheDebugOutput)
{
    const Support::LogCapture restore;
    DbgLogMgrC::instance().setSystemErrorLogger(nullptr);
    const Support::DebugOutputCapture debug;
    EXPECT_EQ(DbgLogMgrC::instance().getSystemErrorLogger(), nullptr);
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
}

TEST(LogMgr, FailedFlushIsReported)
{
    struct Failing final : DbgLogConsumerC
    {
        Failing() : DbgLogConsumerC("f", PrefixKind::None) {}
        bool flush() override { return false; }
        bool write(std::string_view) override { return true; }
    };
    const Support::LogCapture restore;
    const Support::ReportCapture reports;
    DbgLogMgrC::instance().setSystemErrorLogger(std::make_shared<Failing>());
    DbgLogMgrC::instance().flush();
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

TEST(LogMgr, FlushThatSucceedsIsSilent)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    DbgLogMgrC::instance().flush();
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(PathMap, LogDirectoryIsTheEnvironmentsUntilOneIsSet)
{
    EXPECT_EQ(BSS::HAL::NarrowPath(BSS::OS::LogDirectory()), Support::LogDirectory());
    BSS::OS::SetLogDirectory(L"/elsewhere");
    EXPECT_EQ(BSS::OS::LogDirectory(), L"/elsewhere");
    BSS::OS::SetLogDirectory(L"");
    EXPECT_EQ(BSS::HAL::NarrowPath(BSS::OS::LogDirectory()), Support::LogDirectory());
}

TEST(PathMap, AnswerIsRememberedUntilItIsSetAnew)
{
    BSS::OS::SetLogDirectory(L"");
    const std::wstring before = BSS::OS::LogDirectory();
    const Support::TemporaryDirectory other;
    const Support::ScopedEnvironment changed("SCANREADER_LOG_DIR", other.Narrow("log"));
    EXPECT_EQ(BSS::OS::LogDirectory(), before);
    BSS::OS::SetLogDirectory(L"");
    EXPECT_EQ(BSS::HAL::NarrowPath(BSS::OS::LogDirectory()), other.Narrow("log"));
    BSS::OS::SetLogDirectory(before);
}

// The configured limit is read when the manager is made, so this needs a process of its own.
TEST(LogMgrDeathTest, ConfiguredLimitIsKept)
{
    const auto logMuch = [] {
        const std::string own = Support::LogDirectory() + "/limited";
        const Support::PrivateConfiguration configuration(own);
        BSS::OS::SetLogDirectory(BSS::HAL::WidePath(own));
        if (!BSS::HAL::WriteConfigValue(L"Configuration", L"ErrorLogSize", 2)) std::_Exit(2);
        for (int i = 0; i < 100; ++i)
            DbgLogMgrC::instance().getSystemErrorLogger()->Log(LEVEL_ERROR, "line");
        const bool kept = Support::ReadAll(own + "/ErrorLog.txt").size() <= 2048 &&
                          Support::ReadAll(own + "/ErrorLog.1.txt").size() > 1900;
        std::_Exit(kept ? 0 : 1);
    };
    EXPECT_EXIT(logMuch(), testing::ExitedWithCode(0), "");
}

} // namespace
