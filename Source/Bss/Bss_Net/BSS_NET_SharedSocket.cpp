// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_SharedSocket.h"

#include <utility>

namespace BSS::NET {

bool SharedSocketC::isValid() const
{
    return get() != HAL::NO_SOCKET;
}

HAL::SocketT SharedSocketC::get() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_socket;
}

void SharedSocketC::set(HAL::SocketT socket)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_socket = socket;
}

void SharedSocketC::share()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_bShared = true;
}

HAL::SocketT SharedSocketC::take()
{
    std::unique_lock<std::mutex> guard(m_lock);
    m_bShared = false;
    m_unused.wait(guard, [this] { return m_nUses == 0; });
    return std::exchange(m_socket, HAL::NO_SOCKET);
}

HAL::SocketT SharedSocketC::beginUse()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_bShared || m_socket == HAL::NO_SOCKET) return HAL::NO_SOCKET;
    ++m_nUses;
    return m_socket;
}

void SharedSocketC::endUse()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (--m_nUses == 0) m_unused.notify_all();
}

} // namespace BSS::NET
