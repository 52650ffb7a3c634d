// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The log manager: consumers by name, configuration while running, sub-managers, flushing.
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogOutputDebugStringConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogPrintfConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_SubLogManager.h"
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Bss/Bss_Os/BSS_OS_PathMapI.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"
#include "Support/LogCapture.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"
#include "Support/ReportCapture.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace BSS::DBG;

namespace {

DbgLogMgrC& Manager()
{
    return DbgLogMgrC::instance();
}

class LogMgr : public Support::LogFolderTest
{};

TEST_F(LogMgr, NamesMakeTheirConsumers)
{
    EXPECT_NE(std::dynamic_pointer_cast<DbgLogPrintfConsumerC>(Manager().getConsumer("printf")), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DbgLogOutputDebugStringConsumerC>(
                  Manager().getConsumer("OutputDebugString")),
              nullptr);
    EXPECT_EQ(Manager().getConsumer("/sensorboard/"), nullptr);
    for (const char* file : {"SystemErrorLogger", "LoaderLog", "anything"})
        EXPECT_NE(std::dynamic_pointer_cast<DbgLogFileConsumerC>(Manager().getConsumer(file)), nullptr)
            << file;
}

TEST_F(LogMgr, ConsumerIsTheSameEveryTime)
{
    EXPECT_EQ(Manager().getConsumer("same"), Manager().getConsumer("same"));
    EXPECT_EQ(Manager().getConsumer("SystemErrorLogger"), Manager().getSystemErrorLogger());
}

TEST_F(LogMgr, NamesAreCaseSensitiveAndWhole)
{
    for (const char* name : {"Printf", "printf ", "/sensorboard", "SystemErrorLogger2"})
        EXPECT_NE(std::dynamic_pointer_cast<DbgLogFileConsumerC>(Manager().getConsumer(name)), nullptr)
            << name;
}

TEST_F(LogMgr, NamedFilesAreWritten)
{
    Manager().getConsumer("SystemErrorLogger")->Log(LEVEL_ERROR, "a");
    Manager().getConsumer("LoaderLog")->Log(LEVEL_ERROR, "b");
    Manager().getConsumer("own name")->Log(LEVEL_ERROR, "c");
    EXPECT_NE(Bytes("ErrorLog.txt").find(" ERROR a\n"), std::string::npos);
    EXPECT_NE(Bytes("LoaderLog.txt").find(" ERROR b\n"), std::string::npos);
    EXPECT_NE(Bytes("own name.txt").find(" ERROR c\n"), std::string::npos);
}

TEST_F(LogMgr, SystemErrorLoggerWritesItsOwnFileWithTheFullPrefix)
{
    Manager().getSystemErrorLogger()->Log(LEVEL_ERROR, "hello");
    const std::string line = Bytes("ErrorLog.txt");
    EXPECT_EQ(line.substr(0, 1), "[");
    EXPECT_EQ(line.substr(25, 22), " Main Thread         (");
    EXPECT_EQ(line.substr(line.size() - 13), " ERROR hello\n");
    EXPECT_EQ(Manager().getSystemErrorLogger()->getName(), "SystemErrorLogger");
}

TEST_F(LogMgr, ConsumersThatNameOneFileShareIt)
{
    const auto one = Manager().getConsumer("SystemErrorLogger");
    const auto two = Manager().getConsumer("ErrorLog");
    for (int i = 0; i < 50; ++i) {
        one->Log(LEVEL_ERROR, "one %d", i);
        two->Log(LEVEL_INFO, "two %d", i);
    }
    EXPECT_TRUE(Manager().flush());
    const std::string text = Support::WithoutFilling(Bytes("ErrorLog.txt"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100);
    for (int i = 0; i < 50; ++i) {
        EXPECT_NE(text.find(BSS::UTI::Format(" ERROR one %d\n", i)), std::string::npos);
        EXPECT_NE(text.find(BSS::UTI::Format(" INFO two %d\n", i)), std::string::npos);
    }
}

TEST_F(LogMgr, NameWithSeparatorsStaysInTheDirectory)
{
    Manager().getConsumer("../x")->Log(LEVEL_ERROR, "a");
    EXPECT_FALSE(boost::filesystem::exists(m_directory.Path() / "x.txt"));
    EXPECT_NE(Bytes("%2E.%2Fx.txt").find("a\n"), std::string::npos);
}

TEST_F(LogMgr, SecondNameNmeaSplitsLines)
{
    const auto consumer = Manager().getConsumer("receiver", "nmea");
    consumer->setPrefixKind(PrefixKind::None);
    consumer->Log(LEVEL_ERROR, "$A\r\n$B\r\n");
    EXPECT_EQ(Bytes("receiver.txt"), "$A\n$B\n");
    const auto usual = Manager().getConsumer("receiver 2", "NMEA");
    usual->setPrefixKind(PrefixKind::None);
    usual->Log(LEVEL_ERROR, "$A\r\n$B\r\n");
    EXPECT_EQ(Bytes("receiver 2.txt"), "receiver 2: 001, $A\nreceiver 2: 002, $B\n");
}

TEST_F(LogMgr, LinesWrittenBareAreNeverFilledUp)
{
    const auto consumer = Manager().getConsumer("receiver", "nmea");
    consumer->setPrefixKind(PrefixKind::None);
    std::string all;
    for (int i = 0; i < 1000; ++i) {
        consumer->Log(LEVEL_INFO, "$GPGGA,%d*47", i);
        all += BSS::UTI::Format("$GPGGA,%d*47\n", i);
    }
    EXPECT_TRUE(consumer->flush());
    EXPECT_TRUE(Bytes("receiver.txt") == all);
}

TEST_F(LogMgr, DefaultsArePrefixKindOneAndTwo)
{
    EXPECT_EQ(Manager().getConsumer("printf")->getPrefixKind(), PrefixKind::Full);
    EXPECT_EQ(Manager().getConsumer("OutputDebugString")->getPrefixKind(), PrefixKind::Time);
    EXPECT_EQ(Manager().getConsumer("some file")->getPrefixKind(), PrefixKind::Full);
    EXPECT_EQ(DbgLogTcpIpConsumerC("TcpIp", nullptr).getPrefixKind(), PrefixKind::Full);
}

TEST_F(LogMgr, DebuggerConsumerWritesToTheDebuggerOutput)
{
    const Support::DebugOutputCapture debug;
    Manager().getConsumer("OutputDebugString")->Log(LEVEL_INFO, "hello");
    EXPECT_EQ(debug.Text().substr(23), L" hello\n");
}

TEST_F(LogMgr, PrintfConsumerWritesToStandardOutput)
{
    testing::internal::CaptureStdout();
    Manager().getConsumer("printf")->Log(LEVEL_INFO, "hello");
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.substr(out.size() - 12), " INFO hello\n");
}

TEST_F(LogMgr, NothingElseAppearsOnStandardOutputOrError)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Manager().getConsumer("quiet")->Log(LEVEL_FATAL, "a");
    Manager().getSystemErrorLogger()->Log(LEVEL_FATAL, "b");
    Manager().getConsumer("OutputDebugString")->Log(LEVEL_FATAL, "c");
    Support::WriteAll(m_directory.Narrow("file"), "a file in the directory's place");
    BSS::OS::SetLogDirectory(m_directory.Wide("file"));
    Manager().getConsumer("quiet")->Log(LEVEL_FATAL, "cannot be written");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    BSS::OS::SetLogDirectory(m_directory.Wide("log"));
    EXPECT_TRUE(Manager().flush());
}

