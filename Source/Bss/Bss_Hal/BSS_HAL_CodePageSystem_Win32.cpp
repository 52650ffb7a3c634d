// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system converts every code page but UTF-8.
#include "Bss/Bss_Hal/BSS_HAL_CodePageSystem.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

int Answer(int count, CodePageError& error) noexcept
{
    if (count > 0) {
        error = CodePageError::None;
    } else {
        error =
            GetLastError() == ERROR_INSUFFICIENT_BUFFER ? CodePageError::TooSmall : CodePageError::Invalid;
    }
    return count;
}

} // namespace

bool IsUtf8CodePage(std::uint32_t codePage) noexcept
{
    return codePage == CODE_PAGE_UTF8 || (codePage == CODE_PAGE_SYSTEM && GetACP() == CODE_PAGE_UTF8);
}

int SystemNarrowToWide(std::uint32_t codePage, const char* source, int sourceLength, wchar_t* destination,
                       int destinationLength, CodePageError& error) noexcept
{
    return Answer(MultiByteToWideChar(codePage, 0, source, sourceLength, destination, destinationLength),
                  error);
}

int SystemWideToNarrow(std::uint32_t codePage, const wchar_t* source, int sourceLength, char* destination,
                       int destinationLength, CodePageError& error) noexcept
{
    return Answer(WideCharToMultiByte(codePage, 0, source, sourceLength, destination, destinationLength,
                                      nullptr, nullptr),
                  error);
}

} // namespace BSS::HAL
