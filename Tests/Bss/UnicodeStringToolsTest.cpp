// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Conversions between code pages and wide text, to the letter of their reports.
#include "Bss/Bss_Uti/BSS_UTI_UnicodeConversion.h"
#include "Bss/Bss_Uti/BSS_UTI_UnicodeStringTools.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using BSS::HAL::CodePageError;
using BSS::UTI::UnicodeStringTools;
using Support::ReportCapture;

namespace {

constexpr char TOO_SMALL[] = "The data area passed to a system call is too small.";
constexpr char NEGATIVE_SIZE[] = "iDestinationLength >= 0";
constexpr char NEGATIVE_COUNT[] = "((0 == iSourceLength) && (0 == nRet)) || (nRet >= 0)";
constexpr char SOURCE_LENGTH[] = "iSourceLength >= -1";
constexpr std::uint32_t UTF8 = 65001;

std::vector<std::string> Texts(const ReportCapture& reports)
{
    std::vector<std::string> texts;
    for (const Support::ReportT& report : reports.Reports())
        texts.push_back(report.text);
    return texts;
}

using TextsT = std::vector<std::string>;

TEST(UnicodeTools, Utf8BecomesWideAndTheTerminatorCounts)
{
    const ReportCapture reports;
    wchar_t wide[8];
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("a\xE2\x82\xAC", wide, 8), 3);
    EXPECT_EQ(std::wstring(wide), L"a\u20AC");
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("", wide, 8), 1);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(UnicodeTools, WideBecomesUtf8AndTheTerminatorCounts)
{
    char narrow[8];
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(L"a\u20AC", narrow, 8), 5);
    EXPECT_STREQ(narrow, "a\xE2\x82\xAC");
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(L"\U0001F600", narrow, 8), 5);
    EXPECT_STREQ(narrow, "\xF0\x9F\x98\x80");
}

TEST(UnicodeTools, SizeZeroAsksForTheSize)
{
    const ReportCapture reports;
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("abc", nullptr, 0), 4);
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(L"\u20AC", nullptr, 0), 4);
    EXPECT_EQ(UnicodeStringTools::SystemToWide("abc", nullptr, 0), 4);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(UnicodeTools, NullSourceOfUtf8IsReportedTwiceAndFails)
{
    const ReportCapture reports;
    wchar_t wide[2] = {L'x', L'x'};
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide(nullptr, wide, 2), -1);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource", "pszSource", "false"}));
    EXPECT_EQ(wide[0], L'\0');
    EXPECT_EQ(wide[1], L'x');
}

TEST(UnicodeTools, NullSourceOfWideIsReportedTwiceAndFails)
{
    const ReportCapture reports;
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(nullptr, nullptr, 0), -1);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource", "pszSource", "false"}));
}

TEST(UnicodeTools, NegativeDestinationSizeIsReportedAndFails)
{
    const ReportCapture reports;
    wchar_t wide[1] = {L'x'};
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("a", wide, -1), -1);
    EXPECT_EQ(Texts(reports), (TextsT{NEGATIVE_SIZE, "false"}));
    EXPECT_EQ(wide[0], L'x');
}

TEST(UnicodeTools, Utf8ThatDoesNotFitFailsAndEmptiesTheDestination)
{
    const ReportCapture reports;
    wchar_t wide[3] = {L'x', L'x', L'x'};
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("abc", wide, 3), -1);
    EXPECT_EQ(Texts(reports), (TextsT{"false"}));
    EXPECT_EQ(wide[0], L'\0');
    char narrow[3] = {'x', 'x', 'x'};
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(L"\u20AC", narrow, 3), -1);
    EXPECT_EQ(narrow[0], '\0');
}

TEST(UnicodeTools, SystemTextThatDoesNotFitIsReportedInTheSystemsWords)
{
    const ReportCapture reports;
    wchar_t wide[3] = {L'x', L'x', L'x'};
    EXPECT_EQ(UnicodeStringTools::SystemToWide("abc", wide, 3), 0);
    char narrow[2] = {'x', 'x'};
    EXPECT_EQ(UnicodeStringTools::WideToSystem(L"abc", narrow, 2), 0);
    EXPECT_EQ(Texts(reports), (TextsT{TOO_SMALL, TOO_SMALL}));
    EXPECT_EQ(wide[0], L'\0');
    EXPECT_EQ(narrow[0], '\0');
}

TEST(UnicodeTools, SystemTextIsConverted)
{
    wchar_t wide[4];
    char narrow[4];
    EXPECT_EQ(UnicodeStringTools::SystemToWide("abc", wide, 4), 4);
    EXPECT_EQ(std::wstring(wide), L"abc");
    EXPECT_EQ(UnicodeStringTools::WideToSystem(L"abc", narrow, 4), 4);
    EXPECT_STREQ(narrow, "abc");
}

