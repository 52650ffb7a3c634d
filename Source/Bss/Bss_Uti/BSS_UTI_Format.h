// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The formatter behind every text of the framework. Conversions mean what they mean to the C runtime of
// Windows, on every platform and in every locale: "l" is 32 bits, "ll" and "I64" are 64, "I", "z" and "t"
// have the size of a pointer; "%s" and "%c" take text of the format's own width, "%S" and "%C" of the other
// one, "h" narrow, "l" and "w" wide; "%p" is 16 upper-case digits; "L" before a conversion of a double is
// a long double, shown with the precision of a double; a null text is "(null)". Narrow text is UTF-8, wide
// text UTF-16 or UTF-32 as wchar_t is; where one becomes the other, a byte that is not UTF-8 becomes the lone
// surrogate 0xDC00 + byte, which comes back as that byte, and any other lone surrogate takes three bytes. A
// text ends at its first zero, also that of a std::string. An unknown conversion and one that has no fitting
// argument are printed as they stand; so is "%n", which takes its pointer and writes nothing. A null format
// is the text "(null)". Knows nothing of logs or reports. Throws std::bad_alloc only. Safe from any thread.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_FormatOut.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <string>

namespace BSS::UTI {

/// The most characters that the two functions below make of one format.
inline constexpr std::size_t FORMAT_MAX_CHARS = 51199;

/// Puts the text out. False when something did not fit.
bool FormatTo(FormatOutT<char>& out, const char* format, FormatSourceI& source);
bool FormatTo(FormatOutT<wchar_t>& out, const wchar_t* format, FormatSourceI& source);

/// Appends the text to `out`, at most `limit` characters of it. False when there would have been more.
/// Available for char and wchar_t.
template<typename CharT>
bool AppendFormat(std::basic_string<CharT>& out, std::size_t limit, const CharT* format,
                  FormatSourceI& source);

extern template bool AppendFormat<char>(std::string&, std::size_t, const char*, FormatSourceI&);
extern template bool AppendFormat<wchar_t>(std::wstring&, std::size_t, const wchar_t*, FormatSourceI&);

/// Makes a text of typed arguments; one that does not fit its conversion is never misread.
template<typename CharT, typename... Arguments>
std::basic_string<CharT> Format(const CharT* format, const Arguments&... arguments)
{
    const std::array<FormatArgumentC, sizeof...(Arguments)> row{FormatArgumentC(arguments)...};
    FormatArgumentsC source(row.data(), row.size());
    std::basic_string<CharT> text;
    AppendFormat(text, FORMAT_MAX_CHARS, format, source);
    return text;
}

/// Makes a text of a C function's arguments, which must fit the format.
std::string FormatV(const char* format, std::va_list arguments);
std::wstring FormatV(const wchar_t* format, std::va_list arguments);

} // namespace BSS::UTI
