// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C library calls us in the child; it forgets us when this library is unloaded.
#include "Bss/Bss_Hal/BSS_HAL_Process.h"

#include <atomic>
#include <pthread.h>

namespace BSS::HAL {

namespace {

constinit std::atomic<std::uint32_t> s_generation = 0;

void InChild()
{
    s_generation.fetch_add(1, std::memory_order_relaxed); // the child has one thread
}

} // namespace

std::uint32_t ForkGeneration() noexcept
{
    static const int registered = ::pthread_atfork(nullptr, nullptr, &InChild);
    static_cast<void>(registered);
    return s_generation.load(std::memory_order_relaxed);
}

} // namespace BSS::HAL
