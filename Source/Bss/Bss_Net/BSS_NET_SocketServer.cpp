// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_SocketServer.h"

#include <utility>

namespace BSS::NET {

ResultCodeT SocketServerC::listen(const HAL::SocketAddressT& address, int backlog) noexcept
{
    ResultCodeT rc = open(HAL::KindOf(address));
    if (rc == RC_OK) rc = Answer(Api().bind(getDescriptor(), address));
    if (rc == RC_OK) rc = Answer(Api().listen(getDescriptor(), backlog));
    if (rc != RC_OK) close();
    return rc;
}

std::uint16_t SocketServerC::getPort() const noexcept
{
    HAL::SocketAddressT address;
    if (!isValid() || HAL::LocalAddressOf(getDescriptor(), address) != 0) return 0;
    return HAL::PortOf(address);
}

ResultCodeT SocketServerC::accept(SocketClientC& client, int timeoutMs) noexcept
{
    const ResultCodeT rc = waitReadable(timeoutMs);
    if (rc != RC_OK) return rc;
    HAL::SocketAddressT peer;
    int error = 0;
    SocketClientC accepted(Api().accept(getDescriptor(), peer, error), Api());
    if (error == 0) error = Api().setNonBlocking(accepted.getDescriptor());
    if (error == 0) client = std::move(accepted);
    return Answer(error);
}

} // namespace BSS::NET
