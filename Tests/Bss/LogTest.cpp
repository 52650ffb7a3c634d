// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Log lines and consumers.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Support/AllocationCount.h"
#include "Support/DebugOutputCapture.h"
#include "Support/LogLines.h"
#include "Support/ReportCapture.h"

#include <algorithm>
#include <cerrno>
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

TEST(LogLine, IsPlainExactlyWhenEachOfItsBytesIs)
{
    for (std::size_t length = 1; length <= 20; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            for (unsigned code = 0; code < 256; ++code) {
                std::string text(length, code % 2 == 0 ? '~' : ' ');
                text[at] = static_cast<char>(code);
                const bool plain = (code >= ' ' && code <= '~') || code == '\t';
                EXPECT_EQ(IsPlainLine(text), plain) << length << " " << at << " " << code;
            }
        }
    }
    EXPECT_TRUE(IsPlainLine(""));
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

TEST(LogConsumer, WhateverAConsumerThrowsNeverReachesTheCaller)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = []() -> bool { throw 5; };
    EXPECT_NO_THROW(consumer.Log(LEVEL_INFO, "one"));
    EXPECT_EQ(debug.Text(), FAILURE);
    EXPECT_FALSE(DbgLogConsumerC::isWriting());
}

TEST(LogConsumer, WhateverAFlushThrowsNeverReachesTheCaller)
{
    struct Throwing final : DbgLogConsumerC
    {
        Throwing() : DbgLogConsumerC("t", PrefixKind::None) {}
        bool write(std::string_view) override { return true; }
        bool flushDevice() override { throw 5; }
    } consumer;
    const Support::ReportCapture reports;
    EXPECT_NO_THROW(EXPECT_FALSE(consumer.flush()));
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

TEST(LogConsumer, LoggingFromInsideAFlushGoesToTheDebugOutput)
{
    struct Logging final : DbgLogConsumerC
    {
        Logging() : DbgLogConsumerC("l", PrefixKind::None) {}
        bool write(std::string_view lines) override { return text += lines, true; }
        bool flushDevice() override { return Log(LEVEL_INFO, "inner"), true; }
        std::string text;
    } consumer;
    const Support::DebugOutputCapture debug;
    EXPECT_TRUE(consumer.flush());
    EXPECT_EQ(consumer.text, "");
    EXPECT_EQ(debug.Text(), L"inner\n");
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

TEST(LogConsumer, MessageFromInsideAWriteIsOneHarmlessLineOfTheDebugOutput)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = [&consumer] {
        consumer.Log(LEVEL_INFO, "a\r\nb%s", "\x1B[2J");
        consumer.logText(LEVEL_INFO, "c\nd\n");
        return true;
    };
    consumer.Log(LEVEL_INFO, "outer");
    EXPECT_EQ(debug.Text(), L"a\\x0D\\x0Ab\\x1B[2J\nc\\x0Ad\n");
}

TEST(LogConsumer, MessageFromInsideAWriteThatIsTooLongSaysThatItIsCut)
{
    const Support::DebugOutputCapture debug;
    TextConsumer consumer;
    consumer.inside = [&consumer] {
        consumer.Log(LEVEL_INFO, "%20000d", 1);
        return true;
    };
    consumer.Log(LEVEL_INFO, "outer");
    EXPECT_EQ(debug.Text(), std::wstring(DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE, L' ') + L"... (cut)\n");
}

TEST(LogConsumer, FailureIsToldUnderAHarmlessName)
{
    struct Refusing final : DbgLogConsumerC
    {
        Refusing() : DbgLogConsumerC("a\nb", PrefixKind::None) {}
        bool write(std::string_view) override { return false; }
    } consumer;
    const Support::DebugOutputCapture debug;
    consumer.Log(LEVEL_INFO, "x");
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (a\\x0Ab)!\n");
}

TEST(LogConsumer, LongNameIsShownCutAndMarkedAndLinesKeepTheirLimit)
{
    struct Named final : DbgLogConsumerC
    {
        Named() : DbgLogConsumerC(std::string(40000, 'n'), PrefixKind::Full) {}
        bool write(std::string_view lines) override { return text += lines, true; }
        std::string text;
    } consumer;
    consumer.Log(LEVEL_INFO, "1\n%s", std::string(20000, 'x'));
    EXPECT_NE(consumer.text.find(" INFO " + std::string(125, 'n') + "...: 001, 1\n"), std::string::npos);
    for (const std::string& line : Support::LinesOf(consumer.text))
        EXPECT_LT(line.size(), DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE);
    EXPECT_EQ(std::count(consumer.text.begin(), consumer.text.end(), 'x'), 20000);
}

// Stands for a library whose threads can be interrupted: what runs in it is not.
bool s_undisturbed = false;
void RunShielded(BSS::HAL::UndisturbedCallT call, void* context)
{
    s_undisturbed = true;
    call(context);
    s_undisturbed = false;
}

TEST(LogConsumer, WriteAndFlushAreRunWithInterruptionsDisabled)
{
    struct Looking final : DbgLogConsumerC
    {
        Looking() : DbgLogConsumerC("l", PrefixKind::None) {}
        bool write(std::string_view) override { return ++(s_undisturbed ? shielded : bare), true; }
        bool flushDevice() override { return ++(s_undisturbed ? shielded : bare), true; }
        int shielded = 0;
        int bare = 0;
    } consumer;
    BSS::HAL::SetUndisturbedRunner(&RunShielded);
    consumer.Log(LEVEL_INFO, "one");
    consumer.Log(LEVEL_INFO, L"two");
    consumer.logText(LEVEL_INFO, "three");
    EXPECT_TRUE(consumer.flush());
    BSS::HAL::SetUndisturbedRunner(nullptr);
    EXPECT_EQ(consumer.shielded, 4);
    EXPECT_EQ(consumer.bare, 0);
    EXPECT_FALSE(s_undisturbed);
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

std::string Repeated(std::size_t count)
{
    return std::string(count, 'x');
}

TEST(LogConsumer, MessageLongerThanTheLineBufferIsContinuedInMarkedLinesAndWhole)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "%s", Repeated(40000));
    std::size_t found = 0;
    int number = 0;
    for (const std::string_view line : SplitMessage(consumer.text)) {
        EXPECT_LT(line.size(), DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE);
        ++number;
        const std::string begin =
            BSS::UTI::Format("name: %03d, %s", number, number > 1 ? "(continued) " : "");
        EXPECT_EQ(line.substr(0, begin.size()), begin);
        EXPECT_EQ(line.find_first_not_of('x', begin.size()), std::string_view::npos);
        found += line.size() - begin.size();
    }
    EXPECT_EQ(found, 40000u);
    EXPECT_EQ(number, 3);
}

