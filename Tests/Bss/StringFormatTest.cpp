// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Formatting into a string: which buffers are tried, and what is too long.
#include "Bss/Bss_Uti/BSS_UTI_String.h"
#include "Support/AllocationCount.h"
#include "Support/ReportCapture.h"

#include <cstdarg>
#include <gtest/gtest.h>
#include <string>

using BSS::UTI::StringC;
using Support::ReportCapture;

namespace {

constexpr char TOO_LONG[] = "iDynamicSize < (100 * 1024)";

void FormatC(StringC& text, const wchar_t* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    text.FormatV(format, arguments);
    va_end(arguments);
}

struct TryT
{
    std::int32_t nLength;
    std::size_t nAllocations; // the string's block and its text are two of them
    std::size_t nLargestChars;
};

TryT FormatOfLength(int length)
{
    StringC text;
    const Support::AllocationCount count;
    text.Format(L"%*d", length, 7);
    const std::size_t largest = count.Largest() / sizeof(wchar_t);
    return {text.GetLength(), count.Count(), largest};
}

TEST(StringFormat, FiveHundredAndElevenCharactersNeedNoHeapBuffer)
{
    const TryT tried = FormatOfLength(511);
    EXPECT_EQ(tried.nLength, 511);
    EXPECT_EQ(tried.nAllocations, 2u);
    EXPECT_EQ(tried.nLargestChars, 512u); // the text itself
}

TEST(StringFormat, FiveHundredAndTwelveCharactersNeedOneOf1024)
{
    const TryT tried = FormatOfLength(512);
    EXPECT_EQ(tried.nLength, 512);
    EXPECT_EQ(tried.nAllocations, 3u);
    EXPECT_EQ(tried.nLargestChars, 1024u);
}

TEST(StringFormat, BufferOf1024HoldsUpTo1023Characters)
{
    EXPECT_EQ(FormatOfLength(1023).nAllocations, 3u);
    EXPECT_EQ(FormatOfLength(1023).nLength, 1023);
}

TEST(StringFormat, ThousandAndTwentyFourCharactersNeedTheNextBuffer)
{
    const TryT tried = FormatOfLength(1024);
    EXPECT_EQ(tried.nLength, 1024);
    EXPECT_EQ(tried.nAllocations, 4u);
    EXPECT_EQ(tried.nLargestChars, 2048u);
}

TEST(StringFormat, LongestTextHas51199Characters)
{
    const ReportCapture reports;
    const TryT tried = FormatOfLength(51199);
    EXPECT_EQ(tried.nLength, 51199);
    EXPECT_EQ(tried.nLargestChars, 51200u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(StringFormat, OneCharacterMoreIsReportedOnceAndLeavesTheString)
{
    const ReportCapture reports;
    StringC text(L"before");
    text.Format(L"%*d", 51200, 7);
    EXPECT_EQ(reports.Count(TOO_LONG), 1u);
    EXPECT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(text, L"before");
}

TEST(StringFormat, HugeWidthIsReportedToo)
{
    const ReportCapture reports;
    StringC text(L"before");
    text.Format(L"%2147483647d", 7);
    EXPECT_EQ(reports.Count(TOO_LONG), 1u);
    EXPECT_EQ(text, L"before");
}

TEST(StringFormat, EmptyResultIsAccepted)
{
    StringC text(L"before");
    text.Format(L"");
    EXPECT_TRUE(text.IsEmpty());
}

TEST(StringFormat, ConversionsHaveTheMeaningOfWideFormats)
{
    StringC text;
    text.Format(L"%s %S %hs %ls %d %lx %I64d", L"wide \u20AC", "narrow", "\xC3\xA9", L"w", -1, ~0ull, -2);
    EXPECT_EQ(text, L"wide \u20AC narrow \u00E9 w -1 ffffffff -2");
}

TEST(StringFormat, StringsAreArguments)
{
    StringC text(L"old");
    text.Format(L"%s and %s", text, StringC(L"new"));
    EXPECT_EQ(text, L"old and new");
}

TEST(StringFormat, WrongConversionsArePrinted)
{
    StringC text;
    text.Format(L"%s %n %q %d", 5);
    EXPECT_EQ(text, L"%s %n %q 5");
}

TEST(StringFormat, ArgumentsOfACFunctionAreReadAgainForEveryBuffer)
{
    StringC text;
    FormatC(text, L"%s %*d|%d", L"w", 3000, 1, 42);
    EXPECT_EQ(text.GetLength(), 2 + 3000 + 3);
    EXPECT_EQ(text.Right(4), L"1|42");
    FormatC(text, L"%S-%d", "n", 5);
    EXPECT_EQ(text, L"n-5");
}

} // namespace
