// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Assertions and panics: what is logged, what the handler is told, and what is left when the usual way is
// closed.
#include "Bss/Bss_Err/BSS_ERR_Report.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"
#include "Support/TemporaryDirectory.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

using BSS::ERR::AssertFailed;
using BSS::ERR::Panic;

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Err\ReportTest)";

TEST(Report, AssertionWithoutHandlerAnswersTrueAndIsLogged)
{
    const Support::LogCapture log;
    EXPECT_TRUE(AssertFailed("index < count", 0, 0, "File", 12));
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(12): index < count>>\n");
    EXPECT_EQ(log.Levels(), std::vector<int>{BSS::DBG::LEVEL_ERROR});
}

TEST(Report, AssertionHandsItsValuesToTheHandlerAndReturnsTheAnswer)
{
    struct Refusing final : BSS::ERR::SysPanicHandlerI
    {
        void Panic(const char*, BSS::ResultCodeT, std::uint32_t, std::uint32_t, const char*,
                   std::int32_t) override
        {}
        bool Assert(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                    std::int32_t line) override
        {
            told = std::string(expression) + file;
            numbers = {first, second, static_cast<std::uint32_t>(line)};
            return false;
        }
        std::string told;
        std::vector<std::uint32_t> numbers;
    } handler;
    const Support::LogCapture log;
    BSS::ERR::GetPanicHandlerRegistry().Register(&handler, true);
    EXPECT_FALSE(AssertFailed("a %lx", 7, 8, "File", 9));
    BSS::ERR::GetPanicHandlerRegistry().Unregister(&handler);
    EXPECT_EQ(handler.told, "a %lxFile");
    EXPECT_EQ(handler.numbers, (std::vector<std::uint32_t>{7, 8, 9}));
}