TEST(LogConsumer, LongestLineThatFitsIsOneLine)
{
    TextConsumer consumer;
    const std::size_t most = DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE - 3; // line end and terminator
    consumer.Log(LEVEL_INFO, "%s", Repeated(most));
    EXPECT_EQ(consumer.text, Repeated(most) + "\n");
}

TEST(LogConsumer, ContinuedLineIsNotCutInsideACharacter)
{
    TextConsumer consumer;
    std::string text = "a";
    for (int i = 0; i < 20000; ++i)
        text += "\u00E9";
    consumer.logText(LEVEL_INFO, text);
    EXPECT_EQ(consumer.text.find("\\x"), std::string::npos);
    EXPECT_NE(consumer.text.find("(continued) \u00E9"), std::string::npos);
}

TEST(LogConsumer, MessageBeyondTheLargestSaysThatItIsCut)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "%2000000000d", 1);
    EXPECT_LT(consumer.text.size(), 2 * DbgLogConsumerC::MAX_MESSAGE_BYTES);
    EXPECT_NE(consumer.text.find("(the message was longer than 1048576 bytes; the rest is left out)\n"),
              std::string::npos);
}

TEST(LogConsumer, MessageOfAWideFormatBeyondTheLargestSaysThatItIsCut)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, L"%2000000000d", 1);
    EXPECT_LT(consumer.text.size(), 2 * DbgLogConsumerC::MAX_MESSAGE_BYTES);
    EXPECT_NE(consumer.text.find("(the message was longer than 1048576 bytes; the rest is left out)\n"),
              std::string::npos);
}

