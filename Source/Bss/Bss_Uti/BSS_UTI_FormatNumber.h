// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The digits of numbers, in ASCII and in no locale. For the formatter only; knows nothing of width and
// padding.
#pragma once

#include <cstddef>
#include <cstdint>
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
    at[0] = static_cast<CharT>(DECIMAL_PAIRS[2 * value]);
    at[1] = static_cast<CharT>(DECIMAL_PAIRS[2 * value + 1]);
    return at + 2;
}

/// Writes the four digits of a number below 10000.
template<typename CharT>
CharT* WriteFour(std::uint32_t value, CharT* at) noexcept
{
    return WritePair(value % 100, WritePair(value / 100, at));
}

/// Writes a number below 10000 without leading zeros.
template<typename CharT>
CharT* WriteUpToFour(std::uint32_t value, CharT* at) noexcept
{
    if (value < 10) return *at = static_cast<CharT>('0' + value), at + 1;
    if (value < 100) return WritePair(value, at);
    if (value >= 1000) return WriteFour(value, at);
    *at = static_cast<CharT>('0' + value / 100);
    return WritePair(value % 100, at + 1);
}

/// Writes the digits at `at` and returns where they end. In groups of four, which do not wait for one
/// another.
template<typename CharT>
CharT* WriteDecimal(std::uint32_t value, CharT* at) noexcept
{
    constexpr std::uint32_t FOUR = 10000;
    constexpr std::uint32_t EIGHT = FOUR * FOUR;
    if (value < FOUR) return WriteUpToFour(value, at);
    if (value < EIGHT) return WriteFour(value % FOUR, WriteUpToFour(value / FOUR, at));
    at = WriteUpToFour(value / EIGHT, at);
    value %= EIGHT;
    return WriteFour(value % FOUR, WriteFour(value / FOUR, at));
}

/// The absolute value of a number as "%f", "%e", "%g" or "%a" write it (`letter`, upper case for upper-case
/// output). A negative precision stands for the usual one. Digits beyond the 1100th of a precision are not
/// made. `alternate` keeps the decimal point, and in "%g" the zeros behind it.
std::string DoubleDigits(double value, char letter, int precision, bool alternate);

} // namespace BSS::UTI
