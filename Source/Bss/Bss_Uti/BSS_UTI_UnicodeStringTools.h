// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Narrow text of a code page and wide text, turned into one another in buffers of the caller's. Sizes count
// characters of the destination's type, the terminator included; with a destination size of 0 nothing is
// written and the answer is the size that is needed. Which code pages there are, and what becomes of text
// that is not valid, says BSS_HAL_CodePage.h. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::UTI {

class UnicodeStringTools
{
public:
    UnicodeStringTools() = delete;

    /// The system's default code page, zero-terminated texts. The number of characters written, terminator
    /// included; 0 when it fails, and the destination, if it has room for it, holds the empty text then. A
    /// destination that is too small is reported by the assertion "The data area passed to a system call is
    /// too small.".
    static int SystemToWide(const char* pszSource, wchar_t* pszDestination, int iDestinationLength);
    static int WideToSystem(const wchar_t* pszSource, char* pszDestination, int iDestinationLength);

    /// UTF-8, zero-terminated texts. The number of characters written, terminator included. When it fails,
    /// the assertion "false" tells, the answer is -1, and the destination, if it has room for it, holds the
    /// empty text. A null source is reported by the assertion "pszSource", twice, before.
    static int Utf8ToWide(const char* pszSource, wchar_t* pszDestination, int iDestinationLength);
    static int WideToUtf8(const wchar_t* pszSource, char* pszDestination, int iDestinationLength);

    /// Any code page, and a source of iSourceLength characters; with -1 it is zero-terminated and its
    /// terminator is converted too. What the system answers: the number of characters written, 0 when it
    /// fails. Assertions tell of a null source, of lengths that are not allowed and of a negative answer.
    static int NarrowToWide(std::uint32_t codePage, const char* pszSource, int iSourceLength,
                            wchar_t* pszDestination, int iDestinationLength);
    static int WideToNarrow(std::uint32_t codePage, const wchar_t* pszSource, int iSourceLength,
                            char* pszDestination, int iDestinationLength);
};

} // namespace BSS::UTI
