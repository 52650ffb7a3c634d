// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Code pages: narrow text in the encoding that a number names, turned into wide text and back, into buffers
// of the caller's. 65001 is UTF-8; 0 is the system's default, which is UTF-8 on Linux and the active code
// page on Windows. UTF-8 is read and written by our own code, so the result is the same everywhere: what is
// not a valid character (a stray byte, a lone surrogate, a value above U+10FFFF) becomes U+FFFD, one for each
// byte or unit. Other code pages are Windows's, and so is what becomes of a character that they have not: the
// page's default character, usually "?", and no failure. Allocates nothing, throws nothing. Safe from any
// thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

inline constexpr std::uint32_t CODE_PAGE_SYSTEM = 0;
inline constexpr std::uint32_t CODE_PAGE_UTF8 = 65001;

enum class CodePageError
{
    None,
    Invalid,  ///< a null text, a negative size, a source length below -1 or 0, an unknown code page
    TooSmall, ///< the destination does not hold the text; what it holds then is undefined
};

/// Converts `sourceLength` bytes, or with -1 a zero-terminated text and its terminator, and returns how many
/// characters were written. With a destination of length 0 nothing is written and the answer is how many
/// there would be. 0 when it fails.
int NarrowToWide(std::uint32_t codePage, const char* source, int sourceLength, wchar_t* destination,
                 int destinationLength, CodePageError& error) noexcept;

/// The same in the other direction.
int WideToNarrow(std::uint32_t codePage, const wchar_t* source, int sourceLength, char* destination,
                 int destinationLength, CodePageError& error) noexcept;

} // namespace BSS::HAL