TEST(Report, ExpressionPrintsBothValuesInHexadecimal)
{
    const Support::LogCapture log;
    AssertFailed("nIndex:%lx, %lx", 0xABCD, 0xFFFFFFFF, "File", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(1): nIndex:abcd, ffffffff>>\n");
}

TEST(Report, ExpressionWithoutConversionsIgnoresTheValues)
{
    const Support::LogCapture log;
    AssertFailed("plain", 1, 2, "File", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(1): plain>>\n");
}

TEST(Report, ConversionsBeyondTheTwoValuesArePrintedAsTheyStand)
{
    const Support::LogCapture log;
    AssertFailed("%d %u %x %08lX", 1, 2, "File", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(1): 1 2 %x %08lX>>\n");
}

TEST(Report, OnlyIntegerConversionsAreObeyed)
{
    const Support::LogCapture log;
    AssertFailed("%s%S%n%p%f%c%ls %d", 5, 6, "File", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(1): %s%S%n%p%f%c%ls 5>>\n");
}

TEST(Report, PercentSignAtTheEndOfAnExpressionIsPrinted)
{
    const Support::LogCapture log;
    AssertFailed("100%", 5, 6, "File", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at File(1): 100%>>\n");
}

TEST(Report, PercentSignInTheFileNameIsNoConversion)
{
    const Support::LogCapture log;
    AssertFailed("x", 5, 6, "%s%d", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at %s%d(1): x>>\n");
}

TEST(Report, HugeWidthCostsNoMoreThanTheLimit)
{
    const Support::LogCapture log;
    AssertFailed("%2000000000d", 5, 6, "File", 1);
    EXPECT_LT(log.Messages().size(), 60000u);
    EXPECT_NE(log.Messages().find("... (cut)>>\n"), std::string::npos);
}

TEST(Report, MacroReportsTheConditionsOwnTextAndLine)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    const int count = 0;
    BSS_ASSERT(count > 0);
    const int line = __LINE__ - 1;
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "count > 0");
    EXPECT_EQ(reports.Reports()[0].file, BSS_SOURCE_NAME);
    EXPECT_EQ(reports.Reports()[0].line, line);
    EXPECT_EQ(reports.Reports()[0].first, 0u);
    EXPECT_EQ(reports.Reports()[0].second, 0u);
}

TEST(Report, MacroIsSilentWhenTheConditionHolds)
{
    const Support::LogCapture log;
    BSS_ASSERT(1 + 1 == 2);
    EXPECT_EQ(log.Messages(), "");
}

TEST(Report, MessageOnlyAssertionShowsTheNegatedText)
{
    const Support::LogCapture log;
    BSS_ASSERT_AT(!"Write not allowed!", 17);
    EXPECT_EQ(log.Messages(),
              "<<ASSERT at ..\\..\\Source\\Bss\\Bss_Err\\ReportTest(17): !\"Write not allowed!\">>\n");
}

TEST(Report, PanicLogsItsFixedTypeAtLevelFatal)
{
    const Support::LogCapture log;
    Panic("list:%lx, %lx", 0x77777777, 3, 16, "File", 40);
    EXPECT_EQ(log.Messages(), "<<PANIC at File(40): list:3, 10 - type 0x1200001>>\n");
    EXPECT_EQ(log.Levels(), std::vector<int>{BSS::DBG::LEVEL_FATAL});
}

TEST(Report, PanicLogsItsTypeWhenTheFormatUsesNoValue)
{
    const Support::LogCapture log;
    Panic("no values", 5, 3, 16, "File", 40);
    EXPECT_EQ(log.Messages(), "<<PANIC at File(40): no values - type 0x1200001>>\n");
}

TEST(Report, PanicForwardsTheFixedTypeWhateverTheCallerPasses)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    BSS_PANIC("W: %lx", 0x5, 1, 2);
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].kind, Support::ReportT::Kind::Panic);
    EXPECT_EQ(reports.Reports()[0].type, 0x01200001u);
    EXPECT_EQ(reports.Reports()[0].text, "W: %lx");
    EXPECT_EQ(reports.Reports()[0].second, 2u);
}

TEST(Report, WithoutLoggerTheDebugOutputIsToldAndTheHandlerStillAnswers)
{
    const Support::LogCapture log;
    BSS::DBG::DbgLogMgrC::instance().setSystemErrorLogger(nullptr);
    const Support::DebugOutputCapture debug;
    const Support::ReportCapture reports;
    AssertFailed("x", 0, 0, "File", 1);
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
    EXPECT_EQ(reports.Count("x"), 1u);
}

TEST(Report, PanicWithoutLoggerTellsTheDebugOutputToo)
{
    const Support::LogCapture log;
    BSS::DBG::DbgLogMgrC::instance().setSystemErrorLogger(nullptr);
    const Support::DebugOutputCapture debug;
    Panic("x", 0, 0, 0, "File", 1);
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
}

TEST(Report, ReportRaisedInsideAConsumerGoesToTheDebugOutputOnly)
{
    const Support::LogCapture log([] { AssertFailed("inner", 0, 0, "Inner", 2); });
    const Support::DebugOutputCapture debug;
    const Support::ReportCapture reports;
    AssertFailed("outer", 0, 0, "Outer", 1);
    EXPECT_EQ(log.Messages(), "<<ASSERT at Outer(1): outer>>\n");
    EXPECT_EQ(debug.Text(), L"<<ASSERT at Inner(2): inner>>\n");
    EXPECT_EQ(reports.Count("inner"), 0u);
    EXPECT_EQ(reports.Count("outer"), 1u);
}

TEST(Report, ReportOnTheDebugOutputIsOneHarmlessLine)
{
    const Support::LogCapture log([] { Panic("node\r\n\x1B", 0, 0, 0, "Inner", 2); });
    const Support::DebugOutputCapture debug;
    AssertFailed("outer", 0, 0, "Outer", 1);
    EXPECT_EQ(debug.Text(), L"<<PANIC at Inner(2): node\\x0D\\x0A\\x1B - type 0x1200001>>\n");
}

TEST(Report, PanicRaisedInsideAConsumerGoesToTheDebugOutputOnly)
{
    const Support::LogCapture log([] { Panic("inner %lx", 0, 31, 0, "Inner", 2); });
    const Support::DebugOutputCapture debug;
    const Support::ReportCapture reports;
    AssertFailed("outer", 0, 0, "Outer", 1);
    EXPECT_EQ(debug.Text(), L"<<PANIC at Inner(2): inner 1f - type 0x1200001>>\n");
    EXPECT_EQ(reports.Reports().size(), 1u);
}

TEST(Report, ReportRaisedInsideAHandlerIsLoggedAndReentersTheHandler)
{
    struct Reporting final : BSS::ERR::SysPanicHandlerI
    {
        void Panic(const char*, BSS::ResultCodeT, std::uint32_t, std::uint32_t, const char*,
                   std::int32_t) override
        {}
        bool Assert(const char* expression, std::uint32_t, std::uint32_t, const char*, std::int32_t) override
        {
            told.emplace_back(expression);
            if (told.size() == 1) AssertFailed("inner", 0, 0, "Inner", 2);
            return true;
        }
        std::vector<std::string> told;
    } handler;
    const Support::LogCapture log;
    BSS::ERR::GetPanicHandlerRegistry().Register(&handler, true);
    AssertFailed("outer", 0, 0, "Outer", 1);
    BSS::ERR::GetPanicHandlerRegistry().Unregister(&handler);
    EXPECT_EQ(handler.told, (std::vector<std::string>{"outer", "inner"}));
    EXPECT_EQ(log.Messages(), "<<ASSERT at Outer(1): outer>>\n<<ASSERT at Inner(2): inner>>\n");
}

TEST(Report, ReportsFromManyThreadsAllArriveWhole)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    constexpr int PER_THREAD = 200;
    auto reporting = [] {
        for (int i = 0; i < PER_THREAD; ++i)
            AssertFailed("busy %lx", 5, 0, "File", 1);
    };
    std::thread one(reporting);
    std::thread two(reporting);
    one.join();
    two.join();
    EXPECT_EQ(reports.Count("busy %lx"), 2u * PER_THREAD);
    EXPECT_EQ(log.Levels().size(), 2u * PER_THREAD);
}

