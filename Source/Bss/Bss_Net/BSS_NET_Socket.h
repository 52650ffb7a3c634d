// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A stream socket that is owned and answers with the framework's result codes: RC_OK; RC_TIMED_OUT when a
// wait is over or nothing can be moved at once; RC_CLOSED when the connection is; RC_INVALID_SOCKET when
// there is no socket; RC_FAILED for the rest. getLastError tells the system's number. Sockets are
// non-blocking: what waits says so and has a limit.
//
// One object belongs to one thread at a time, but one thread may send while another receives.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Net/BSS_NET_SocketApi.h"

#include <atomic>
#include <cstddef>

namespace BSS::NET {

class SocketC
{
public:
    /// The calls are not owned; what is moved here brings its own.
    explicit SocketC(SocketApiI& api = SystemSockets()) noexcept : m_pApi(&api) {}

    /// Takes a socket over.
    explicit SocketC(HAL::SocketT descriptor, SocketApiI& api = SystemSockets()) noexcept
        : m_pApi(&api), m_descriptor(descriptor)
    {}
    virtual ~SocketC();
    SocketC(SocketC&& other) noexcept;
    SocketC& operator=(SocketC&& other) noexcept;

    bool isValid() const noexcept { return m_descriptor != HAL::NO_SOCKET; }
    HAL::SocketT getDescriptor() const noexcept { return m_descriptor; }

    /// Closes what is open and opens a new one.
    [[nodiscard]] ResultCodeT open(HAL::AddressKind kind) noexcept;
    ResultCodeT close() noexcept;
    ResultCodeT shutdown(HAL::ShutdownKind kind = HAL::ShutdownKind::Both) noexcept;
    ResultCodeT setNoDelay() noexcept;
    ResultCodeT setKeepAlive(int idleSeconds, int intervalSeconds, int nProbes) noexcept;
    ResultCodeT setSendLimit(int seconds) noexcept;

    /// Wait that many milliseconds, without limit when negative.
    [[nodiscard]] ResultCodeT waitReadable(int timeoutMs) noexcept;
    [[nodiscard]] ResultCodeT waitWritable(int timeoutMs) noexcept;

    /// Move what can be moved at once.
    [[nodiscard]] ResultCodeT send(const void* bytes, std::size_t count, std::size_t& nSent) noexcept;
    [[nodiscard]] ResultCodeT receive(void* bytes, std::size_t capacity, std::size_t& nReceived) noexcept;

    /// The system's number for the last operation that failed; 0 before.
    int getLastError() const noexcept { return m_lastError.load(); }

protected:
    ResultCodeT Answer(int error) noexcept;
    SocketApiI& Api() const noexcept { return *m_pApi; }

private:
    ResultCodeT Wait(bool bReading, int timeoutMs) noexcept;

    SocketApiI* m_pApi;
    HAL::SocketT m_descriptor = HAL::NO_SOCKET;
    std::atomic<int> m_lastError{0};
};

} // namespace BSS::NET
