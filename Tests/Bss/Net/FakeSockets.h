// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Sockets that a test makes answer as it likes, and a clock that stands still but for waits. One socket at a
// time, with the number 17, of a client: no server is made of them. For one thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Net/BSS_NET_NameResolver.h"
#include "Bss/Bss_Net/BSS_NET_SocketApi.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <string>

namespace NetTests {

/// The first error number of this system that means such a thing.
template<typename PredicateT>
int ErrorThat(const PredicateT& means)
{
    int error = 1;
    while (!means(error))
        ++error;
    return error;
}

inline int Pending()
{
    return ErrorThat(&BSS::HAL::IsConnectPending);
}
inline int WouldBlock()
{
    return ErrorThat(&BSS::HAL::IsWouldBlock);
}
inline int Lost()
{
    return ErrorThat(&BSS::HAL::IsConnectionLost);
}

/// An error of no particular meaning.
inline constexpr int SOME_ERROR = 1;

class FakeSocketsC final : public BSS::NET::SocketApiI
{
public:
    static constexpr BSS::HAL::SocketT SOCKET = 17;

    int startUp() override { return startUpError; }
    int cleanUp() override
    {
        ++nCleanUps;
        return 0;
    }
    BSS::HAL::SocketT open(BSS::HAL::AddressKind, int& error) override
    {
        error = openError;
        if (openError != 0) return BSS::HAL::NO_SOCKET;
        ++nOpen;
        return SOCKET;
    }
    int close(BSS::HAL::SocketT) override
    {
        --nOpen;
        return 0;
    }
    int setNonBlocking(BSS::HAL::SocketT) override { return nonBlockingError; }
    int setNoDelay(BSS::HAL::SocketT) override { return noDelayError; }
    int setKeepAlive(BSS::HAL::SocketT, int idle, int interval, int probes) override
    {
        keepAliveIdle = idle;
        keepAliveInterval = interval;
        keepAliveProbes = probes;
        return keepAliveError;
    }
    int setSendLimit(BSS::HAL::SocketT, int) override { return 0; }
    bool isUnanswered(BSS::HAL::SocketT) override { return bUnanswered; }
    int connect(BSS::HAL::SocketT, const BSS::HAL::SocketAddressT&) override { return connectError; }
    int bind(BSS::HAL::SocketT, const BSS::HAL::SocketAddressT&) override { return SOME_ERROR; }
    int listen(BSS::HAL::SocketT, int) override { return SOME_ERROR; }
    BSS::HAL::SocketT accept(BSS::HAL::SocketT, BSS::HAL::SocketAddressT&, int& error) override
    {
        error = SOME_ERROR;
        return BSS::HAL::NO_SOCKET;
    }
    int takePendingError(BSS::HAL::SocketT, int& pending) override
    {
        pending = pendingError;
        return 0;
    }
    BSS::HAL::TransferT send(BSS::HAL::SocketT, const void* bytes, std::size_t count) override
    {
        if (sendError != 0) return {0, sendError};
        const std::size_t part = std::min(count, sendAtOnce);
        sent.append(static_cast<const char*>(bytes), part);
        return {part, 0};
    }
    BSS::HAL::TransferT receive(BSS::HAL::SocketT, void* bytes, std::size_t capacity) override
    {
        if (receiveError != 0) return {0, receiveError};
        if (arrived.empty()) return bEnded ? BSS::HAL::TransferT{} : BSS::HAL::TransferT{0, WouldBlock()};
        const std::size_t count = std::min(capacity, arrived.front().size());
        std::memcpy(bytes, arrived.front().data(), count);
        arrived.pop_front();
        return {count, 0};
    }
    int shutdown(BSS::HAL::SocketT socket, BSS::HAL::ShutdownKind) override
    {
        return socket == BSS::HAL::NO_SOCKET ? SOME_ERROR : shutdownError;
    }

    int poll(BSS::HAL::PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) override
    {
        if (onPoll) onPoll();
        nReady = 0;
        if (pollError != 0) return pollError;
        for (std::size_t n = 0; n < count; ++n) {
            BSS::HAL::PollItemT& item = items[n];
            item.canRead = item.canWrite = item.failed = false;
            if (item.socket != SOCKET) {
                item.canRead = bWoken; // the only other one
                nReady += bWoken ? 1 : 0;
                continue;
            }
            item.canWrite = item.wantWrite && bRoom;
            item.canRead = item.wantRead && (!arrived.empty() || bEnded || receiveError != 0);
            item.failed = bException;
            if (item.canWrite || item.canRead || item.failed || bStrange) ++nReady;
        }
        if (nReady == 0) nowMs += static_cast<std::uint64_t>(timeoutMs);
        waits.push_back(timeoutMs);
        return 0;
    }

    int startUpError = 0;
    int openError = 0;
    int nonBlockingError = 0;
    int noDelayError = 0;
    int keepAliveError = 0;
    int connectError = 0;
    int pendingError = 0;
    int sendError = 0;
    int receiveError = 0;
    int shutdownError = 0;
    int pollError = 0;
    bool bRoom = true;   ///< can be written to
    bool bEnded = false; ///< the server has ended the connection
    bool bException = false;
    bool bUnanswered = false;
    bool bWoken = false;   ///< by nothing in particular
    bool bStrange = false; ///< ready, but for nothing
    std::size_t sendAtOnce = std::size_t{1} << 20;
    std::deque<std::string> arrived;
    std::function<void()> onPoll;

    int nOpen = 0;
    int nCleanUps = 0;
    int keepAliveIdle = 0;
    int keepAliveInterval = 0;
    int keepAliveProbes = 0;
    std::string sent;
    std::deque<int> waits;
    std::uint64_t nowMs = 1000000;
};

class FakeResolverC final : public BSS::NET::NameResolverI
{
public:
    int resolve(const std::string& name, std::uint16_t, const std::function<bool()>& isCancelled,
                std::vector<BSS::HAL::SocketAddressT>& addresses) override
    {
        asked = name;
        if (onResolve) onResolve();
        addresses = found;
        return isCancelled() ? CANCELLED : error;
    }

    std::string asked;
    int error = 0;
    std::vector<BSS::HAL::SocketAddressT> found;
    std::function<void()> onResolve;
};

} // namespace NetTests
