// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lines of log configuration.
#include "Bss/Bss_Dbg/BSS_DBG_LogConfiguration.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <gtest/gtest.h>
#include <vector>

using namespace BSS::DBG;

namespace {

int LevelOf(std::string_view text)
{
    const std::optional<LogSettingsT> settings = ParseLogSettings(text);
    return settings ? settings->level : -1;
}

TEST(LogLevelWord, EveryWordHasItsNumber)
{
    EXPECT_EQ(LevelOf("FATAL"), 7);
    EXPECT_EQ(LevelOf("ERROR"), 6);
    EXPECT_EQ(LevelOf("WARN"), 5);
    EXPECT_EQ(LevelOf("INFO"), 4);
    EXPECT_EQ(LevelOf("FINE"), 3);
    EXPECT_EQ(LevelOf("FINER"), 2);
    EXPECT_EQ(LevelOf("FINEST"), 1);
    EXPECT_EQ(LevelOf("ALL"), 0);
}

TEST(LogLevelWord, LongerWordsAreNotTakenForFine)
{
    EXPECT_EQ(LevelOf("FINER 1 2 3"), 2);
    EXPECT_EQ(LevelOf("FINEST 1 2 3"), 1);
}

TEST(LogLevelWord, OtherWordsAndOtherCaseAreNone)
{
    for (const char* text : {"", "info", "Warn", "DEBUG", " INFO", "FIN"})
        EXPECT_EQ(LevelOf(text), -1) << text;
}

TEST(LogSettings, NumbersBehindTheWordAreReadInOrder)
{
    EXPECT_EQ(ParseLogSettings("INFO 3 512 9"), (LogSettingsT{4, 3, 512, 9}));
    EXPECT_EQ(ParseLogSettings("INFO\t-1 \r\n0\t+4294967295"), (LogSettingsT{4, -1, 0, 4294967295u}));
}

TEST(LogSettings, NumbersThatAreNotThereAreLeftOpen)
{
    EXPECT_EQ(ParseLogSettings("INFO"), (LogSettingsT{4, {}, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO 1"), (LogSettingsT{4, 1, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO 1 5 "), (LogSettingsT{4, 1, 5, {}}));
}

TEST(LogSettings, FirstThingThatIsNoNumberEndsTheReading)
{
    EXPECT_EQ(ParseLogSettings("INFO1 5"), (LogSettingsT{4, {}, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO x 5"), (LogSettingsT{4, {}, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO 1 -5 3"), (LogSettingsT{4, 1, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO 1 99999999999 3"), (LogSettingsT{4, 1, {}, {}}));
    EXPECT_EQ(ParseLogSettings("INFO 1 5x 3"), (LogSettingsT{4, 1, 5, {}}));
}

TEST(LogConfigLine, NamesItsConsumer)
{
    const auto line = ParseLogConfigLine("  two words  =  FINE 1 \r\n");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->consumer, "two words");
    EXPECT_EQ(line->settings, (LogSettingsT{3, 1, {}, {}}));
}

TEST(LogConfigLine, WithoutNameEqualsSignOrLevelIsNone)
{
    for (const char* line :
         {"", "= FINE", "name FINE", "name =", "name = 3", "# name = FINE", "; name = FINE"})
        EXPECT_FALSE(ParseLogConfigLine(line)) << line;
}

TEST(LogConfigLine, TellsWhatItDoesNotUnderstand)
{
    const auto rest = [](std::string_view line) { return ParseLogConfigLine(line)->notUnderstood; };
    EXPECT_EQ(rest("a = INFO 1 5 3 \r\n"), "");
    EXPECT_EQ(rest("a = INFORMATION"), "RMATION");
    EXPECT_EQ(rest("a = INFO x 5"), "x 5");
    EXPECT_EQ(rest("a = INFO 1 5x 3"), "x 3");
    EXPECT_EQ(rest("a = INFO 1 -5 3"), "-5 3");
    EXPECT_EQ(rest("a = INFO 1 99999999999 3"), "99999999999 3");
    EXPECT_EQ(rest("a = INFO 1 5 3 7"), "7");
}

void Add(LogConfigurationC& configuration, std::string_view line)
{
    configuration.Add(ParseLogConfigLine(line).value());
}

TEST(LogConfiguration, OwnLineBeatsTheOneForAll)
{
    LogConfigurationC configuration;
    EXPECT_EQ(configuration.Find("a"), nullptr);
    Add(configuration, "* = WARN");
    Add(configuration, "a = FINE");
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_FINE);
    EXPECT_EQ(configuration.Find("b")->level, LEVEL_WARN);
    Add(configuration, "a = ERROR");
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_ERROR);
}

TEST(LogConfiguration, TextIsReadToItsEndAndBadLinesAreNumbered)
{
    LogConfigurationC configuration;
    EXPECT_EQ(configuration.ReplaceFile("# c\r\n\r\nnonsense\na = FINE\nb = \nc = WARN x\nd = WARN"),
              (std::vector<LogConfigFaultT>{{3, false}, {5, false}, {6, true}}));
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_FINE);
    EXPECT_EQ(configuration.Find("c")->level, LEVEL_WARN);
    EXPECT_EQ(configuration.Find("d")->level, LEVEL_WARN);
}

TEST(LogConfiguration, MarkAtTheBeginningOfTheFileDoesNotMatter)
{
    LogConfigurationC configuration;
    EXPECT_EQ(configuration.ReplaceFile("\xEF\xBB\xBF* = WARN"), std::vector<LogConfigFaultT>());
    ASSERT_NE(configuration.Find("a"), nullptr);
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_WARN);
}

TEST(LogConfiguration, LineTakenOutOfTheFileCountsNoMore)
{
    LogConfigurationC configuration;
    EXPECT_TRUE(configuration.ReplaceFile("* = WARN\na = FINE\nb = FINE").empty());
    EXPECT_TRUE(configuration.ReplaceFile("b = ERROR").empty());
    EXPECT_EQ(configuration.Find("a"), nullptr);
    EXPECT_EQ(configuration.Find("b")->level, LEVEL_ERROR);
}

TEST(LogConfiguration, OfProgramAndFileTheLaterOneCounts)
{
    LogConfigurationC configuration;
    Add(configuration, "a = WARN");
    EXPECT_TRUE(configuration.ReplaceFile("a = FINE").empty());
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_FINE);
    Add(configuration, "a = ERROR");
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_ERROR);
    EXPECT_TRUE(configuration.ReplaceFile("a = FINE").empty());
    EXPECT_TRUE(configuration.ReplaceFile("").empty());
    EXPECT_EQ(configuration.Find("a")->level, LEVEL_ERROR);
}

} // namespace
