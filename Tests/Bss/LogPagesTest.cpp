// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How lines are laid out in the pages of a log file.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogPages.h"
#include "Support/LogLines.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

using BSS::DBG::LogPagesC;
using Support::WithoutFilling;

namespace {

constexpr std::size_t PAGE = 4096;
constexpr std::uint64_t NO_LIMIT = std::numeric_limits<std::uint64_t>::max();

std::string Written(const LogPagesC& pages)
{
    std::string text;
    for (const BSS::HAL::AppendPieceT& piece : pages.pieces())
        text.append(piece.data, piece.count);
    return text;
}

std::string Line(std::size_t length, char letter = 'x')
{
    return std::string(length - 1, letter) + '\n';
}

std::string Repeated(const std::string& line, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += line;
    return text;
}

TEST(LogPages, LinesThatEndFarFromTheEndOfAPageAreWrittenAsTheyAre)
{
    const std::string lines = Repeated(Line(100), 30);
    const LogPagesC pages(lines, 0, PAGE, NO_LIMIT);
    EXPECT_EQ(Written(pages), lines);
    EXPECT_EQ(pages.textBytes(), 3000u);
    EXPECT_EQ(pages.fileBytes(), 3000u);
    EXPECT_EQ(pages.pieces().size(), 1u);
}

TEST(LogPages, LineThatWouldGoOnInTheNextPageBeginsThereAndTheOneBeforeIsFilledUp)
{
    const std::string lines = Repeated(Line(1000), 5);
    const LogPagesC pages(lines, 0, PAGE, NO_LIMIT);
    EXPECT_EQ(Written(pages),
              Repeated(Line(1000), 3) + std::string(999, 'x') + std::string(96, ' ') + "\n" + Line(1000));
    EXPECT_EQ(pages.textBytes(), 5000u);
    EXPECT_EQ(pages.fileBytes(), 5096u);
}

TEST(LogPages, PagesAreThoseOfTheFile)
{
    const std::string lines = Repeated(Line(1000), 2);
    const LogPagesC pages(lines, 10 * PAGE + 2500, PAGE, NO_LIMIT);
    EXPECT_EQ(Written(pages), std::string(999, 'x') + std::string(596, ' ') + "\n" + Line(1000));
}

TEST(LogPages, LineThatEndsWithItsPageIsNotFilledUp)
{
    const std::string lines = Repeated(Line(1024), 8);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)), lines);
}

TEST(LogPages, LastLineIsFilledUpWhereAUsualOneHasNoRoomBehindIt)
{
    const std::string lines = Repeated(Line(160), 24); // 256 bytes are left
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)), lines);
    const LogPagesC filled(lines, 1, PAGE, NO_LIMIT);
    EXPECT_EQ(filled.fileBytes(), PAGE - 1);
    EXPECT_EQ(filled.textBytes(), lines.size());
}

TEST(LogPages, LastLineIsFilledUpWhereOneAsLongAsItHasNoRoomBehindIt)
{
    EXPECT_EQ(LogPagesC(Line(1000), PAGE - 2000, PAGE, NO_LIMIT).fileBytes(), 1000u);
    EXPECT_EQ(LogPagesC(Line(1000), PAGE - 1999, PAGE, NO_LIMIT).fileBytes(), 1999u);
}

TEST(LogPages, LastLineIsFilledUpWhereOneAsLongAsTheLongestAtTheEndOfAPageHasNoRoomBehindIt)
{
    const std::string lines = Repeated(Line(1000), 5) + Repeated(Line(100), 21); // 996 bytes are left
    EXPECT_EQ(LogPagesC(lines, 0, PAGE, NO_LIMIT).fileBytes(), 2 * PAGE);
    EXPECT_EQ(LogPagesC(lines.substr(0, lines.size() - 100), 0, PAGE, NO_LIMIT).fileBytes(), 2 * PAGE - 1096);
}

TEST(LogPages, LineLongerThanAPageDoesNotSayHowLongUsualLinesAre)
{
    const std::string lines = Line(PAGE + 1000);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)), lines);
}

TEST(LogPages, WhatIsSureToStandAsItIsIsNotFilledUp)
{
    for (const std::size_t length : {1u, 50u, 300u, 1000u}) {
        for (std::size_t offset = 0; offset <= PAGE; ++offset) {
            const std::string lines = Repeated(Line(length), 3);
            const LogPagesC pages(lines, offset, PAGE, NO_LIMIT);
            if (LogPagesC::CanStandAsItIs(lines.size(), offset, PAGE)) {
                ASSERT_EQ(pages.fileBytes(), lines.size()) << length << " at " << offset;
            }
        }
    }
    EXPECT_TRUE(LogPagesC::CanStandAsItIs(1, PAGE - 257, PAGE));
    EXPECT_FALSE(LogPagesC::CanStandAsItIs(1, PAGE - 256, PAGE));
    EXPECT_TRUE(LogPagesC::CanStandAsItIs(PAGE, 1, 0));
}

