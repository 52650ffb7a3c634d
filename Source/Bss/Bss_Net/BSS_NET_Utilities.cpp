// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_Utilities.h"

#include "Bss/Bss_Hal/BSS_HAL_Ping.h"
#include "Bss/Bss_Net/BSS_NET_SocketClient.h"

#include <vector>

namespace BSS::NET {

namespace {

class SocketsC
{
public:
    SocketsC() noexcept : m_error(HAL::StartSockets()) {}
    ~SocketsC()
    {
        if (m_error == 0) HAL::StopSockets();
    }
    SocketsC(const SocketsC&) = delete;
    SocketsC& operator=(const SocketsC&) = delete;

private:
    const int m_error;
};

// Both are the system's own words, of which there are only one for an address. An interface counts when it
// was named.
bool IsMeant(const std::string& wanted, const std::string& active)
{
    return wanted == active || (active.starts_with(wanted) && active[wanted.size()] == '%');
}

} // namespace

ResultCodeT CheckService(const std::string& name, std::uint16_t port, int timeoutMs)
{
    const SocketsC sockets;
    std::vector<HAL::SocketAddressT> addresses(1);
    if (!HAL::ParseAddress(name, port, addresses[0]) && HAL::ResolveName(name, port, addresses) != 0)
        return RC_NOT_FOUND;
    ResultCodeT rc = RC_NOT_FOUND;
    for (const HAL::SocketAddressT& address : addresses) {
        SocketClientC client;
        rc = client.connect(address, timeoutMs);
        if (rc == RC_OK) break;
    }
    return rc;
}

ResultCodeT CheckActiveAddress(const std::string& address)
{
    const SocketsC sockets;
    HAL::SocketAddressT wanted;
    if (!HAL::ParseAddress(address, 0, wanted)) return RC_INVALID_ARGUMENT;
    std::vector<HAL::SocketAddressT> active;
    if (HAL::ActiveAddresses(active) != 0) return RC_FAILED;
    const std::string text = HAL::AddressText(wanted);
    for (const HAL::SocketAddressT& one : active)
        if (IsMeant(text, HAL::AddressText(one))) return RC_OK;
    return RC_NOT_FOUND;
}

ResultCodeT PingAddress(const std::string& address, int timeoutMs, std::int64_t& roundTripUs)
{
    const SocketsC sockets;
    HAL::SocketAddressT parsed;
    if (!HAL::ParseAddress(address, 0, parsed)) return RC_INVALID_ARGUMENT;
    const HAL::PingResultT result = HAL::Ping(parsed, timeoutMs);
    switch (result.answer) {
    case HAL::PingAnswer::Answered:
        roundTripUs = result.roundTripUs;
        return RC_OK;
    case HAL::PingAnswer::TimedOut:
        return RC_TIMED_OUT;
    case HAL::PingAnswer::NotPermitted:
        return RC_SERVICE_FAILED;
    case HAL::PingAnswer::Failed:
        break;
    }
    return RC_FAILED;
}

} // namespace BSS::NET
