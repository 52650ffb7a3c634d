// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The examples of the page on logs are what the code writes and reads.
#include "Bss/Bss_Dbg/BSS_DBG_LogConfigLine.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"
#include "Support/LogCapture.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"
#include "Support/PageExamples.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace BSS::DBG;

namespace {

constexpr char PAGE[] = "logging.md";

std::vector<std::string> Examples(const std::string& kind)
{
    return Support::ExamplesOf(PAGE, kind);
}

LogLineContextT ContextOfThePage()
{
    const BSS::HAL::CalendarTime time{2026, 1, 31, 23, 59, 58, 7};
    return {time, time, "Main Thread", 0x1A2B, -1, LEVEL_WARN};
}

TEST(LoggingPage, LinesAreWhatIsWritten)
{
    const std::string prefix = PrefixedLine(PrefixKind::Full, ContextOfThePage(), "");
    const LogLayoutT layout{"Network", prefix, false, 16000};
    const std::string written =
        LinesOfMessage(layout, "text of the message") +
        LinesOfMessage(layout, "first line of a longer message\nsecond line") +
        LinesOfMessage(layout, "logging.conf: line 4 cannot be read and is left out") +
        LinesOfMessage(layout, "logging.conf: line 5 can be read only in part, its end "
                               "is left out");
    EXPECT_EQ(Examples("log"), Support::LinesOf(written));
}

TEST(LoggingPage, UtcLineIsWhatIsWritten)
{
    EXPECT_EQ(Examples("utc"), std::vector<std::string>{PrefixedLine(PrefixKind::UtcTime, ContextOfThePage(),
                                                                     "text of the message")});
}

// In a process of its own: a consumer refuses to start only once.
TEST(LoggingPageDeathTest, ReportsAreWhatIsLogged)
{
    const auto report = [] {
        InstallTcpIpLogConsumer();
        const Support::LogCapture log;
        static_cast<void>(DbgLogMgrC::instance().getConsumer("TcpIp"));
        static_cast<void>(BSS::UTI::StringC(L"abc").GetAt(5));
        std::fputs(log.Messages().c_str(), stderr);
        std::_Exit(Examples("report") == Support::LinesOf(log.Messages()) ? 0 : 1);
    };
    EXPECT_EXIT(report(), testing::ExitedWithCode(0), "");
}

using LoggingPageFolder = Support::LogFolderTest;

TEST_F(LoggingPageFolder, LossesAreToldAsThePageSays)
{
    // Three hundred lines of a thousand bytes while nothing can be written; 262 of them fit the buffer.
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    DbgLogFileC file(L"a.txt", 0);
    const std::string line = std::string(999, 'x') + "\n";
    for (int i = 0; i < 300; ++i)
        static_cast<void>(file.append(line, {1000 + i, 0}));
    boost::filesystem::remove(m_directory.Path() / "log");
    EXPECT_TRUE(file.append("next\n", {2000, 0}));
    const std::vector<std::string> told = Examples("lost");
    ASSERT_EQ(told.size(), 1u);
    EXPECT_NE(Bytes("a.txt").find("\n" + told[0] + "\nnext\n"), std::string::npos);
}

TEST(LoggingPage, ConfigurationLinesCanBeRead)
{
    const std::vector<std::string> lines = Examples("logging.conf");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_TRUE(IsEmptyLogConfigLine(lines[0]));
    for (std::size_t i = 1; i < lines.size(); ++i)
        EXPECT_TRUE(ParseLogConfigLine(lines[i])) << lines[i];
    EXPECT_EQ(ParseLogConfigLine(lines[2])->settings, (LogSettingsT{LEVEL_FINEST, 1, 4096, 9}));
}

TEST(LoggingPage, LevelsHaveTheirNumbers)
{
    const std::string page = Support::PageText(PAGE);
    for (const char* const level : {"FATAL", "ERROR", "WARN", "INFO", "ALL"}) {
        const std::string row = BSS::UTI::Format("| `%s` | %d |", level, ParseLogSettings(level)->level);
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
    const std::string details =
        BSS::UTI::Format("| `FINE`, `FINER`, `FINEST` | %d, %d, %d |", LEVEL_FINE, LEVEL_FINER, LEVEL_FINEST);
    EXPECT_NE(page.find(details), std::string::npos) << details;
}

TEST(LoggingPage, SizesAreTheOnesOfTheCode)
{
    const std::string page = Support::PageText(PAGE);
    EXPECT_EQ(DbgLogConsumerC::DEFAULT_LIMIT_BYTES, 10u << 20);
    EXPECT_NE(page.find("up to 10 MiB"), std::string::npos);
    EXPECT_EQ(DbgLogConsumerC::DEFAULT_OLDER_FILES, 3u);
    EXPECT_NE(page.find("three of these are kept"), std::string::npos);
    EXPECT_EQ(DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE, 16384u);
    EXPECT_NE(page.find("longer than 16 KB"), std::string::npos);
    EXPECT_EQ(DbgLogConsumerC::MAX_MESSAGE_BYTES, 1u << 20);
    EXPECT_NE(page.find("more than 1 MiB is cut"), std::string::npos);
    EXPECT_EQ(LONGEST_SHOWN_NAME, 128u);
    EXPECT_NE(page.find("name of more than 128 bytes"), std::string::npos);
    EXPECT_EQ(MAX_LOG_CONFIG_BYTES, 1u << 20);
    EXPECT_NE(page.find("larger than 1 MiB"), std::string::npos);
}

} // namespace
