// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The calls on sockets that clients and servers make, as an interface, so that every answer that a system may
// give can be tried without a network. Operations mean what BSS_HAL_Socket.h and BSS_HAL_SocketPoll.h say.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"

#include <cstddef>

namespace BSS::NET {

class SocketApiI
{
public:
    virtual int startUp() = 0;
    virtual int cleanUp() = 0;
    virtual HAL::SocketT open(HAL::AddressKind kind, int& error) = 0;
    virtual int close(HAL::SocketT socket) = 0;
    virtual int setNonBlocking(HAL::SocketT socket) = 0;
    virtual int setNoDelay(HAL::SocketT socket) = 0;
    virtual int setKeepAlive(HAL::SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) = 0;
    virtual int setSendLimit(HAL::SocketT socket, int seconds) = 0;
    virtual bool isUnanswered(HAL::SocketT socket) = 0;
    virtual int connect(HAL::SocketT socket, const HAL::SocketAddressT& address) = 0;
    virtual int bind(HAL::SocketT socket, const HAL::SocketAddressT& address) = 0;
    virtual int listen(HAL::SocketT socket, int backlog) = 0;
    virtual HAL::SocketT accept(HAL::SocketT socket, HAL::SocketAddressT& peer, int& error) = 0;
    virtual int takePendingError(HAL::SocketT socket, int& pending) = 0;
    virtual HAL::TransferT send(HAL::SocketT socket, const void* bytes, std::size_t count) = 0;
    virtual HAL::TransferT receive(HAL::SocketT socket, void* bytes, std::size_t capacity) = 0;
    virtual int shutdown(HAL::SocketT socket, HAL::ShutdownKind kind) = 0;
    virtual int poll(HAL::PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) = 0;

protected:
    SocketApiI() = default;
    ~SocketApiI() = default;
    SocketApiI(const SocketApiI&) = default;
    SocketApiI& operator=(const SocketApiI&) = default;
};

/// The system's. Lives as long as the process; safe from any thread.
SocketApiI& SystemSockets() noexcept;

} // namespace BSS::NET
