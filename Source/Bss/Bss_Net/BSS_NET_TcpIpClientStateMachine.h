// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Keeps the connection of a TCP/IP client alive: connects, and connects again after a loss as the
// configuration says, and tells its observers. What happens when stands in BSS_NET_TcpIpClientTable.h; the
// machine alone assigns the state. It waits for nothing itself and knows time only by its timer.
//
// Operations belong to one thread, the machine's; close() and what only asks may be called from any.
// Observers are told on the machine's thread; what they throw is logged, boost::thread_interrupted passes
// through.
#pragma once

#include "Bss/Bss_Net/BSS_NET_LogLine.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientI.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientTable.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace BSS::NET {

/// The times between attempts.
struct ReconnectSettingsT
{
    std::uint32_t intervalMs = 5000;  ///< with the reconnect timer
    std::uint32_t jitterPercent = 20; ///< the interval varies by so much in all, so that many clients spread

    /// Without the timer: from a failed attempt to the next one, and from the begin of an attempt that has
    /// succeeded to the next one, when the connection is lost again at once.
    std::uint32_t minSpacingMs = 100;
    std::function<std::uint32_t()> random = {}; ///< any number; a generator of the machine's own when empty
};

class TcpIpClientStateMachineC
{
public:
    /// None is owned; all must outlive the machine.
    TcpIpClientStateMachineC(TcpIpClientI& client, ReconnectTimerI& timer, LogC log,
                             ReconnectSettingsT settings = {});
    TcpIpClientStateMachineC(const TcpIpClientStateMachineC&) = delete;
    TcpIpClientStateMachineC& operator=(const TcpIpClientStateMachineC&) = delete;

    void start();
    void stop();

    /// Leaves nothing behind: no connection, no timer.
    void cleanup();
    void connectTcpIp();
    void disconnectTcpIp();

    /// Ends the connection at once; the machine goes to IDLE with its next execution. The one operation for
    /// any thread. Also ends the attempt that is going on.
    void close();

    /// Goes on after what close() or a lost link has left to do.
    void execute();

    /// Goes on after a close() that was queued behind other requests: it counts even when what it has ended
    /// was noticed, and another connection begun, in between.
    void executeClose();
    void onTimer();

    /// The connection is gone: RC_TIMED_OUT for the receive limit, RC_CLOSED for the server's doing.
    void onLinkLost(ResultCodeT rc);

    /// Anything but a known state is reported and taken.
    void goToState(std::uint32_t state);

    std::uint32_t getState() const noexcept { return m_uiState.load(); }
    ResultCodeT getLastResult() const noexcept { return m_lastResult.load(); }
    /// Notified with BIO::PortEvent and a BIO::PortEventC.
    UTI::SubjectC& getStateSubject() noexcept { return m_oStateSubject; }

private:
    void dispatch(ClientEvent event);
    void run(ClientAction action);
    void scheduleRetry();
    void notify(BIO::PortEvent event, BIO::PortReason reason);
    std::uint32_t intervalMs();
    std::uint32_t spacingLeftMs() const;

    void leaveState(std::uint32_t state);
    void enterState(std::uint32_t oldState);
    void enterIdleState();
    void leaveIdleState();
    void enterSettingUpState(std::uint32_t oldState);
    void execSettingUpState();
    void leaveSettingUpState();
    void enterOnlineState();
    void execOnlineState();
    void leaveOnlineState();

    std::atomic<std::uint32_t> m_uiState{IDLE};
    ReconnectTimerI& m_oTimer;
    std::atomic<ResultCodeT> m_lastResult{RC_OK};
    TcpIpClientI& m_roTcpIpClient;
    UTI::SubjectC m_oStateSubject;
    const LogC m_log;
    const ReconnectSettingsT m_settings;
    std::atomic<bool> m_bClose{false};
    bool m_bSetUp = false; // the last attempt has succeeded
    std::uint64_t m_lastAttemptMs = 0;
    std::uint32_t m_random = 1;
};

} // namespace BSS::NET
