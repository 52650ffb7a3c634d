// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<std::uint32_t> s_ordered[FAULT_KINDS] = {};

} // namespace

void OrderFault(FaultT kind, std::uint32_t nth) noexcept
{
    s_ordered[static_cast<std::uint32_t>(kind)].store(nth);
}

bool TakeFault(FaultT kind) noexcept
{
    std::atomic<std::uint32_t>& ordered = s_ordered[static_cast<std::uint32_t>(kind)];
    std::uint32_t left = ordered.load(std::memory_order_relaxed);
    while (left != 0 && !ordered.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

} // namespace BSS::HAL