TEST(UnicodeTools, NullSystemTextIsReportedAndFails)
{
    const ReportCapture reports;
    wchar_t wide[2] = {L'x', L'x'};
    EXPECT_EQ(UnicodeStringTools::SystemToWide(nullptr, wide, 2), 0);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource"}));
    EXPECT_EQ(wide[0], L'\0');
}

TEST(UnicodeTools, NullWideTextForTheSystemIsReportedAndFails)
{
    const ReportCapture reports;
    char narrow[2] = {'x', 'x'};
    EXPECT_EQ(UnicodeStringTools::WideToSystem(nullptr, narrow, 2), 0);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource"}));
    EXPECT_EQ(narrow[0], '\0');
    EXPECT_EQ(narrow[1], 'x');
}

TEST(UnicodeTools, GeneralFormWithNullOrANegativeSizeIsReportedAndFails)
{
    const ReportCapture reports;
    wchar_t wide[2] = {L'x', L'x'};
    char narrow[2] = {'x', 'x'};
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, nullptr, -1, wide, 2), 0);
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, nullptr, -1, narrow, 2), 0);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource", "pszSource"}));
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, "a", -1, wide, -1), 0);
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, L"a", -1, narrow, -1), 0);
    EXPECT_EQ(Texts(reports), (TextsT{"pszSource", "pszSource", NEGATIVE_SIZE, NEGATIVE_SIZE}));
}

TEST(UnicodeTools, GeneralFormFromWideTakesAnExplicitLengthWithoutATerminator)
{
    const ReportCapture reports;
    char narrow[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, L"abcdef", 2, narrow, 4), 2);
    EXPECT_EQ(std::string(narrow, 4), "abxx");
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, L"ab", -1, narrow, 4), 3);
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, L"ab", 0, narrow, 4), 0);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(UnicodeTools, GeneralFormTakesAnExplicitLengthWithoutATerminator)
{
    const ReportCapture reports;
    wchar_t wide[4] = {L'x', L'x', L'x', L'x'};
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, "abcdef", 2, wide, 4), 2);
    EXPECT_EQ(std::wstring(wide, 4), L"abxx");
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, "ab", -1, wide, 4), 3);
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, "ab", 0, wide, 4), 0);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(UnicodeTools, SourceLengthBelowMinusOneIsReported)
{
    const ReportCapture reports;
    wchar_t wide[4];
    char narrow[4];
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(UTF8, "ab", -2, wide, 4), 0);
    EXPECT_EQ(UnicodeStringTools::WideToNarrow(UTF8, L"ab", -2, narrow, 4), 0);
    EXPECT_EQ(Texts(reports), (TextsT{SOURCE_LENGTH, SOURCE_LENGTH}));
}

TEST(UnicodeTools, UnknownCodePageFails)
{
    wchar_t wide[4];
    EXPECT_EQ(UnicodeStringTools::NarrowToWide(64999, "ab", -1, wide, 4), 0);
}

int NegativeAnswer(std::uint32_t, const char*, int, wchar_t*, int, CodePageError&)
{
    return -5;
}

TEST(UnicodeTools, NegativeCountFromTheSystemIsReported)
{
    const ReportCapture reports;
    wchar_t wide[2] = {L'x', L'x'};
    EXPECT_EQ((BSS::UTI::ConvertUtf8<char, wchar_t>(&NegativeAnswer, "a", wide, 2)), -1);
    EXPECT_EQ(Texts(reports), (TextsT{NEGATIVE_COUNT, "false"}));
    EXPECT_EQ(wide[0], L'\0');
}

TEST(UnicodeTools, BytesThatAreNotUtf8BecomeTheReplacementCharacterOneByOne)
{
    wchar_t wide[16];
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("a\xFF\xC0\x80"
                                             "b",
                                             wide, 16),
              6);
    EXPECT_EQ(std::wstring(wide), L"a\uFFFD\uFFFD\uFFFDb");
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("\xE2\x82", wide, 16), 3);
    EXPECT_EQ(UnicodeStringTools::Utf8ToWide("\xED\xA0\x80", wide, 16), 4);
}

TEST(UnicodeTools, LoneSurrogatesBecomeTheReplacementCharacter)
{
    const wchar_t lone[] = {L'a', static_cast<wchar_t>(0xD800), L'b', static_cast<wchar_t>(0xDC80), 0};
    char narrow[16];
    EXPECT_EQ(UnicodeStringTools::WideToUtf8(lone, narrow, 16), 9);
    EXPECT_STREQ(narrow, "a\xEF\xBF\xBD"
                         "b\xEF\xBF\xBD");
}

} // namespace
