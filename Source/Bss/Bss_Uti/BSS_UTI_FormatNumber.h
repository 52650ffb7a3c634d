// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The digits of numbers, in ASCII and in no locale. For the formatter only; knows nothing of width and
// padding.
#pragma once

#include <cstdint>
#include <string>

namespace BSS::UTI {

/// Digits of an integer in base 8, 10 or 16; "0" for zero.
std::string IntegerDigits(std::uint64_t value, unsigned base, bool upper);

/// The absolute value of a number as "%f", "%e", "%g" or "%a" write it (`letter`, upper case for upper-case
/// output). A negative precision stands for the usual one. Digits beyond the 1100th of a precision are not
/// made. `alternate` keeps the decimal point, and in "%g" the zeros behind it.
std::string DoubleDigits(double value, char letter, int precision, bool alternate);

} // namespace BSS::UTI