TEST(LogPages, TextThatEndsWithoutALineEndIsNotFilledUp)
{
    const std::string text(PAGE - 1, 'x');
    EXPECT_EQ(Written(LogPagesC(text, 0, PAGE, NO_LIMIT)), text);
    const std::string longer = Line(10) + std::string(2 * PAGE, 'x');
    EXPECT_EQ(Written(LogPagesC(longer, 0, PAGE, NO_LIMIT)), longer);
}

TEST(LogPages, LineLongerThanAPageBeginsWhereItIs)
{
    const std::string lines = Line(100) + Line(PAGE + 1) + Line(100);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)), lines);
}

TEST(LogPages, LineAsLongAsAPageHasOneOfItsOwn)
{
    const std::string lines = Line(100) + Line(PAGE, 'y');
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)),
              std::string(99, 'x') + std::string(PAGE - 100, ' ') + "\n" + Line(PAGE, 'y'));
}

TEST(LogPages, LineBehindALongOneBeginsInTheNextPageTheLongOneIsFilledUp)
{
    const std::string lines = Line(PAGE + 3000) + Line(2000);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, NO_LIMIT)),
              std::string(PAGE + 2999, 'x') + std::string(1096, ' ') + "\n" + Line(2000));
}

TEST(LogPages, FirstLineHasNoneBeforeItThatCouldBeFilledUp)
{
    const std::string lines = Line(1000);
    EXPECT_EQ(Written(LogPagesC(lines, PAGE - 500, PAGE, NO_LIMIT)), lines);
}

TEST(LogPages, EmptyLinesAreFilledUpToo)
{
    const std::string lines = "\n" + Line(1000);
    EXPECT_EQ(Written(LogPagesC(lines, PAGE - 500, PAGE, NO_LIMIT)),
              std::string(499, ' ') + "\n" + Line(1000));
}

TEST(LogPages, WithoutPagesNothingIsFilledUp)
{
    const std::string lines = Repeated(Line(1000), 50);
    EXPECT_EQ(Written(LogPagesC(lines, 0, 0, NO_LIMIT)), lines);
    EXPECT_EQ(Written(LogPagesC(lines, 0, 0, 2500)), Repeated(Line(1000), 2));
}

TEST(LogPages, NoLinesAreNothing)
{
    const LogPagesC pages("", PAGE - 1, PAGE, NO_LIMIT);
    EXPECT_TRUE(pages.pieces().empty());
    EXPECT_EQ(pages.fileBytes(), 0u);
}

TEST(LogPages, LimitCountsWhatIsFilledUp)
{
    const std::string lines = Repeated(Line(1000), 5);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, 5096)).size(), 5096u);
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, 5095)),
              Repeated(Line(1000), 3) + std::string(999, 'x') + std::string(96, ' ') + "\n");
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, 4095)), Repeated(Line(1000), 4));
    EXPECT_EQ(Written(LogPagesC(lines, 0, PAGE, 999)), "");
    EXPECT_EQ(Written(LogPagesC(Line(4000), 0, PAGE, 4095)), Line(4000));
}

TEST(LogPages, WhatTheSystemTookOfThemIsCountedInWholeLines)
{
    const std::string lines = Repeated(Line(1000), 5); // the fourth one is filled up from 3999 to 4096
    const LogPagesC pages(lines, 0, PAGE, NO_LIMIT);
    const auto expect = [&](std::size_t taken, std::size_t text, std::size_t file) {
        const LogPagesC::ExtentT whole = pages.wholeLinesWithin(taken);
        EXPECT_EQ(whole.textBytes, text) << taken;
        EXPECT_EQ(whole.fileBytes, file) << taken;
    };
    expect(0, 0, 0);
    expect(999, 0, 0);
    expect(1000, 1000, 1000);
    expect(3999, 3000, 3000);
    expect(4000, 3000, 3000); // amidst the spaces
    expect(4095, 3000, 3000);
    expect(4096, 4000, 4096);
    expect(5095, 4000, 4096);
    expect(5096, 5000, 5096);
}

