// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Large pages take a privilege here that no host has, so these are many small ones.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

void* TakeLargePage() noexcept
{
    return ::VirtualAlloc(nullptr, s_nLargePageBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void GiveLargePageBack(void* pMemory) noexcept
{
    if (pMemory != nullptr) ::VirtualFree(pMemory, 0, MEM_RELEASE);
}

} // namespace BSS::HAL
