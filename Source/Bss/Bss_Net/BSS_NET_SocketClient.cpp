// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_SocketClient.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

namespace BSS::NET {

ResultCodeT SocketClientC::connect(const HAL::SocketAddressT& address, int timeoutMs) noexcept
{
    ResultCodeT rc = open(HAL::KindOf(address));
    if (rc != RC_OK) return rc;
    const int error = Api().connect(getDescriptor(), address);
    if (error == 0) return RC_OK;
    rc = HAL::IsConnectPending(error) ? waitWritable(timeoutMs) : Answer(error);
    if (rc == RC_OK) {
        int pending = 0;
        const int asked = Api().takePendingError(getDescriptor(), pending);
        rc = Answer(asked != 0 ? asked : pending);
    }
    if (rc != RC_OK) close();
    return rc;
}

ResultCodeT SocketClientC::sendAll(const void* bytes, std::size_t count, int timeoutMs,
                                   std::size_t& nSent) noexcept
{
    nSent = 0;
    const char* const first = static_cast<const char*>(bytes);
    while (nSent < count) {
        std::size_t nPart = 0;
        ResultCodeT rc = send(first + nSent, count - nSent, nPart);
        nSent += nPart;
        if (rc == RC_TIMED_OUT) rc = waitWritable(timeoutMs);
        if (rc != RC_OK) return rc;
    }
    return RC_OK;
}

} // namespace BSS::NET
