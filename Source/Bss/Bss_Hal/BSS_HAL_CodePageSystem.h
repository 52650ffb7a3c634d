// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the platform itself knows of code pages, for BSS_HAL_CodePage.cpp only. Arguments have been checked.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_CodePage.h"

namespace BSS::HAL {

/// Whether the number stands for UTF-8 here.
bool IsUtf8CodePage(std::uint32_t codePage) noexcept;

int SystemNarrowToWide(std::uint32_t codePage, const char* source, int sourceLength, wchar_t* destination,
                       int destinationLength, CodePageError& error) noexcept;
int SystemWideToNarrow(std::uint32_t codePage, const wchar_t* source, int sourceLength, char* destination,
                       int destinationLength, CodePageError& error) noexcept;

} // namespace BSS::HAL
