// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Processes do not fork here.
#include "Bss/Bss_Hal/BSS_HAL_Process.h"

namespace BSS::HAL {

std::uint32_t ForkGeneration() noexcept
{
    return 0;
}

} // namespace BSS::HAL
