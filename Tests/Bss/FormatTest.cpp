// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The formatter: every conversion means the same on every platform, and no format can do harm.
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <cstdarg>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

using BSS::UTI::Format;
using BSS::UTI::FormatV;

namespace {

std::string FormatC(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatV(format, arguments);
    va_end(arguments);
    return text;
}

std::wstring FormatWideC(const wchar_t* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const std::wstring text = FormatV(format, arguments);
    va_end(arguments);
    return text;
}

TEST(Format, PlainTextIsCopied)
{
    EXPECT_EQ(Format("plain"), "plain");
    EXPECT_EQ(Format(""), "");
}

TEST(Format, PlainTextOfAnyLengthAndInAnyRoomIsWholeUpToItsConversion)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDE";
    for (std::size_t before = 0; before <= letters.size(); ++before) {
        for (std::size_t behind = 0; behind < 10; ++behind) {
            // Exactly as large as needed, so that the sanitizer sees a look beyond the end.
            const std::string text = letters.substr(0, before) + "%u" + letters.substr(0, behind);
            const std::vector<char> format(text.c_str(), text.c_str() + text.size() + 1);
            const std::string whole = letters.substr(0, before) + "5" + letters.substr(0, behind);
            for (std::size_t room = 0; room <= whole.size(); ++room) {
                const BSS::UTI::FormatArgumentC five(5u);
                BSS::UTI::FormatArgumentsC source(&five, 1);
                std::vector<char> buffer(room);
                BSS::UTI::FormatOutT<char> out(buffer.data(), room);
                EXPECT_EQ(BSS::UTI::FormatTo(out, format.data(), source), room == whole.size());
                EXPECT_EQ(std::string(buffer.data(), out.Length()), whole.substr(0, room));
            }
        }
    }
}

TEST(Format, CommonConversionsInAnyRoomAreWholeUpToWhereItEnds)
{
    const std::string whole = "7 of -2147483648: 4294967295(null) and some words";
    for (std::size_t room = 0; room <= whole.size() + 20; ++room) {
        const char* const none = nullptr;
        const BSS::UTI::FormatArgumentC row[] = {7, std::numeric_limits<int>::min(), 4294967295u, none,
                                                 "some words"};
        BSS::UTI::FormatArgumentsC source(row, std::size(row));
        std::vector<char> buffer(room);
        BSS::UTI::FormatOutT<char> out(buffer.data(), room);
        EXPECT_EQ(BSS::UTI::FormatTo(out, "%d of %d: %u%s and %s", source), room >= whole.size());
        EXPECT_EQ(std::string(buffer.data(), out.Length()), whole.substr(0, room));
    }
}

TEST(Format, IntegersOfEveryCountOfDigitsAreExact)
{
    std::vector<std::uint32_t> numbers = {0, 4294967295u};
    for (std::uint32_t power = 1; power <= 1000000000u; power *= 10) {
        for (std::uint32_t times = 1; times <= 4; ++times)
            numbers.insert(numbers.end(), {power * times - 1, power * times, power * times + 1});
        if (power == 1000000000u) break;
    }
    for (std::uint64_t number = 1; number < 4294967296u; number = number * 1001 / 1000 + 1)
        numbers.push_back(static_cast<std::uint32_t>(number));
    for (const std::uint32_t number : numbers) {
        const auto integer = static_cast<std::int32_t>(number);
        EXPECT_EQ(Format("%u", number), std::to_string(number));
        EXPECT_EQ(Format("%d", integer), std::to_string(integer));
        EXPECT_EQ(Format(L"%u", number), std::to_wstring(number));
    }
}

TEST(Format, PlainTextMayHoldEveryByteButThePercentSign)
{
    std::string bytes;
    for (int code = 1; code < 256; ++code)
        if (code != '%') bytes += static_cast<char>(code);
    EXPECT_EQ(Format(bytes.c_str()), bytes);
}