TEST_F(LogMgr, IsAConsumerThatPassesOnToTheSystemErrorLogger)
{
    const Support::LogCapture log;
    Manager().Log(LEVEL_INFO, "one %d", 1);
    EXPECT_EQ(log.Messages(), "one 1\n"); // with the logger's own prefix, which is none
}

TEST_F(LogMgr, MessagesOnItHaveTheLevelAndThePrefixOfTheSystemErrorLogger)
{
    const Support::LogCapture log;
    const auto logger = Manager().getSystemErrorLogger();
    logger->setLevel(LEVEL_WARN);
    Manager().Log(LEVEL_INFO, "no");
    Manager().Log(LEVEL_INFO, L"no");
    Manager().logText(LEVEL_INFO, "no");
    Manager().Log(LEVEL_WARN, "a %d", 1);
    Manager().Log(LEVEL_WARN, L"b %d", 2);
    Manager().logText(LEVEL_WARN, "c\nd");
    EXPECT_EQ(log.Messages(), "a 1\nb 2\ncapture: 001, c\ncapture: 002, d\n");
}

class Closed final : public DbgLogConsumerC
{
public:
    Closed() : DbgLogConsumerC("closed", PrefixKind::None) {}
    bool isOpen() const noexcept override { return false; }
    std::string text;

protected:
    bool write(std::string_view lines) override { return text += lines, true; }
};

TEST_F(LogMgr, MessagesOnItGoNowhereWhileTheSystemErrorLoggerIsClosed)
{
    const Support::LogCapture restore;
    const auto closed = std::make_shared<Closed>();
    Manager().setSystemErrorLogger(closed);
    Manager().Log(LEVEL_FATAL, "no");
    EXPECT_EQ(closed->text, "");
}

