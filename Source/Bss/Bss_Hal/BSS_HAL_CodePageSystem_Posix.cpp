// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// There is one narrow encoding here.
#include "Bss/Bss_Hal/BSS_HAL_CodePageSystem.h"

namespace BSS::HAL {

bool IsUtf8CodePage(std::uint32_t codePage) noexcept
{
    return codePage == CODE_PAGE_SYSTEM || codePage == CODE_PAGE_UTF8;
}

int SystemNarrowToWide(std::uint32_t, const char*, int, wchar_t*, int, CodePageError& error) noexcept
{
    error = CodePageError::Invalid;
    return 0;
}

int SystemWideToNarrow(std::uint32_t, const wchar_t*, int, char*, int, CodePageError& error) noexcept
{
    error = CodePageError::Invalid;
    return 0;
}

} // namespace BSS::HAL
