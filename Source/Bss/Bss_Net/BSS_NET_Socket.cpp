// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_Socket.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

#include <utility>

namespace BSS::NET {

SocketC::~SocketC()
{
    if (isValid()) m_pApi->close(m_descriptor);
}

SocketC::SocketC(SocketC&& other) noexcept
    : m_pApi(other.m_pApi), m_descriptor(std::exchange(other.m_descriptor, HAL::NO_SOCKET)),
      m_lastError(other.m_lastError.load())
{}

SocketC& SocketC::operator=(SocketC&& other) noexcept
{
    if (this == &other) return *this;
    close();
    m_pApi = other.m_pApi;
    m_descriptor = std::exchange(other.m_descriptor, HAL::NO_SOCKET);
    m_lastError = other.m_lastError.load();
    return *this;
}

ResultCodeT SocketC::Answer(int error) noexcept
{
    if (error == 0) return RC_OK;
    m_lastError = error;
    if (HAL::IsWouldBlock(error)) return RC_TIMED_OUT;
    if (HAL::IsConnectionLost(error) || HAL::IsNotConnected(error)) return RC_CLOSED;
    return RC_FAILED;
}

ResultCodeT SocketC::open(HAL::AddressKind kind) noexcept
{
    close();
    int error = 0;
    m_descriptor = m_pApi->open(kind, error);
    if (error == 0) error = m_pApi->setNonBlocking(m_descriptor);
    return Answer(error);
}

ResultCodeT SocketC::close() noexcept
{
    if (!isValid()) return RC_INVALID_SOCKET;
    return Answer(m_pApi->close(std::exchange(m_descriptor, HAL::NO_SOCKET)));
}

ResultCodeT SocketC::shutdown(HAL::ShutdownKind kind) noexcept
{
    return isValid() ? Answer(m_pApi->shutdown(m_descriptor, kind)) : RC_INVALID_SOCKET;
}

ResultCodeT SocketC::setNoDelay() noexcept
{
    return isValid() ? Answer(m_pApi->setNoDelay(m_descriptor)) : RC_INVALID_SOCKET;
}

ResultCodeT SocketC::setKeepAlive(int idleSeconds, int intervalSeconds, int nProbes) noexcept
{
    if (!isValid()) return RC_INVALID_SOCKET;
    return Answer(m_pApi->setKeepAlive(m_descriptor, idleSeconds, intervalSeconds, nProbes));
}

ResultCodeT SocketC::setSendLimit(int seconds) noexcept
{
    return isValid() ? Answer(m_pApi->setSendLimit(m_descriptor, seconds)) : RC_INVALID_SOCKET;
}

ResultCodeT SocketC::Wait(bool bReading, int timeoutMs) noexcept
{
    if (!isValid()) return RC_INVALID_SOCKET;
    HAL::PollItemT item{m_descriptor, bReading, !bReading};
    std::size_t nReady = 0;
    const int error = m_pApi->poll(&item, 1, timeoutMs, nReady);
    if (error != 0) return Answer(error);
    return nReady == 0 ? RC_TIMED_OUT : RC_OK;
}

ResultCodeT SocketC::waitReadable(int timeoutMs) noexcept
{
    return Wait(true, timeoutMs);
}

ResultCodeT SocketC::waitWritable(int timeoutMs) noexcept
{
    return Wait(false, timeoutMs);
}

ResultCodeT SocketC::send(const void* bytes, std::size_t count, std::size_t& nSent) noexcept
{
    nSent = 0;
    if (!isValid()) return RC_INVALID_SOCKET;
    if (bytes == nullptr || count == 0) return RC_INVALID_ARGUMENT;
    const HAL::TransferT sent = m_pApi->send(m_descriptor, bytes, count);
    nSent = sent.count;
    return Answer(sent.error);
}

ResultCodeT SocketC::receive(void* bytes, std::size_t capacity, std::size_t& nReceived) noexcept
{
    nReceived = 0;
    if (!isValid()) return RC_INVALID_SOCKET;
    if (bytes == nullptr || capacity == 0) return RC_INVALID_ARGUMENT;
    const HAL::TransferT got = m_pApi->receive(m_descriptor, bytes, capacity);
    nReceived = got.count;
    if (got.error == 0 && got.count == 0) return RC_CLOSED;
    return Answer(got.error);
}

} // namespace BSS::NET
