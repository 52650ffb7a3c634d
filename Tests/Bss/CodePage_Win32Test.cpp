// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Code pages that the system converts: one of single bytes, one of single and double bytes.
#include "Bss/Bss_Hal/BSS_HAL_CodePage.h"

#include <gtest/gtest.h>
#include <string>

using namespace BSS::HAL;

namespace {

struct Example
{
    std::uint32_t codePage;
    std::string narrow;
    std::wstring wide;
};

const Example EXAMPLES[] = {
    {1252, "M\xFCller \x80", L"M\u00FCller \u20AC"},
    {932, "a\x83\x65\x83\x58\xB1", L"a\u30C6\u30B9\uFF71"},
};

class WindowsCodePage : public testing::TestWithParam<Example>
{
protected:
    int ToWide(wchar_t* destination, int room)
    {
        const std::string& text = GetParam().narrow;
        return NarrowToWide(GetParam().codePage, text.data(), static_cast<int>(text.size()), destination,
                            room, error);
    }
    int ToNarrow(char* destination, int room)
    {
        const std::wstring& text = GetParam().wide;
        return WideToNarrow(GetParam().codePage, text.data(), static_cast<int>(text.size()), destination,
                            room, error);
    }

    const int m_narrowSize = static_cast<int>(GetParam().narrow.size());
    const int m_wideSize = static_cast<int>(GetParam().wide.size());
    CodePageError error = CodePageError::Invalid;
};

TEST_P(WindowsCodePage, NarrowTextBecomesWide)
{
    wchar_t wide[16] = {};
    EXPECT_EQ(ToWide(nullptr, 0), m_wideSize);
    EXPECT_EQ(ToWide(wide, m_wideSize), m_wideSize);
    EXPECT_EQ(error, CodePageError::None);
    EXPECT_EQ(wide, GetParam().wide);
}

TEST_P(WindowsCodePage, WideTextBecomesNarrow)
{
    char narrow[16] = {};
    EXPECT_EQ(ToNarrow(nullptr, 0), m_narrowSize);
    EXPECT_EQ(ToNarrow(narrow, m_narrowSize), m_narrowSize);
    EXPECT_EQ(error, CodePageError::None);
    EXPECT_EQ(narrow, GetParam().narrow);
}

TEST_P(WindowsCodePage, ABufferThatIsTooSmallIsSaidToBe)
{
    wchar_t wide[16];
    EXPECT_EQ(ToWide(wide, m_wideSize - 1), 0);
    EXPECT_EQ(error, CodePageError::TooSmall);
    error = CodePageError::None;
    char narrow[16];
    EXPECT_EQ(ToNarrow(narrow, m_narrowSize - 1), 0);
    EXPECT_EQ(error, CodePageError::TooSmall);
}

INSTANTIATE_TEST_SUITE_P(Examples, WindowsCodePage, testing::ValuesIn(EXAMPLES));

TEST(WindowsCodePageNumber, OneThatTheSystemDoesNotKnowIsInvalid)
{
    CodePageError error = CodePageError::None;
    wchar_t wide[4];
    EXPECT_EQ(NarrowToWide(99999, "a", 1, wide, 4, error), 0);
    EXPECT_EQ(error, CodePageError::Invalid);
}

} // namespace
