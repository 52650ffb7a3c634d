// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lets tests see what happens when the system has no more threads or events to give: the nth request from now
// on is refused. Costs one load where a thread or an event is made. Safe from any thread.
#pragma once

#include <cstdint>

namespace BSS::HAL {

enum class FaultT : std::uint32_t
{
    Event,
    Thread
};

/// The `nth` request (1: the next one) and none after it is refused; 0 takes the order back.
void OrderFault(FaultT kind, std::uint32_t nth) noexcept;

/// Whether this request is to be refused.
bool TakeFault(FaultT kind) noexcept;

} // namespace BSS::HAL