TEST(LogConsumer, CallLeavesNoTraceInErrno)
{
    TextConsumer consumer(PrefixKind::Full);
    consumer.inside = [] {
        errno = ENOSPC;
        return true;
    };
    errno = EXDEV;
    consumer.Log(LEVEL_INFO, "a");
    EXPECT_EQ(errno, EXDEV);
    consumer.logText(LEVEL_INFO, "a");
    EXPECT_EQ(errno, EXDEV);
    consumer.Log(LEVEL_INFO, L"a");
    EXPECT_EQ(errno, EXDEV);
}

TEST(LogConsumer, FlushLeavesErrnoAloneAlsoWhenItFails)
{
    struct Full final : DbgLogConsumerC
    {
        Full() : DbgLogConsumerC("f", PrefixKind::None) {}
        bool write(std::string_view) override { return true; }
        bool flushDevice() override { return errno = ENOSPC, works; }
        bool works = true;
    } consumer;
    const Support::ReportCapture reports;
    errno = EXDEV;
    EXPECT_TRUE(consumer.flush());
    EXPECT_EQ(errno, EXDEV);
    consumer.works = false;
    EXPECT_FALSE(consumer.flush());
    EXPECT_EQ(errno, EXDEV);
}

TEST(LogConsumer, WideFormatMeansWideTextByS)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, L"%s and %S", L"wide \u20AC", "narrow");
    EXPECT_EQ(consumer.text, "wide \u20AC and narrow\n");
}

TEST(LogConsumer, TextIsNotReadAsFormat)
{
    TextConsumer consumer;
    consumer.logText(LEVEL_INFO, "100 %s %n");
    EXPECT_EQ(consumer.text, "100 %s %n\n");
}

TEST(LogConsumer, NullFormatIsNamed)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, static_cast<const char*>(nullptr));
    consumer.Log(LEVEL_INFO, static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(consumer.text, "(null)\n(null)\n");
}

TEST(LogConsumer, LineSplittingWritesBareLines)
{
    TextConsumer consumer;
    consumer.setLineSplitting(true);
    consumer.Log(LEVEL_INFO, "$GPGGA,1\r\n$GPGSA,2\r\n");
    EXPECT_EQ(consumer.text, "$GPGGA,1\n$GPGSA,2\n");
}

TEST(LogConsumer, PrefixKindChangesWhileRunning)
{
    TextConsumer consumer;
    consumer.setPrefixKind(PrefixKind::UtcTime);
    consumer.Log(LEVEL_INFO, "a");
    consumer.setPrefixKind(PrefixKind::None);
    consumer.Log(LEVEL_INFO, "b");
    EXPECT_EQ(consumer.text.substr(24), " UTC]a\nb\n");
    EXPECT_EQ(consumer.getPrefixKind(), PrefixKind::None);
}

TEST(LogConsumer, NameInNumberedLinesCannotForgeALine)
{
    class Named final : public DbgLogConsumerC
    {
    public:
        Named() : DbgLogConsumerC("a\nb", PrefixKind::None) {}
        std::string text;

    protected:
        bool write(std::string_view lines) override { return text += lines, true; }
    } consumer;
    consumer.Log(LEVEL_INFO, "1\n2");
    EXPECT_EQ(consumer.text, "a\\x0Ab: 001, 1\na\\x0Ab: 002, 2\n");
}

