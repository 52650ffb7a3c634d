// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Paths between narrow and wide text, and the strict decoder beneath them.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

#include <gtest/gtest.h>
#include <string>

using namespace BSS::HAL;

namespace {

struct NamedBytes
{
    const char* name;
    const char* bytes;
};

void PrintTo(const NamedBytes& each, std::ostream* out)
{
    *out << each.name;
}

std::string NameOf(const testing::TestParamInfo<NamedBytes>& info)
{
    return info.param.name;
}

class ValidUtf8 : public testing::TestWithParam<NamedBytes>
{};

TEST_P(ValidUtf8, IsAcceptedAndComesBack)
{
    EXPECT_TRUE(IsUtf8(GetParam().bytes));
    EXPECT_EQ(Utf8FromWide(WideFromUtf8(GetParam().bytes)), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Characters, ValidUtf8,
    testing::Values(NamedBytes{"Ascii", "scan_1.qsb"}, NamedBytes{"TwoBytes", "\xC3\xA9"},
                    NamedBytes{"FirstOfTwo", "\xC2\x80"}, NamedBytes{"LastOfTwo", "\xDF\xBF"},
                    NamedBytes{"FirstOfThree", "\xE0\xA0\x80"},
                    NamedBytes{"BeforeSurrogates", "\xED\x9F\xBF"},
                    NamedBytes{"AfterSurrogates", "\xEE\x80\x80"}, NamedBytes{"LastOfThree", "\xEF\xBF\xBF"},
                    NamedBytes{"FirstOfFour", "\xF0\x90\x80\x80"},
                    NamedBytes{"LastCharacter", "\xF4\x8F\xBF\xBF"}),
    NameOf);

class InvalidUtf8 : public testing::TestWithParam<NamedBytes>
{};

TEST_P(InvalidUtf8, IsRefusedAndComesBackByteForByte)
{
    EXPECT_FALSE(IsUtf8(GetParam().bytes));
    EXPECT_EQ(Utf8FromWide(WideFromUtf8(GetParam().bytes)), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, InvalidUtf8,
    testing::Values(NamedBytes{"LoneContinuation", "a\x80z"}, NamedBytes{"Latin1", "caf\xE9"},
                    NamedBytes{"OverlongSlash", "\xC0\xAF"}, NamedBytes{"OverlongTwo", "\xC1\xBF"},
                    NamedBytes{"OverlongThree", "\xE0\x9F\xBF"},
                    NamedBytes{"OverlongFour", "\xF0\x8F\xBF\xBF"},
                    NamedBytes{"FirstSurrogate", "\xED\xA0\x80"}, NamedBytes{"LastSurrogate", "\xED\xBF\xBF"},
                    NamedBytes{"AboveLast", "\xF4\x90\x80\x80"}, NamedBytes{"LeadF5", "\xF5\x80\x80\x80"},
                    NamedBytes{"ByteFF", "\xFF\xFE"}, NamedBytes{"CutShort", "\xE2\x82"},
                    NamedBytes{"CutAtFour", "\xF0\x9F\x98"}),
    NameOf);

TEST(Utf8, EveryPairOfBytesComesBack)
{
    for (int first = 1; first < 256; ++first) {
        for (int second = 1; second < 256; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second), 'x'};
            ASSERT_EQ(Utf8FromWide(WideFromUtf8(bytes)), bytes) << first << " " << second;
        }
    }
}

TEST(Utf8, InvalidByteTravelsAsLoneSurrogate)
{
    EXPECT_EQ(WideFromUtf8("a\xE9"), (std::wstring{L'a', static_cast<wchar_t>(0xDCE9)}));
}

TEST(Utf8, ValueBeyondUnicodeBecomesTheReplacementCharacter)
{
    std::string text;
    AppendUtf8(text, 0x110000);
    EXPECT_EQ(text, "\xEF\xBF\xBD");
}

TEST(Utf8, CharactersOutsideTheFirstPlaneComeBack)
{
    const std::wstring wide = WideFromUtf8("\xF0\x9F\x98\x80");
    EXPECT_EQ(wide.size(), sizeof(wchar_t) == 2 ? 2u : 1u);
    EXPECT_EQ(Utf8FromWide(wide), "\xF0\x9F\x98\x80");
}

TEST(Path, FilesystemPathKeepsEveryCharacter)
{
    const std::wstring wide = WidePath("/tmp/\xC3\xA9/x");
    EXPECT_EQ(WidePathOf(FilesystemPath(wide)), wide);
}

TEST(Path, JoinPutsOneSeparatorBetween)
{
    EXPECT_EQ(FilesystemPath(JoinPath(L"dir", L"name")), boost::filesystem::path("dir") / "name");
    EXPECT_EQ(JoinPath(L"dir/", L"name"), L"dir/name");
    EXPECT_EQ(JoinPath(L"", L"name"), L"name");
}

} // namespace
