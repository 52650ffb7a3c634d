// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The debugger receives the text.
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

void SystemDebugOutput(const wchar_t* text) noexcept
{
    OutputDebugStringW(text);
}

} // namespace BSS::HAL
