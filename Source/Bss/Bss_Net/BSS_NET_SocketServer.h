// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A socket at which clients arrive. Result codes and threads: as SocketC.
#pragma once

#include "Bss/Bss_Net/BSS_NET_SocketClient.h"

#include <cstdint>

namespace BSS::NET {

class SocketServerC final : public SocketC
{
public:
    using SocketC::SocketC;

    /// Takes the address, port 0 for any that is free, and lets clients come.
    [[nodiscard]] ResultCodeT listen(const HAL::SocketAddressT& address, int backlog = 64) noexcept;

    /// The port that clients come to; 0 before listen.
    std::uint16_t getPort() const noexcept;

    /// The next client, if one comes within that many milliseconds; RC_TIMED_OUT otherwise, also when the one
    /// that came has gone again.
    [[nodiscard]] ResultCodeT accept(SocketClientC& client, int timeoutMs) noexcept;
};

} // namespace BSS::NET
