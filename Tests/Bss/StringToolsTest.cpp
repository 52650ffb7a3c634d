// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tools for texts in buffers, for XML, and for what cannot be shown.
#include "Bss/Bss_Uti/BSS_UTI_StringTools.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using BSS::UTI::StringC;
using BSS::UTI::StringTools;
using Support::ReportCapture;

namespace {

constexpr char OVERFLOW_PANIC[] = "String buffer overflow";
constexpr char NULL_TEXT[] = "0 != lpsz";

TEST(StringTools, TextWithoutXmlCharactersSharesTheBlock)
{
    const StringC text(L"nothing to escape, however long this text may be");
    EXPECT_TRUE(StringTools::EscapeXml(text).SharesBlockWith(text));
    EXPECT_TRUE(StringTools::EscapeXml(StringC()).SharesBlockWith(StringC()));
}

TEST(StringTools, FiveXmlCharactersAreEscaped)
{
    EXPECT_EQ(StringTools::EscapeXml(L"'\"&<>"), L"&apos;&quot;&amp;&lt;&gt;");
    EXPECT_EQ(StringTools::EscapeXml(L"a<b"), L"a&lt;b");
    EXPECT_EQ(StringTools::EscapeXml(L"&amp;"), L"&amp;amp;");
}

TEST(StringTools, HexEscapesWriteWhatCannotBeShown)
{
    EXPECT_EQ(StringTools::EscapeHex(L"a\n\u00E9\u20AC\\"), L"a\\x0A\\xE9\\u20AC\\x5C");
    const StringC plain(L"plain text");
    EXPECT_TRUE(StringTools::EscapeHex(plain).SharesBlockWith(plain));
}

TEST(StringTools, HexEscapesComeBack)
{
    const StringC text(L"a\r\n\t\u0001\u00E9\u20AC\\x41 \U0001F600");
    EXPECT_EQ(StringTools::UnescapeHex(StringTools::EscapeHex(text)), text);
    EXPECT_EQ(StringTools::UnescapeHex(L"\\x41\\u0042\\U00000043"), L"ABC");
}

TEST(StringTools, WhatIsNoHexEscapeStays)
{
    for (const wchar_t* text :
         {L"\\", L"\\x", L"\\x4", L"\\xZZ", L"\\u12", L"\\q41", L"\\x00", L"\\UFFFFFFFF"})
        EXPECT_EQ(StringTools::UnescapeHex(text), text);
}

TEST(StringTools, CopyThatFitsIsTerminated)
{
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(StringTools::CopyToBuffer("abc", buffer, 4), BSS::RC_OK);
    EXPECT_STREQ(buffer, "abc");
}

TEST(StringTools, CopyThatDoesNotFitIsCutAndTerminated)
{
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(StringTools::CopyToBuffer("abc", buffer, 3), 0x0200001Cu);
    EXPECT_EQ(std::string(buffer, 4), std::string("ab\0x", 4));
    EXPECT_EQ(StringTools::CopyToBuffer("abc", buffer, 1), 0x0200001Cu);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(StringTools::CopyToBuffer("", buffer, 1), BSS::RC_OK);
}

TEST(StringTools, CopyToNoBufferIsAnInvalidArgument)
{
    char buffer[1] = {'x'};
    EXPECT_EQ(StringTools::CopyToBuffer("abc", nullptr, 4), 0x02000002u);
    EXPECT_EQ(StringTools::CopyToBuffer("abc", buffer, 0), 0x02000002u);
    EXPECT_EQ(StringTools::CopyToBuffer(StringC(L"abc"), nullptr, 4), 0x02000002u);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(StringTools, CopyOfNullIsReportedAndEmptiesTheBuffer)
{
    const ReportCapture reports;
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(StringTools::CopyToBuffer(nullptr, buffer, 4), 0x02000002u);
    EXPECT_EQ(reports.Count(NULL_TEXT), 1u);
    EXPECT_STREQ(buffer, "");
}

TEST(StringTools, CopyOfAStringIsUtf8AndNeverHalfACharacter)
{
    char buffer[8];
    EXPECT_EQ(StringTools::CopyToBuffer(StringC(L"a\u20ACb"), buffer, 6), BSS::RC_OK);
    EXPECT_STREQ(buffer, "a\xE2\x82\xAC"
                         "b");
    EXPECT_EQ(StringTools::CopyToBuffer(StringC(L"a\u20ACb"), buffer, 4), 0x0200001Cu);
    EXPECT_STREQ(buffer, "a");
    EXPECT_EQ(StringTools::CopyToBuffer("\xFF\xFE", buffer, 2), 0x0200001Cu);
    EXPECT_STREQ(buffer, "\xFF");
}

TEST(StringTools, CopyOfWhatIsNoCharacterIsTheByteItStandsForOrThreeBytes)
{
    char buffer[8];
    const wchar_t strange[] = {L'a', static_cast<wchar_t>(0xDCFF), static_cast<wchar_t>(0xD800), 0};
    EXPECT_EQ(StringTools::CopyToBuffer(StringC(strange), buffer, sizeof buffer), BSS::RC_OK);
    EXPECT_STREQ(buffer, "a\xFF\xED\xA0\x80");
}

TEST(StringTools, AppendFillsTheBufferUpToItsTerminator)
{
    const ReportCapture reports;
    char buffer[6] = "ab";
    StringTools::AppendToBuffer(buffer, 6, "cde");
    EXPECT_STREQ(buffer, "abcde");
    StringTools::AppendToBuffer(buffer, 6, "");
    EXPECT_TRUE(reports.Reports().empty());
    wchar_t wide[6] = L"ab";
    StringTools::AppendToBuffer(wide, 6, L"cde");
    EXPECT_EQ(std::wstring(wide), L"abcde");
}

TEST(StringTools, AppendThatReachesTheSizeRaisesThePanicAndWritesNothing)
{
    const ReportCapture reports;
    char buffer[6] = "ab";
    StringTools::AppendToBuffer(buffer, 6, "cdef");
    EXPECT_EQ(std::string(buffer, 6), std::string("ab\0\0\0\0", 6));
    EXPECT_EQ(reports.Count(OVERFLOW_PANIC), 1u);
    EXPECT_EQ(reports.Reports()[0].kind, Support::ReportT::Kind::Panic);
}

TEST(StringTools, AppendToABufferWithoutATerminatorRaisesThePanic)
{
    const ReportCapture reports;
    char buffer[3] = {'a', 'b', 'c'};
    StringTools::AppendToBuffer(buffer, 3, "");
    EXPECT_EQ(reports.Count(OVERFLOW_PANIC), 1u);
    StringTools::AppendToBuffer(buffer, 0, "x");
    EXPECT_EQ(reports.Count(OVERFLOW_PANIC), 2u);
}

TEST(StringTools, AppendOfOrToNullIsReported)
{
    const ReportCapture reports;
    char buffer[3] = "a";
    StringTools::AppendToBuffer(buffer, 3, nullptr);
    StringTools::AppendToBuffer(nullptr, 3, "a");
    EXPECT_EQ(reports.Count(NULL_TEXT), 2u);
    EXPECT_STREQ(buffer, "a");
}

} // namespace
