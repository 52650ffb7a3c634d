// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A socket with one owner, who opens and closes it, and others who use it meanwhile. A socket's number goes
// to the next one that is opened, so the owner closes it only when nobody uses it any more. Safe from any
// thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace BSS::NET {

class SharedSocketC
{
public:
    /// A use of the socket; without one, getSocket() is HAL::NO_SOCKET. Ends with the object. The owner must
    /// have none of its own when it takes the socket away.
    class UseC
    {
    public:
        explicit UseC(SharedSocketC& shared) : m_shared(shared), m_socket(shared.beginUse()) {}
        ~UseC()
        {
            if (m_socket != HAL::NO_SOCKET) m_shared.endUse();
        }
        UseC(const UseC&) = delete;
        UseC& operator=(const UseC&) = delete;
        HAL::SocketT getSocket() const noexcept { return m_socket; }

    private:
        SharedSocketC& m_shared;
        const HAL::SocketT m_socket;
    };

    bool isValid() const;

    /// For the owner.
    HAL::SocketT get() const;

    /// The owner has opened a socket. Nobody else uses it until share().
    void set(HAL::SocketT socket);
    void share();

    /// Nobody uses it from now on; waits for those who do. The socket is the caller's to close.
    HAL::SocketT take();

    /// Calls `action` with the socket, which is not taken away meanwhile, or with HAL::NO_SOCKET.
    template<typename ActionT>
    auto with(const ActionT& action) const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return action(m_socket);
    }

private:
    HAL::SocketT beginUse();
    void endUse();

    mutable std::mutex m_lock;
    std::condition_variable m_unused;
    HAL::SocketT m_socket = HAL::NO_SOCKET;
    std::uint32_t m_nUses = 0;
    bool m_bShared = false;
};

} // namespace BSS::NET
