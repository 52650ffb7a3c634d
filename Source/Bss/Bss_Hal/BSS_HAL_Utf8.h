// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// UTF-8 and wide text, turned into one another without loss and without any locale. Bytes that are not part
// of a valid UTF-8 character travel through wide text as the lone surrogate 0xDC00 + byte and come back as
// that byte. Strict: no overlong forms, no encoded surrogates, nothing above U+10FFFF. Knows nothing of
// paths, code pages or the operating system; wide text is UTF-16 or UTF-32 by the size of wchar_t alone. Safe
// from any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace BSS::HAL {

/// Reads the character at `begin`. Returns its length in bytes, or 0 when no valid UTF-8 character begins
/// there.
std::size_t DecodeUtf8(const char* begin, const char* end, char32_t& character) noexcept;

/// Reads the character at `begin`, a lone surrogate as itself. Returns its length in wide units, 0 at the
/// end.
std::size_t DecodeWide(const wchar_t* begin, const wchar_t* end, char32_t& character) noexcept;

/// True when all of `text` is valid UTF-8.
bool IsUtf8(std::string_view text) noexcept;

/// The text without the mark that some editors put at the beginning of a UTF-8 file.
std::string_view WithoutByteOrderMark(std::string_view text) noexcept;

/// Appends one character. A surrogate between 0xDC80 and 0xDCFF becomes the single byte it stands for; any
/// other surrogate takes three bytes; a value above U+10FFFF becomes the replacement character.
void AppendUtf8(std::string& text, char32_t character);

/// Appends one character, as a surrogate pair where wchar_t needs one.
void AppendWide(std::wstring& text, char32_t character);

std::wstring WideFromUtf8(std::string_view text);
std::string Utf8FromWide(std::wstring_view text);

} // namespace BSS::HAL