TEST(LogPages, WhateverTheSystemTookIsCountedInWholeLines)
{
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        const std::size_t longest = round % 4 == 0 ? 6000 : 400;
        std::string lines;
        while (lines.size() < 12000)
            lines += Line(1 + random() % longest);
        const LogPagesC pages(lines, random() % PAGE, PAGE, NO_LIMIT);
        const std::string written = Written(pages);
        LogPagesC::ExtentT expected;
        for (std::size_t taken = 0; taken <= written.size(); ++taken) {
            if (taken > 0 && written[taken - 1] == '\n')
                expected = {lines.find('\n', expected.textBytes) + 1, taken};
            const LogPagesC::ExtentT whole = pages.wholeLinesWithin(taken);
            ASSERT_EQ(whole.textBytes, expected.textBytes) << taken;
            ASSERT_EQ(whole.fileBytes, expected.fileBytes) << taken;
        }
    }
}

TEST(LogPages, AFullBufferIsLaidOutAtOnceWhateverTheLengthOfItsLines)
{
    for (std::size_t length = 1; length <= 3 * PAGE; length += length < 100 ? 1 : 37) {
        const std::string lines = Repeated(Line(length), BSS::DBG::DbgLogFileC::BUFFER_BYTES / length);
        EXPECT_EQ(LogPagesC(lines, 77, PAGE, NO_LIMIT).textBytes(), lines.size()) << length;
    }
}

TEST(LogPages, MoreThanFitsIsLaidOutInTurns)
{
    const std::string lines = Repeated(Line(2100), 500);
    const LogPagesC first(lines, 0, PAGE, NO_LIMIT);
    EXPECT_LE(first.pieces().size(), LogPagesC::MAX_PIECES);
    EXPECT_LT(first.textBytes(), lines.size());
    std::string written;
    for (std::size_t done = 0; done < lines.size();) {
        const LogPagesC pages(std::string_view(lines).substr(done), written.size(), PAGE, NO_LIMIT);
        written += Written(pages);
        done += pages.textBytes();
    }
    EXPECT_TRUE(WithoutFilling(written) == lines);
    EXPECT_TRUE(Support::PagesEndWithLines(written));
}

TEST(LogPages, NoLineOfUpToAPageGoesOnInTheNextAndNoTextIsChanged)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t longest = round % 3 == 0 ? PAGE : 300;
        std::string lines;
        while (lines.size() < 20000)
            lines += Line(1 + random() % longest, static_cast<char>('a' + random() % 26));
        const std::uint64_t most = round % 2 == 0 ? NO_LIMIT : random() % 30000;
        const std::uint64_t offset = round % 5 == 0 ? random() % 100000 : (random() % 100) * PAGE;
        const LogPagesC pages(lines, offset, PAGE, most);
        const std::string written = Written(pages);
        ASSERT_EQ(written.size(), pages.fileBytes());
        ASSERT_LE(written.size(), most);
        ASSERT_EQ(WithoutFilling(written), lines.substr(0, pages.textBytes()));
        for (std::size_t at = PAGE - static_cast<std::size_t>(offset % PAGE); at < written.size();
             at += PAGE) {
            const bool first = written.find('\n') + 1 > at;
            ASSERT_TRUE(first || written[at - 1] == '\n') << round;
            const LogPagesC::ExtentT whole = pages.wholeLinesWithin(at);
            ASSERT_EQ(whole.fileBytes, first ? 0 : at);
            ASSERT_EQ(WithoutFilling(written.substr(0, whole.fileBytes)), lines.substr(0, whole.textBytes));
        }
    }
}

TEST(LogPages, UsualLinesWrittenOneByOneDoNotGoOnInTheNextPage)
{
    std::mt19937 random(7);
    std::string file;
    for (int i = 0; i < 5000; ++i)
        file +=
            Written(LogPagesC(Line(1 + random() % LogPagesC::USUAL_LINE_BYTES), file.size(), PAGE, NO_LIMIT));
    EXPECT_TRUE(Support::PagesEndWithLines(file));
}

TEST(LogPages, LinesOfOneLengthDoNotGoOnInTheNextPageHoweverManyAreWrittenAtOnce)
{
    for (const std::size_t length : {1u, 255u, 256u, 257u, 400u, 1000u, 1365u, 2048u, 2049u, 4095u, 4096u}) {
        for (const std::size_t count : {1u, 2u, 7u, 63u}) {
            std::string file;
            for (int i = 0; i < 200; ++i)
                file += Written(LogPagesC(Repeated(Line(length), count), file.size(), PAGE, NO_LIMIT));
            EXPECT_TRUE(Support::PagesEndWithLines(file)) << count << " lines of " << length;
        }
    }
}

} // namespace
