// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"

namespace BSS::HAL {

constinit std::atomic<UndisturbedRunnerT> g_undisturbedRunner = nullptr;

void SetUndisturbedRunner(UndisturbedRunnerT runner) noexcept
{
    g_undisturbedRunner.store(runner);
}

} // namespace BSS::HAL