TEST(LogConsumer, EveryKindOfLineEndAndTerminalCommandIsMadeHarmless)
{
    const char* const hostile[] = {"a\x0B"
                                   "b",
                                   "a\x0C"
                                   "b",
                                   "a\xC2\x85"
                                   "b",
                                   "a\xE2\x80\xA8"
                                   "b",
                                   "a\xE2\x80\xA9"
                                   "b",
                                   "a\x1B[1A"
                                   "b",
                                   "a\x9B"
                                   "1Ab",
                                   "a\xC2\x9B"
                                   "1Ab",
                                   "a\x08\x08"
                                   "b",
                                   "a\xE2\x80\xAE"
                                   "b",
                                   "a\xD8\x9C"
                                   "b",
                                   "a\x7F"
                                   "b",
                                   "a\xFF"
                                   "b"};
    for (const char* const text : hostile) {
        TextConsumer consumer;
        consumer.Log(LEVEL_INFO, "%s", text);
        EXPECT_EQ(consumer.text.rfind("a\\x", 0), 0u) << consumer.text;
        EXPECT_EQ(consumer.text.find('\n'), consumer.text.size() - 1);
    }
}

TEST(LogConsumer, SpacesTabsAndOtherLanguagesStayAsTheyAre)
{
    TextConsumer consumer;
    consumer.Log(LEVEL_INFO, "%s", "\tGr\u00F6\u00DFe \u6D4B\u91CF ~");
    EXPECT_EQ(consumer.text, "\tGr\u00F6\u00DFe \u6D4B\u91CF ~\n");
}

TEST(LogConsumer, DisabledCallFormatsAndAllocatesNothing)
{
    TextConsumer consumer;
    consumer.setLevel(LEVEL_WARN);
    const std::string argument = Repeated(100);
    const Support::AllocationCount count;
    consumer.Log(LEVEL_INFO, "%s %d", argument, 5);
    EXPECT_EQ(count.Count(), 0u);
    EXPECT_EQ(consumer.text, "");
}

TEST(LogConsumer, PlainLineIsMadeWithoutAllocating)
{
    struct Counting final : DbgLogConsumerC
    {
        Counting() : DbgLogConsumerC("c", PrefixKind::Full) {}
        bool write(std::string_view lines) override { return bytes += lines.size(), true; }
        std::size_t bytes = 0;
    } consumer;
    consumer.Log(LEVEL_INFO, "the first line of a second makes its prefix");
    const Support::AllocationCount count;
    std::size_t least = ~std::size_t{0};
    for (int i = 0; i < 10; ++i) { // a new second may begin once meanwhile
        const std::size_t before = count.Count();
        consumer.Log(LEVEL_INFO, "value %d of %u in %s", -i, 10u, "somewhere");
        least = std::min(least, count.Count() - before);
    }
    EXPECT_EQ(least, 0u);
}

TEST(LogConsumer, ThreadNameSetMeanwhileIsInTheNextLine)
{
    TextConsumer consumer(PrefixKind::Full);
    std::thread([&consumer] {
        consumer.Log(LEVEL_INFO, "a");
        BSS::HAL::SetCurrentThreadName("worker 7");
        consumer.Log(LEVEL_INFO, "b");
    }).join();
    EXPECT_NE(consumer.text.find("] UnknownThread       ("), std::string::npos);
    EXPECT_NE(consumer.text.find("] worker 7            ("), std::string::npos);
}

TEST(LogConsumer, ThreadNameCannotForgeALine)
{
    TextConsumer consumer(PrefixKind::Full);
    std::thread([&consumer] {
        BSS::HAL::SetCurrentThreadName("x\n[2026");
        consumer.Log(LEVEL_INFO, "a");
    }).join();
    EXPECT_EQ(consumer.text.find('\n'), consumer.text.size() - 1);
}

} // namespace
