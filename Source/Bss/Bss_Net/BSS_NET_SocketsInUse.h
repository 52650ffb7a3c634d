// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's sockets are started while it lives. Sockets that an object has must be closed before it ends:
// the system refuses that afterwards, or takes another's socket for it. So it comes before them among the
// members. For one thread.
#pragma once

#include "Bss/Bss_Net/BSS_NET_SocketApi.h"

namespace BSS::NET {

class SocketsInUseC
{
public:
    /// The interface is not owned.
    explicit SocketsInUseC(SocketApiI& api) : m_api(api), m_error(api.startUp()) {}
    ~SocketsInUseC()
    {
        if (m_error == 0) m_api.cleanUp();
    }
    SocketsInUseC(const SocketsInUseC&) = delete;
    SocketsInUseC& operator=(const SocketsInUseC&) = delete;

    /// Why they could not be started, or 0.
    int getError() const noexcept { return m_error; }

private:
    SocketApiI& m_api;
    const int m_error;
};

} // namespace BSS::NET
