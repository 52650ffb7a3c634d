// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The reconnect timer of a client that has a loop of its own: a moment on a clock, at which the loop looks.
// For one thread.
//
// No time service request stands behind it: that one calls on the thread of a command task, and this thread
// waits for sockets. It would need a queue, a message for each expiry and the waker only to end a wait whose
// end is known when it begins; and a clock that stands still in tests could not move it.
#pragma once

#include "Bss/Bss_Net/BSS_NET_TcpIpClientI.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace BSS::NET {

/// Milliseconds that only count up.
using ClockMsT = std::function<std::uint64_t()>;

class DeadlineTimerC final : public ReconnectTimerI
{
public:
    explicit DeadlineTimerC(ClockMsT clock) : m_clock(std::move(clock)) {}

    bool isRunning() const override { return m_bRunning; }
    void start(std::uint32_t delayMs) override
    {
        m_dueMs = m_clock() + delayMs;
        m_bRunning = true;
    }
    void stop() override { m_bRunning = false; }
    std::uint64_t nowMs() const override { return m_clock(); }

    /// Until it runs out; 0 when it has.
    std::uint64_t leftMs() const
    {
        const std::uint64_t now = m_clock();
        return m_dueMs > now ? m_dueMs - now : 0;
    }

private:
    const ClockMsT m_clock;
    std::uint64_t m_dueMs = 0;
    bool m_bRunning = false;
};

} // namespace BSS::NET
