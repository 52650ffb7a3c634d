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

/// The absolute value of a number as "%f", "%e", "%g" or "%a" write it (`letter`, upper case for upper-case
/// output). A negative precision stands for the usual one. Digits beyond the 1100th of a precision are not
/// made. `alternate` keeps the decimal point, and in "%g" the zeros behind it.
std::string DoubleDigits(double value, char letter, int precision, bool alternate);

} // namespace BSS::UTI
