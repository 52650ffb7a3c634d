// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A socket that connects to a server. Result codes and threads: as SocketC.
#pragma once

#include "Bss/Bss_Net/BSS_NET_Socket.h"

namespace BSS::NET {

class SocketClientC final : public SocketC
{
public:
    using SocketC::SocketC;

    /// Opens a socket and connects it, in that many milliseconds at most. No socket is left open by a
    /// failure; RC_CLOSED or RC_FAILED when the server is not there.
    [[nodiscard]] ResultCodeT connect(const HAL::SocketAddressT& address, int timeoutMs) noexcept;

    /// Sends all of it. No single wait for room is longer than the limit; `nSent` tells how much has gone in
    /// any case.
    [[nodiscard]] ResultCodeT sendAll(const void* bytes, std::size_t count, int timeoutMs,
                                      std::size_t& nSent) noexcept;
};

} // namespace BSS::NET
