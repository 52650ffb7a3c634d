// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The digits of numbers, in ASCII and in no locale. For the formatter only; knows nothing of width and
// padding.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace BSS::UTI {

/// Digits of an integer in base 8, 10 or 16; "0" for zero. Made in place, nothing is allocated.
class IntegerDigitsC
{
public:
    IntegerDigitsC(std::uint64_t value, unsigned base, bool upper) noexcept;

    /// Puts one more digit in front; there is room for one.
    void PutInFront(char digit) noexcept { m_digits[--m_begin] = digit; }

    /// Valid as long as this object.
    std::string_view View() const noexcept { return {m_digits + m_begin, CAPACITY - m_begin}; }

private:
    static constexpr std::size_t CAPACITY = 24; // 22 octal digits of 64 bits, and one in front

    char m_digits[CAPACITY];
    std::size_t m_begin = CAPACITY;
};

/// Two decimal digits for each number below 100.
inline constexpr char DECIMAL_PAIRS[] = "0001020304050607080910111213141516171819"
                                        "2021222324252627282930313233343536373839"
                                        "4041424344454647484950515253545556575859"
                                        "6061626364656667686970717273747576777879"
                                        "8081828384858687888990919293949596979899";

/// The most digits of 32 bits.
inline constexpr std::size_t MAX_DECIMAL_32 = 10;

/// Writes the two digits of a number below 100.
template<typename CharT>
CharT* WritePair(std::uint32_t value, CharT* at) noexcept
{
    const char* const pair = DECIMAL_PAIRS + 2 * std::size_t{value};
    if constexpr (sizeof(CharT) == 1) {
        std::memcpy(at, pair, 2); // said so: byte by byte, they may be gathered in a register first
    } else {
        std::copy_n(pair, 2, at);
    }
    return at + 2;
}

/// Writes a number below 100 without a leading zero.
template<typename CharT>
CharT* WriteUpToTwo(std::uint32_t value, CharT* at) noexcept
{
    if (value >= 10) return WritePair(value, at);
    *at = static_cast<CharT>('0' + value);
    return at + 1;
}

/// Writes a number of which the first one or two digits stand before the point of `fixed`, which has 32 bits
/// behind it, and `PAIRS` times two digits follow. Each pair is what comes before the point when what is
/// behind it is taken a hundredfold: one multiplication, and no division.
template<unsigned PAIRS, typename CharT>
CharT* WriteFixed(std::uint64_t fixed, CharT* at) noexcept
{
    at = WriteUpToTwo(static_cast<std::uint32_t>(fixed >> 32), at);
    for (unsigned i = 0; i < PAIRS; ++i) {
        fixed = (fixed & 0xFFFFFFFF) * 100;
        at = WritePair(static_cast<std::uint32_t>(fixed >> 32), at);
    }
    return at;
}

/// Writes the digits at `at` and returns where they end; there is room for MAX_DECIMAL_32. The factors are
/// the powers of two that they name over powers of ten, made a little larger: so little that it does not
/// reach the last digit.
template<typename CharT>
CharT* WriteDecimal(std::uint32_t value, CharT* at) noexcept
{
    constexpr std::uint64_t BY_HUNDRED = (std::uint64_t{1} << 32) / 100 + 1;
    constexpr std::uint64_t BY_FOUR_DIGITS = (std::uint64_t{1} << 32) / 10'000 + 1;
    constexpr std::uint64_t BY_SIX_DIGITS = (std::uint64_t{1} << 48) / 1'000'000 + 1;
    constexpr std::uint64_t BY_EIGHT_DIGITS = (std::uint64_t{1} << 57) / 100'000'000 + 1;
    if (value < 100) return WriteUpToTwo(value, at);
    if (value < 10'000) return WriteFixed<1>(value * BY_HUNDRED, at);
    if (value < 1'000'000) return WriteFixed<2>(value * BY_FOUR_DIGITS, at);
    if (value < 100'000'000) return WriteFixed<3>((value * BY_SIX_DIGITS >> 16) + 1, at);
    return WriteFixed<4>((value * BY_EIGHT_DIGITS >> 25) + 1, at);
}

/// The absolute value of a number as "%f", "%e", "%g" or "%a" write it (`letter`, upper case for upper-case
/// output). A negative precision stands for the usual one. Digits beyond the 1100th of a precision are not
/// made. `alternate` keeps the decimal point, and in "%g" the zeros behind it.
std::string DoubleDigits(double value, char letter, int precision, bool alternate);

} // namespace BSS::UTI
