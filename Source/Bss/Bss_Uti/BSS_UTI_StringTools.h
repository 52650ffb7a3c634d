// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tools for texts that a caller keeps in buffers or sends elsewhere: copying and appending within bounds,
// XML, and escapes for what cannot be shown. Sizes count characters of the buffer's type, the terminator
// included. A null text is reported by the assertion "0 != lpsz". Safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <cstddef>

namespace BSS::UTI {

class StringTools
{
public:
    StringTools() = delete;

    /// The text with the five characters that mean something in XML written as "&apos;", "&quot;", "&amp;",
    /// "&lt;" and "&gt;". A text without any of them is not copied: the answer shares its block.
    static StringC EscapeXml(const StringC& text);

    /// Writes control characters, the backslash and everything that is not ASCII as "\xHH", "\uHHHH" or
    /// "\UHHHHHHHH", whichever is the shortest that fits. A text without any of them is not copied.
    static StringC EscapeHex(const StringC& text);

    /// Takes EscapeHex back. What is no such escape stays as it is.
    static StringC UnescapeHex(const StringC& text);

    /// Copies as many whole characters as fit and terminates them. The string is converted to UTF-8 as
    /// BSS_UTI_Format.h says, a lone surrogate included; narrow text is copied as it is, and a byte in it
    /// that is not UTF-8 counts as a character. RC_OK; RC_BUFFER_TOO_SMALL when the text was cut;
    /// RC_INVALID_ARGUMENT for a null buffer or a size of 0, and for a null text, which empties the buffer.
    static ResultCodeT CopyToBuffer(const char* lpsz, char* buffer, std::size_t size);
    static ResultCodeT CopyToBuffer(const StringC& text, char* buffer, std::size_t size);

    /// Appends to what is in the buffer. If that would fill it, terminator included, more than it holds,
    /// nothing is written and the panic "String buffer overflow" tells; so it does for a buffer that has no
    /// terminator. A null buffer is reported as a null text is.
    static void AppendToBuffer(char* buffer, std::size_t size, const char* lpsz);
    static void AppendToBuffer(wchar_t* buffer, std::size_t size, const wchar_t* lpsz);
};

} // namespace BSS::UTI
