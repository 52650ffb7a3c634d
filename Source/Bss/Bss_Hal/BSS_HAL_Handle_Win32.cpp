// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Handle.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

bool CloseNativeHandle(NativeHandleT handle) noexcept
{
    return CloseHandle(reinterpret_cast<HANDLE>(handle)) != 0;
}

} // namespace BSS::HAL