TEST_F(LogMgr, FailureOfAMessageOnItIsToldUnderTheLogThatFailed)
{
    const Support::LogCapture log([] { throw 5; });
    const Support::DebugOutputCapture debug;
    Manager().Log(LEVEL_FATAL, "no");
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (capture)!\n");
}

TEST_F(LogMgr, MissingSystemErrorLoggerIsToldOnTheDebugOutput)
{
    const Support::LogCapture restore;
    Manager().setSystemErrorLogger(nullptr);
    const Support::DebugOutputCapture debug;
    EXPECT_EQ(Manager().getSystemErrorLogger(), nullptr);
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
}

class Failing final : public DbgLogConsumerC
{
public:
    Failing() : DbgLogConsumerC("f", PrefixKind::None) {}

protected:
    bool flushDevice() override { return false; }
    bool write(std::string_view) override { return true; }
};

TEST_F(LogMgr, FailedFlushIsReported)
{
    const Support::LogCapture restore;
    const Support::ReportCapture reports;
    Manager().setSystemErrorLogger(std::make_shared<Failing>());
    EXPECT_FALSE(Manager().flush());
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

TEST_F(LogMgr, FlushReachesEveryFileAndIsSilentWhenItSucceeds)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    Manager().getConsumer("flushed")->Log(LEVEL_ERROR, "first");
    Manager().getConsumer("flushed")->Log(LEVEL_INFO, "second");
    EXPECT_TRUE(Manager().flush());
    EXPECT_NE(Bytes("flushed.txt").find("second\n"), std::string::npos);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(LogMgr, ConsumerWhoseFlushThrowsDoesNotKeepTheOthersFromBeingFlushed)
{
    struct Throwing final : SubLogManagerC
    {
        bool flushLogs() override { throw ++count; }
        int count = 0;
    } one, two;
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    Manager().registerSubManager(one);
    Manager().registerSubManager(two);
    EXPECT_FALSE(Manager().flush());
    Manager().unregisterSubManager(one);
    Manager().unregisterSubManager(two);
    EXPECT_EQ(one.count + two.count, 2);
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

class SubManager final : public SubLogManagerC
{
public:
    explicit SubManager(bool result = true) : m_result(result) {}
    ~SubManager() override { Manager().unregisterSubManager(*this); }
    bool flushLogs() override { return ++m_count, m_result; }
    int m_count = 0;

private:
    const bool m_result;
};

TEST_F(LogMgr, SubManagersAreFlushedUntilTheyAreTakenBack)
{
    SubManager sub;
    Manager().registerSubManager(sub);
    EXPECT_TRUE(Manager().flush());
    Manager().unregisterSubManager(sub);
    EXPECT_TRUE(Manager().flush());
    EXPECT_EQ(sub.m_count, 1);
}

TEST_F(LogMgr, SubManagersMayTakeThemselvesBackWhileTheyAreFlushed)
{
    struct Once final : SubLogManagerC
    {
        ~Once() override { Manager().unregisterSubManager(*this); }
        bool flushLogs() override
        {
            Manager().unregisterSubManager(*this);
            Manager().unregisterSubManager(*other);
            return ++count, true;
        }
        Once* other = this;
        int count = 0;
    } one, two;
    one.other = &two;
    two.other = &one;
    Manager().registerSubManager(one);
    Manager().registerSubManager(two);
    EXPECT_TRUE(Manager().flush());
    EXPECT_TRUE(Manager().flush());
    EXPECT_EQ(one.count + two.count, 1);
}

TEST_F(LogMgr, SubManagerThatFailsFailsTheFlush)
{
    SubManager sub(false);
    Manager().registerSubManager(sub);
    const Support::ReportCapture reports;
    EXPECT_FALSE(Manager().flush());
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

TEST_F(LogMgr, SubManagerRegisteredTwiceIsReportedAndFlushedOnce)
{
    SubManager sub;
    const Support::ReportCapture reports;
    Manager().registerSubManager(sub);
    EXPECT_TRUE(reports.Reports().empty());
    Manager().registerSubManager(sub);
    EXPECT_EQ(reports.Count("m_subManagers.find(&subManager) == m_subManagers.end()"), 1u);
    EXPECT_TRUE(Manager().flush());
    EXPECT_EQ(sub.m_count, 1);
}

TEST_F(LogMgr, ConfigurationLineChangesAConsumerWhileItRuns)
{
    const auto consumer = Manager().getConsumer("changed");
    EXPECT_TRUE(Manager().configure("changed = WARN 3 64 7\n"));
    EXPECT_EQ(consumer->getLevel(), LEVEL_WARN);
    EXPECT_EQ(consumer->getPrefixKind(), PrefixKind::UtcTime);
    EXPECT_EQ(consumer->getLimit(), 64u << 10);
    EXPECT_EQ(consumer->getOlderFiles(), 7u);
    EXPECT_TRUE(Manager().configure("changed = ALL"));
    EXPECT_TRUE(consumer->isEnabled(0));
    EXPECT_EQ(consumer->getLimit(), 64u << 10);
}

TEST_F(LogMgr, ConfigurationLineIsRememberedForAConsumerMadeLater)
{
    EXPECT_TRUE(Manager().configure("later = FINER"));
    EXPECT_EQ(Manager().getConsumer("later")->getLevel(), LEVEL_FINER);
}

TEST_F(LogMgr, ConfigurationLineThatCannotBeReadChangesNothing)
{
    const auto consumer = Manager().getConsumer("unchanged");
    consumer->setLevel(LEVEL_WARN);
    for (const char* line : {"unchanged = LOUD", "unchanged FINE", "= FINE", "unchanged ="})
        EXPECT_FALSE(Manager().configure(line)) << line;
    EXPECT_EQ(consumer->getLevel(), LEVEL_WARN);
}

TEST_F(LogMgr, ConfigurationLineLeavesOtherConsumersAsTheProgramSetThem)
{
    const auto set = Manager().getConsumer("set by the program");
    EXPECT_TRUE(Manager().configure("set by the program = WARN"));
    set->setLevel(LEVEL_FINE);
    EXPECT_TRUE(Manager().configure("some other = ERROR"));
    EXPECT_EQ(set->getLevel(), LEVEL_FINE);
}

TEST_F(LogMgr, ConfigurationLineThatIsUnderstoodInPartCountsThatFarAndIsTold)
{
    const Support::LogCapture log;
    const auto consumer = Manager().getConsumer("in part");
    EXPECT_TRUE(Manager().configure("in part = WARN 2 x"));
    EXPECT_EQ(consumer->getLevel(), LEVEL_WARN);
    EXPECT_EQ(consumer->getPrefixKind(), PrefixKind::Time);
    EXPECT_EQ(log.Messages(), "the line of configuration for in part counts only up to \"x\"\n");
}

TEST_F(LogMgr, LevelSetWhileOtherThreadsLogTakesEffect)
{
    const auto consumer = Manager().getConsumer("busy");
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&consumer] {
            for (int k = 0; k < 500; ++k)
                consumer->Log(LEVEL_INFO, "line %d", k);
        });
    for (int k = 0; k < 100; ++k)
        EXPECT_TRUE(Manager().configure(k % 2 == 0 ? "busy = ERROR 2 8 2" : "busy = FINE 1 16 3"));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(Manager().configure("busy = ERROR"));
    EXPECT_FALSE(consumer->isEnabled(LEVEL_INFO));
}

TEST_F(LogMgr, LogFilesAreWalkedInTheOrderOfTheirNames)
{
    static_cast<void>(Manager().getConsumer("walk b"));
    static_cast<void>(Manager().getConsumer("walk a"));
    std::vector<std::string> names;
    for (DbgLogFileIteratorC at = Manager().firstLogFile(); at; Manager().nextLogFile(at)) {
        names.push_back(at.getConsumerName());
    }
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (const char* file : {"walk a", "walk b", "SystemErrorLogger"})
        EXPECT_EQ(std::count(names.begin(), names.end(), file), 1) << file;
    EXPECT_EQ(std::count(names.begin(), names.end(), "printf"), 0);
}

TEST_F(LogMgr, LogFileTellsWhereItIs)
{
    static_cast<void>(Manager().getConsumer("whereabouts"));
    DbgLogFileIteratorC at = Manager().firstLogFile();
    while (at && at.getConsumerName() != "whereabouts")
        Manager().nextLogFile(at);
    EXPECT_EQ(Manager().getLogFilePath(at), BSS::HAL::JoinPath(m_directory.Wide("log"), L"whereabouts.txt"));
}

TEST_F(LogMgr, IteratorThatPointsToNoneOfTheLogFilesIsReported)
{
    const Support::ReportCapture reports;
    DbgLogFileIteratorC none;
    EXPECT_EQ(Manager().getLogFilePath(none), L"");
    Manager().nextLogFile(none);
    EXPECT_FALSE(none);
    EXPECT_EQ(
        reports.Count("This function must be called with an iterator pointing to one of our log files."), 2u);
}

TEST_F(LogMgr, ConsumerAskedForByManyThreadsIsMadeOnce)
{
    std::vector<DbgLogMgrC::ConsumerPtrT> made(8);
    std::vector<std::thread> threads;
    for (auto& each : made)
        threads.emplace_back([&each] { each = Manager().getConsumer("made once"); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& each : made)
        EXPECT_EQ(each, made.front());
}

} // namespace