TEST(ReportDeathTest, FirstReportOfAllMakesItsOwnLogger)
{
    const auto reportAndLeave = [] {
        AssertFailed("first of all", 0, 0, "File", 1);
        std::exit(0);
    };
    EXPECT_EXIT(reportAndLeave(), testing::ExitedWithCode(0), "");
    EXPECT_NE(Support::ReadAll(Support::LogDirectory() + "/ErrorLog.txt")
                  .find("<<ASSERT at File(1): first of all>>\n"),
              std::string::npos);
}

TEST(ReportDeathTest, HandlerLeftRegisteredAtTheEndIsReportedAtItsFixedLine)
{
    const auto registerAndLeave = [] {
        static Support::ReportCapture* const left = new Support::ReportCapture;
        std::exit(left->Reports().empty() ? 0 : 1);
    };
    EXPECT_EXIT(registerAndLeave(), testing::ExitedWithCode(0), "");
    EXPECT_NE(Support::ReadAll(Support::LogDirectory() + "/ErrorLog.txt")
                  .find(R"(<<ASSERT at ..\..\Source\Bss\Bss_Err\BSS_ERR_PanicHandlerRegistry(57): false>>)"),
              std::string::npos);
}

TEST(ReportDeathTest, ReportAfterTheEndOfTheLogGoesToTheDebugOutput)
{
    const auto reportLate = [] {
        BSS::HAL::SetDebugOutputSink(
            [](const wchar_t* text, void*) { std::fputs(BSS::HAL::Utf8FromWide(text).c_str(), stderr); },
            nullptr);
        // Registered before the log manager is made, so it runs after the manager is gone.
        std::atexit([] { AssertFailed("too late", 0, 0, "File", 3); });
        AssertFailed("in time", 0, 0, "File", 2);
        std::exit(0);
    };
    EXPECT_EXIT(reportLate(), testing::ExitedWithCode(0), "^<<ASSERT at File.3.: too late>>");
}

} // namespace
