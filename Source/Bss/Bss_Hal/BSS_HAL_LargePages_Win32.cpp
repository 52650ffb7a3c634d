// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Large pages take a privilege here that no host has, and cannot be had afterwards.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

namespace BSS::HAL {

void AdviseLargePages(void*, std::size_t) noexcept {}

} // namespace BSS::HAL
