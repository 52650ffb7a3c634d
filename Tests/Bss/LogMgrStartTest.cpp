// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the log manager does once in its life: how it is made and configured at the start, and its TCP/IP
// consumer.
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

class LogMgrDeathTest : public Support::LogFolderTest
{};

// What the manager does once in its life needs a process of its own, and directories.
class OwnDirectory
{
public:
    explicit OwnDirectory(const std::string& name)
        : m_path(Support::LogDirectory() + "/" + name), m_configuration(m_path),
          m_configDirectory("SCANREADER_CONFIG_DIR", m_path)
    {
        boost::filesystem::remove_all(m_path); // left by the same test, when tests are repeated
        boost::filesystem::create_directories(m_path);
        BSS::OS::SetLogDirectory(BSS::HAL::WidePath(m_path));
    }

    std::string Path(const std::string& file) const { return m_path + "/" + file; }

private:
    const std::string m_path;
    const Support::PrivateConfiguration m_configuration;
    const Support::ScopedEnvironment m_configDirectory;
};

TEST_F(LogMgrDeathTest, ManagerAskedForByManyThreadsIsMadeOnce)
{
    const auto ask = [] {
        const OwnDirectory own("once");
        Support::WriteAll(own.Path("logging.conf"), "no line of ours\n"); // told once by each that is made
        std::vector<DbgLogMgrC*> made(8);
        std::vector<std::thread> threads;
        for (auto& each : made)
            threads.emplace_back([&each] { each = &Manager(); });
        for (std::thread& thread : threads)
            thread.join();
        const bool same = std::count(made.begin(), made.end(), made.front()) == 8;
        Manager().flush();
        const std::string told = Support::ReadAll(own.Path("ErrorLog.txt"));
        std::_Exit(same && std::count(told.begin(), told.end(), '\n') == 1 ? 0 : 1);
    };
    EXPECT_EXIT(ask(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ConfiguredLimitIsKept)
{
    const auto logMuch = [] {
        const OwnDirectory own("limited");
        if (!BSS::HAL::WriteConfigValue(L"Configuration", L"ErrorLogSize", 2)) std::_Exit(2);
        const bool read = Manager().getSystemErrorLogger()->getLimit() == 2048 &&
                          Manager().getConsumer("LoaderLog")->getLimit() == 2048;
        for (int i = 0; i < 100; ++i)
            Manager().getSystemErrorLogger()->Log(LEVEL_ERROR, "line");
        const bool kept = Support::ReadAll(own.Path("ErrorLog.txt")).size() <= 2048 &&
                          Support::ReadAll(own.Path("ErrorLog.1.txt")).size() > 1900;
        std::_Exit(read && kept ? 0 : 1);
    };
    EXPECT_EXIT(logMuch(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, MissingConfiguredLimitLeavesTheDefault)
{
    const auto look = [] {
        const OwnDirectory own("unlimited");
        const bool usual =
            Manager().getSystemErrorLogger()->getLimit() == DbgLogConsumerC::DEFAULT_LIMIT_BYTES;
        std::_Exit(usual ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ConfigurationFileIsReadAtTheStart)
{
    const auto look = [] {
        const OwnDirectory own("configured");
        Support::WriteAll(own.Path("logging.conf"),
                          "# comment\n\nSystemErrorLogger = WARN\nno line of ours\n* = FINER 2\r\n");
        const bool set = Manager().getSystemErrorLogger()->getLevel() == LEVEL_WARN &&
                         Manager().getConsumer("other")->getLevel() == LEVEL_FINER &&
                         Manager().getConsumer("other")->getPrefixKind() == PrefixKind::Time;
        Manager().flush();
        const bool told =
            Support::ReadAll(own.Path("ErrorLog.txt"))
                .find(" WARN logging.conf: line 4 cannot be read and is left out\n") != std::string::npos;
        std::_Exit(set && told ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ConfigurationFileCanBeReadAgain)
{
    const auto look = [] {
        const OwnDirectory own("reread");
        const auto consumer = Manager().getConsumer("c");
        Support::WriteAll(own.Path("logging.conf"), "c = ERROR\n");
        Manager().readConfiguration();
        std::_Exit(consumer->getLevel() == LEVEL_ERROR ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, LineForAllChangesTheConsumersWithoutALineOfTheirOwnWhileTheyRun)
{
    const auto look = [] {
        const OwnDirectory own("all");
        const std::vector<DbgLogMgrC::ConsumerPtrT> free = {Manager().getConsumer("a"),
                                                            Manager().getConsumer("b")};
        const auto configured = Manager().getConsumer("with a line");
        bool good = Manager().configure("with a line = WARN");
        std::vector<std::thread> threads;
        for (const auto& consumer : free)
            threads.emplace_back([&consumer] {
                for (int k = 0; k < 500; ++k)
                    consumer->Log(LEVEL_INFO, "line %d", k);
            });
        for (int k = 0; k < 100; ++k)
            good = Manager().configure(k % 2 == 0 ? "* = FINE 1 16 3" : "* = ERROR 2 64 7") && good;
        for (std::thread& thread : threads)
            thread.join();
        for (const auto& consumer : free)
            good = good && consumer->getLevel() == LEVEL_ERROR && consumer->getLimit() == 64u << 10 &&
                   consumer->getPrefixKind() == PrefixKind::Time && consumer->getOlderFiles() == 7;
        good = good && configured->getLevel() == LEVEL_WARN &&
               Manager().getConsumer("later")->getLevel() == LEVEL_ERROR;
        std::_Exit(good ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, LineTakenOutOfTheConfigurationFileIsInForceNoMore)
{
    const auto look = [] {
        const OwnDirectory own("taken out");
        const auto one = Manager().getConsumer("one");
        const auto two = Manager().getConsumer("two");
        one->setLevel(LEVEL_FINE);
        one->setLimit(1000);
        Support::WriteAll(own.Path("logging.conf"), "one = ERROR 2 64 7\ntwo = ERROR 2 64 7\n");
        Manager().readConfiguration();
        const bool set = one->getLevel() == LEVEL_ERROR && one->getLimit() == 64u << 10;
        Support::WriteAll(own.Path("logging.conf"), "two = WARN\n");
        Manager().readConfiguration();
        const bool back = one->getLevel() == LEVEL_FINE && one->getLimit() == 1000 &&
                          one->getPrefixKind() == PrefixKind::Full && one->getOlderFiles() == 3;
        const bool less = two->getLevel() == LEVEL_WARN && two->getPrefixKind() == PrefixKind::Full &&
                          two->getLimit() == DbgLogConsumerC::DEFAULT_LIMIT_BYTES;
        std::_Exit(set && back && less ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ConfigurationFileThatIsTooLargeOrUnreadableIsToldAndChangesNothing)
{
    const auto look = [] {
        const OwnDirectory own("too large");
        const auto consumer = Manager().getConsumer("c");
        const Support::LogCapture log;
        Support::WriteAll(own.Path("logging.conf"), "c = ERROR\n");
        Manager().readConfiguration();
        Support::WriteAll(own.Path("logging.conf"), std::string(MAX_LOG_CONFIG_BYTES, '#') + "\n");
        Manager().readConfiguration();
        boost::filesystem::remove(own.Path("logging.conf"));
        boost::filesystem::create_directory(own.Path("logging.conf"));
        Manager().readConfiguration();
        const bool told = log.Messages() == "logging.conf is larger than 1048576 bytes and is left out\n"
                                            "logging.conf cannot be read\n";
        std::_Exit(told && consumer->getLevel() == LEVEL_ERROR ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ConfigurationFileIsLookedForWhereThePathMapSays)
{
    const auto look = [] {
        const OwnDirectory own("path map");
        const auto consumer = Manager().getConsumer("c");
        boost::filesystem::create_directories(own.Path("elsewhere"));
        Support::WriteAll(own.Path("elsewhere/logging.conf"), "c = ERROR\n");
        const std::wstring elsewhere = BSS::HAL::WidePath(own.Path("elsewhere"));
        const auto rc = BSS::OS::GetPathMap().SetPath(BSS::OS::PathKind::Configuration, elsewhere.c_str());
        Manager().readConfiguration();
        std::_Exit(rc == BSS::RC_OK && consumer->getLevel() == LEVEL_ERROR ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

// The TCP/IP consumer is made once too.
class Server final : public DbgLogServerI
{
public:
    explicit Server(BSS::ResultCodeT result) : m_result(result) {}
    void configure(std::uint16_t port) override { s_port = port; }
    BSS::ResultCodeT start() override { return m_result; }
    bool send(std::string_view lines) override { return s_text += lines, true; }

    inline static std::uint16_t s_port = 0;
    inline static std::string s_text;

private:
    const BSS::ResultCodeT m_result;
};

TEST_F(LogMgrDeathTest, TcpIpConsumerStartsItsServerOnItsPortAndSendsLines)
{
    const auto look = [] {
        InstallTcpIpLogConsumer();
        SetLogServerMaker(
            []() -> std::unique_ptr<DbgLogServerI> { return std::make_unique<Server>(BSS::RC_OK); });
        const Support::LogCapture log;
        const auto consumer = Manager().getConsumer("TcpIp");
        consumer->Log(LEVEL_INFO, "hello");
        const bool sent =
            Server::s_port == 10002 && Server::s_text.find(" INFO hello\n") != std::string::npos;
        std::_Exit(sent && log.Messages().empty() ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, TcpIpServerThatDoesNotStartIsReported)
{
    const auto look = [] {
        InstallTcpIpLogConsumer();
        SetLogServerMaker(
            []() -> std::unique_ptr<DbgLogServerI> { return std::make_unique<Server>(BSS::RC_FAILED); });
        const Support::LogCapture log;
        const Support::ReportCapture reports;
        const auto consumer = Manager().getConsumer("TcpIp");
        consumer->Log(LEVEL_INFO, "hello");
        std::_Exit(reports.Count("rc == RC_OK") == 1 && consumer && !consumer->isOpen() &&
                           Server::s_text.empty()
                       ? 0
                       : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, TcpIpConsumerWithoutAServerRefusesToStartAndSaysSo)
{
    const auto look = [] {
        InstallTcpIpLogConsumer();
        const Support::LogCapture log;
        const Support::DebugOutputCapture debug;
        const Support::ReportCapture reports;
        const auto consumer = Manager().getConsumer("TcpIp");
        const bool said =
            debug.Text() ==
            L"BSS::DBG::DbgLogTcpIpConsumerC::start there is no TCP/IP server in this program\r\n";
        std::_Exit(said && reports.Count("rc == RC_OK") == 1 && consumer && !consumer->isOpen() ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

TEST_F(LogMgrDeathTest, ProgramWithoutTcpIpConsumersReportsThat)
{
    const auto look = [] {
        DbgLogMgrC::setTcpIpConsumerMaker(nullptr);
        const Support::LogCapture log;
        const Support::ReportCapture reports;
        std::_Exit(!Manager().getConsumer("TcpIp") && reports.Count("rc == RC_OK") == 1 ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "");
}

} // namespace
