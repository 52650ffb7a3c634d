// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's default code page is UTF-8 here, whatever the locale says.
#include "Bss/Bss_Uti/BSS_UTI_UnicodeStringTools.h"

#include <clocale>
#include <gtest/gtest.h>
#include <string>

using BSS::UTI::UnicodeStringTools;

namespace {

TEST(CodePagePosix, SystemTextIsUtf8InTheLocaleThatKnowsNothingElse)
{
    ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    wchar_t wide[8];
    EXPECT_EQ(UnicodeStringTools::SystemToWide("a\xE2\x82\xAC\xF0\x9F\x98\x80", wide, 8), 4);
    EXPECT_EQ(std::wstring(wide), L"a\u20AC\U0001F600");
    char narrow[16];
    EXPECT_EQ(UnicodeStringTools::WideToSystem(L"a\u20AC\U0001F600", narrow, 16), 9);
    EXPECT_STREQ(narrow, "a\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(CodePagePosix, SystemBytesThatAreNotUtf8BecomeTheReplacementCharacter)
{
    wchar_t wide[8];
    EXPECT_EQ(UnicodeStringTools::SystemToWide("a\xE9", wide, 8), 3);
    EXPECT_EQ(std::wstring(wide), L"a\uFFFD");
}

} // namespace
