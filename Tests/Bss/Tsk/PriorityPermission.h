// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Whether a test may expect priorities above normal.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"

#include <thread>

namespace TaskTests {

/// Tried on a thread of its own.
inline bool IsPermitted(int priority)
{
    bool bDone = false;
    std::thread([&] { bDone = BSS::HAL::ApplyThreadPriority(BSS::HAL::CurrentThreadId(), priority); }).join();
    return bDone;
}

} // namespace TaskTests
