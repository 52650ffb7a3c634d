// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<UndisturbedRunnerT> s_runner = nullptr;

} // namespace

void SetUndisturbedRunner(UndisturbedRunnerT runner) noexcept
{
    s_runner.store(runner);
}

void RunUndisturbed(UndisturbedCallT call, void* context)
{
    const NoCancellation scope;
    if (const UndisturbedRunnerT runner = s_runner.load(std::memory_order_relaxed)) {
        runner(call, context);
    } else {
        call(context);
    }
}

} // namespace BSS::HAL