TEST(Format, BytesThatAreNotUtf8GoThroughWideTextAndBack)
{
    const std::wstring wide = Format(L"%S", "a\xFFz");
    EXPECT_EQ(wide, (std::wstring{L'a', static_cast<wchar_t>(0xDCFF), L'z'}));
    EXPECT_EQ(Format("%S", wide), "a\xFFz");
}

TEST(Format, LoneSurrogateTakesThreeBytes)
{
    EXPECT_EQ(Format("%S", std::wstring{static_cast<wchar_t>(0xD800)}), "\xED\xA0\x80");
}

TEST(Format, TextEndsAtItsFirstZero)
{
    EXPECT_EQ(Format("%s|", std::string("ab\0cd", 5)), "ab|");
}

TEST(Format, DoublePercentIsOne)
{
    EXPECT_EQ(Format("100%% %d", 1), "100% 1");
}

TEST(Format, SignedIntegers)
{
    EXPECT_EQ(Format("%d %i", -5, 7), "-5 7");
    EXPECT_EQ(Format("%d", std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(Format("%lld", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(Format, UnsignedIntegersInEveryBase)
{
    EXPECT_EQ(Format("%u %o %x %X", 255u, 255u, 255u, 255u), "255 377 ff FF");
}

TEST(Format, LongIs32Bits)
{
    EXPECT_EQ(Format("%lx", 0x123456789ABCDEFull), "89abcdef");
    EXPECT_EQ(Format("%ld", 0xFFFFFFFFull), "-1");
    EXPECT_EQ(Format("%lu", -1), "4294967295");
}

TEST(Format, LongLongAndItsOtherNamesAre64Bits)
{
    EXPECT_EQ(Format("%llx", 0x123456789ABCDEFull), "123456789abcdef");
    EXPECT_EQ(Format("%I64d", -2), "-2");
    EXPECT_EQ(Format("%I64x", -1), "ffffffffffffffff");
    EXPECT_EQ(Format("%zu %Iu %jd", ~0ull, ~0ull, -1), "18446744073709551615 18446744073709551615 -1");
    EXPECT_EQ(Format("%I32x", ~0ull), "ffffffff");
}

TEST(Format, ShortAndCharCutTheValue)
{
    EXPECT_EQ(Format("%hu %hd %hhu %hhd", 65537, 65535, 257, 255), "1 -1 1 -1");
}

TEST(Format, WidthFlagsAndPrecisionOfIntegers)
{
    EXPECT_EQ(Format("[%5d][%-5d][%05d][%+d][% d]", 42, 42, 42, 42, 42), "[   42][42   ][00042][+42][ 42]");
    EXPECT_EQ(Format("[%.4d][%8.4d][%-8.4dx]", 42, 42, 42), "[0042][    0042][0042    x]");
    EXPECT_EQ(Format("[%08.3d]", 5), "[     005]");
    EXPECT_EQ(Format("[%.0d]", 0), "[]");
    EXPECT_EQ(Format("[%06d]", -42), "[-00042]");
}

TEST(Format, AlternateForm)
{
    EXPECT_EQ(Format("%#x %#X %#o %#x", 255, 255, 8, 0), "0xff 0XFF 010 0");
    EXPECT_EQ(Format("[%#.0o][%#.0x][%#.3o][%#o]", 0, 0, 8, 0), "[0][][010][0]");
    EXPECT_EQ(Format("[%#8x][%#08x]", 255, 255), "[    0xff][0x0000ff]");
}

TEST(Format, WidthAndPrecisionFromArguments)
{
    EXPECT_EQ(Format("[%*d][%-*d][%*d]", 5, 1, 5, 2, -5, 3), "[    1][2    ][3    ]");
    EXPECT_EQ(Format("[%.*s][%.*d]", 2, "abcdef", -1, 7), "[ab][7]");
}

TEST(Format, NarrowTextInNarrowFormat)
{
    EXPECT_EQ(Format("%s|%10s|%-10s|%.2s", "abc", "abc", "abc", "abc"), "abc|       abc|abc       |ab");
    EXPECT_EQ(Format("%hs", "abc"), "abc");
}

TEST(Format, WideTextInNarrowFormatBecomesUtf8InAnyLocale)
{
    EXPECT_EQ(Format("%S|%ls|%ws", L"\u00E9", L"\u20AC", L"a"), "\xC3\xA9|\xE2\x82\xAC|a");
}

TEST(Format, WideTextIsNeverCutInsideACharacter)
{
    EXPECT_EQ(Format("%.3S", L"a\u20ACb"), "a");
    EXPECT_EQ(Format("%.4S", L"a\u20ACb"), "a\xE2\x82\xAC");
}

TEST(Format, TextsInWideFormat)
{
    EXPECT_EQ(Format(L"%s %S %hs %ls", L"wide", "narrow", "\xC3\xA9", L"w"), L"wide narrow \u00E9 w");
    EXPECT_EQ(Format(L"%08lx|%+d", 0xABCu, 3), L"00000abc|+3");
}

TEST(Format, NullTextIsNamed)
{
    EXPECT_EQ(Format("%s %S", static_cast<const char*>(nullptr), static_cast<const wchar_t*>(nullptr)),
              "(null) (null)");
    EXPECT_EQ(Format(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)");
}

TEST(Format, Characters)
{
    EXPECT_EQ(Format("%c%c|%3c|%-3c|", 'a', 66, 'x', 'y'), "aB|  x|y  |");
    EXPECT_EQ(Format("%C", 0x20AC), "\xE2\x82\xAC");
    EXPECT_EQ(Format(L"%c%C", 0x20AC, 'n'), L"\u20ACn");
}

TEST(Format, PointerIsSixteenUpperCaseDigits)
{
    EXPECT_EQ(Format("%p", reinterpret_cast<const void*>(0xABCD)), "000000000000ABCD");
}

TEST(Format, FixedAndScientificDoubles)
{
    EXPECT_EQ(Format("%f %.2f %.0f %e %.1E", 1.5, 2.345, 2.5, 12345.678, 12345.678),
              "1.500000 2.35 2 1.234568e+04 1.2E+04");
    EXPECT_EQ(Format("[%8.3f][%-8.3f][%08.3f][%+.1f]", -1.5, 1.5, -1.5, 0.25),
              "[  -1.500][1.500   ][-001.500][+0.2]");
    EXPECT_EQ(Format("%#.0f", 3.0), "3.");
}

TEST(Format, GeneralDoubles)
{
    EXPECT_EQ(Format("%g %g %g %g", 0.0001, 0.00001, 123456.0, 1234567.0), "0.0001 1e-05 123456 1.23457e+06");
    EXPECT_EQ(Format("%G %.3g", 1e-10, 1234.0), "1E-10 1.23e+03");
    EXPECT_EQ(Format("%#g %#.3g %#g", 1.0, 1e10, 1e-5), "1.00000 1.00e+10 1.00000e-05");
}

TEST(Format, HexadecimalDoubles)
{
    EXPECT_EQ(Format("%a %.1A", 1.0, 1.5), "0x1p+0 0X1.8P+0");
}

TEST(Format, DoublesThatAreNoNumbers)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Format("%f %F %05f %e", infinity, -infinity, infinity, nan), "inf -INF   inf nan");
}

TEST(Format, LargestDoubleAndHugePrecisionAreSafe)
{
    EXPECT_EQ(Format("%.0f", std::numeric_limits<double>::max()).size(), 309u);
    EXPECT_EQ(Format("%.5000f", 0.5).substr(0, 4), "0.50");
}

TEST(Format, ArgumentThatDoesNotFitPrintsTheConversionAndStays)
{
    EXPECT_EQ(Format("%s %d", 5), "%s 5");
    EXPECT_EQ(Format("%d %s", "text"), "%d text");
    EXPECT_EQ(Format("%f %S %p %d", 5), "%f %S %p 5");
}

TEST(Format, MissingArgumentsPrintTheConversion)
{
    EXPECT_EQ(Format("%d %s %-08.3lx", 1), "1 %s %-08.3lx");
    EXPECT_EQ(Format("%*d"), "%*d");
}

TEST(Format, CountConversionIsPrintedAndWritesNothing)
{
    int counted = 77;
    EXPECT_EQ(Format("abc%n %d", 1), "abc%n 1");
    EXPECT_EQ(FormatC("abc%n", &counted), "abc%n");
    EXPECT_EQ(FormatC("abc%n %d", &counted, 5), "abc%n 5");
    EXPECT_EQ(Format("abc%n %d", &counted, 5), "abc%n 5");
    EXPECT_EQ(counted, 77);
}

TEST(Format, UnknownAndUnfinishedConversionsArePrinted)
{
    EXPECT_EQ(Format("%q %y"), "%q %y");
    EXPECT_EQ(Format("%"), "%");
    EXPECT_EQ(Format("%-5.3ll"), "%-5.3ll");
    EXPECT_EQ(Format("a % 2 == %d", 3), "a % 2 == 3");
    EXPECT_EQ(Format("%5%d", 3), "%d");
}

TEST(Format, InsertedTextIsNeverReadAsFormat)
{
    EXPECT_EQ(Format("%s", "%s %n %d"), "%s %n %d");
}

TEST(Format, OutputStopsAtTheLimit)
{
    BSS::UTI::FormatArgumentC width(2000000000);
    BSS::UTI::FormatArgumentsC source(&width, 1);
    std::string text = "ab";
    EXPECT_FALSE(BSS::UTI::AppendFormat(text, 10, "%2147483647d", source));
    EXPECT_EQ(text, "ab          ");
}

TEST(Format, OutputThatJustFitsIsWhole)
{
    BSS::UTI::FormatArgumentsC none(nullptr, 0);
    std::string text;
    EXPECT_TRUE(BSS::UTI::AppendFormat(text, 3, "abc", none));
    EXPECT_FALSE(BSS::UTI::AppendFormat(text, 2, "abc", none));
    EXPECT_EQ(text, "abcab");
}

TEST(Format, WidthThatOverflowsIsBounded)
{
    EXPECT_EQ(Format("%99999999999999999999d", 1).size(), BSS::UTI::FORMAT_MAX_CHARS);
}

TEST(Format, LongDoublesAreDoublesInText)
{
    EXPECT_EQ(Format("%Lf %.1LE", 2.5L, 1.0), "2.500000 1.0E+00");
    EXPECT_EQ(FormatC("%.2Lf %d %Lg", 2.5L, 7, -1e300L), "2.50 7 -1e+300");
    EXPECT_EQ(FormatC("%.1f %.1Lf %s", 0.5, 1.5L, "end"), "0.5 1.5 end");
    EXPECT_EQ(FormatWideC(L"%.2Lf %d", 2.5L, 7), L"2.50 7");
}

TEST(Format, LongDoubleSizeOfOtherConversionsIsPrinted)
{
    EXPECT_EQ(Format("%Ld %Ls %d", 5), "%Ld %Ls 5");
}

TEST(Format, TakesTheArgumentsOfACFunction)
{
    const int value = 5;
    EXPECT_EQ(FormatC("%s=%d %lx %llu %.1f %c %p", "n", -1, 0xFFu, 1ull << 40, 2.5, 'z',
                      static_cast<const void*>(nullptr)),
              "n=-1 ff 1099511627776 2.5 z 0000000000000000");
    EXPECT_EQ(FormatC("%*d|%S", value, 1, L"w"), "    1|w");
    EXPECT_EQ(FormatWideC(L"%s %S %d", L"w", "n", 3), L"w n 3");
}

} // namespace
