// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Linux maps large pages at the first touch, where it has been told before.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

#include <sys/mman.h>

namespace BSS::HAL {

void AdviseLargePages(void* pMemory, std::size_t nBytes) noexcept
{
    static_cast<void>(::madvise(pMemory, nBytes, MADV_HUGEPAGE));
}

} // namespace BSS::HAL
