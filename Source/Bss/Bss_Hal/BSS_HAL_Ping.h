// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One echo request to another machine. Whether a process may send one is up to the system: the answer says
// so. Blocks for its time-out at most. Sockets must have been started. Safe from any thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include <cstdint>

namespace BSS::HAL {

enum class PingAnswer
{
    Answered,
    TimedOut,     ///< no answer, or an answer that the machine cannot be reached
    NotPermitted, ///< this process may not send echo requests
    Failed
};

struct PingResultT
{
    PingAnswer answer = PingAnswer::Failed;
    std::int64_t roundTripUs = 0; ///< of an answer; on Windows in whole milliseconds
    int error = 0;                ///< the system's number when there is one
};

PingResultT Ping(const SocketAddressT& address, int timeoutMs) noexcept;

} // namespace BSS::HAL
