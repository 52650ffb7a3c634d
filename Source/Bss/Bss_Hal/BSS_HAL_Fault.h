// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lets tests see what happens when the system has no more of something to give: the nth request from now on
// is refused. Costs one load where such a thing is made. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

enum class FaultT : std::uint32_t
{
    Event,         ///< one that threads wait for by its handle
    Thread,        ///< of a task or an engine
    LockEvent,     ///< what a contended lock sleeps on
    SemaphoreWait, ///< going to sleep for a semaphore
    PoolMemory,    ///< a slab of blocks, where one has been used up
    Descriptor     ///< what wakes a thread that waits for descriptors
};

inline constexpr std::uint32_t FAULT_KINDS = 6;

/// The `nth` request (1: the next one) and none after it is refused; 0 takes the order back.
void OrderFault(FaultT kind, std::uint32_t nth) noexcept;

/// Whether this request is to be refused.
bool TakeFault(FaultT kind) noexcept;

} // namespace BSS::HAL
