// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_FormatNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace BSS::UTI {

namespace {

// No double has more than 1074 digits behind the point, nor 309 before it.
constexpr int MAX_PRECISION = 1100;
constexpr std::size_t BUFFER_SIZE = 1536;

std::string Digits(double value, std::chars_format style, int precision)
{
    std::array<char, BUFFER_SIZE> buffer = {};
    char* const begin = buffer.data();
    const std::to_chars_result result = std::to_chars(begin, begin + buffer.size(), value, style, precision);
    return {begin, result.ptr};
}

std::string ShortestHexDigits(double value)
{
    std::array<char, 64> buffer = {};
    char* const begin = buffer.data();
    const std::to_chars_result result =
        std::to_chars(begin, begin + buffer.size(), value, std::chars_format::hex);
    return {begin, result.ptr};
}

void KeepPoint(std::string& digits)
{
    if (digits.find('.') == std::string::npos)
        digits.insert(std::min(digits.find_first_of("ep"), digits.size()), 1, '.');
}

// The power of ten in "1.5e+04".
int ExponentOf(const std::string& scientific)
{
    std::size_t at = scientific.find('e') + 1;
    if (scientific[at] == '+') ++at;
    int exponent = 0;
    static_cast<void>(
        std::from_chars(scientific.data() + at, scientific.data() + scientific.size(), exponent));
    return exponent;
}

// "%#g" keeps its zeros, which the general style does not; the exponent decides between the other two styles.
std::string GeneralWithZeros(double value, int precision)
{
    const int digits = std::max(precision, 1);
    const std::string scientific = Digits(value, std::chars_format::scientific, digits - 1);
    const int exponent = ExponentOf(scientific);
    const bool fixed = exponent >= -4 && exponent < digits;
    return fixed ? Digits(value, std::chars_format::fixed, digits - 1 - exponent) : scientific;
}

std::string FiniteDigits(double value, char lower, int precision, bool alternate)
{
    const int places = std::min(precision < 0 ? 6 : precision, MAX_PRECISION);
    switch (lower) {
    case 'e':
        return Digits(value, std::chars_format::scientific, places);
    case 'g':
        return alternate ? GeneralWithZeros(value, places)
                         : Digits(value, std::chars_format::general, places);
    case 'a':
        return "0x" +
               (precision < 0 ? ShortestHexDigits(value) : Digits(value, std::chars_format::hex, places));
    default:
        return Digits(value, std::chars_format::fixed, places);
    }
}

void ToUpper(std::string& text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
}

} // namespace

std::string IntegerDigits(std::uint64_t value, unsigned base, bool upper)
{
    const char* const symbols = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string digits;
    do {
        digits.push_back(symbols[value % base]);
        value /= base;
    } while (value != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string DoubleDigits(double value, char letter, int precision, bool alternate)
{
    const bool upper = letter >= 'A' && letter <= 'Z';
    const char lower = upper ? static_cast<char>(letter - 'A' + 'a') : letter;
    const double magnitude = std::fabs(value);
    std::string digits;
    if (std::isnan(magnitude)) {
        digits = "nan";
    } else if (std::isinf(magnitude)) {
        digits = "inf";
    } else {
        digits = FiniteDigits(magnitude, lower, precision, alternate);
        if (alternate) KeepPoint(digits);
    }
    if (upper) ToUpper(digits);
    return digits;
}

} // namespace BSS::UTI
