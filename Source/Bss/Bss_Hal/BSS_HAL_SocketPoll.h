// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Waiting for sockets, any number of them with any numbers, and a socket by which one thread ends another's
// wait. Waits are no interruption points. Safe from any thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include <cstddef>

namespace BSS::HAL {

inline constexpr int POLL_WITHOUT_LIMIT = -1;

struct PollItemT
{
    SocketT socket = NO_SOCKET; ///< NO_SOCKET is passed over
    bool wantRead = false;
    bool wantWrite = false;

    // The answer.
    bool canRead = false;  ///< data, the other side's end, a client to accept, or an error to fetch
    bool canWrite = false; ///< room, or a connect that has come to an end
    bool failed = false;   ///< an error waits on the socket, or it is not open; told unasked
};

/// Waits until one of them is ready, or that many milliseconds. 0 or an error number; `nReady` is how many
/// are ready, 0 when the time is over. Signals do not shorten the wait.
int PollSockets(PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) noexcept;

/// A socket that can be read once wake() has been called, until drain().
class SocketWakerC
{
public:
    /// Sockets must have been started. One that could not be made has NO_SOCKET and wakes nobody.
    SocketWakerC() noexcept;
    ~SocketWakerC();
    SocketWakerC(const SocketWakerC&) = delete;
    SocketWakerC& operator=(const SocketWakerC&) = delete;

    SocketT getSocket() const noexcept { return m_reading; }
    void wake() noexcept;
    void drain() noexcept;

private:
    SocketT m_reading = NO_SOCKET;
    SocketT m_writing = NO_SOCKET;
};

} // namespace BSS::HAL
