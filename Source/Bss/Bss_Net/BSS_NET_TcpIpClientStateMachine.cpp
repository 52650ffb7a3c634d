// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_TcpIpClientStateMachine.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientLines.h"

#include <boost/thread/exceptions.hpp>
#include <exception>
#include <utility>

namespace BSS::NET {

using namespace MachineLines;

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Net\BSS_NET_TcpIpClientStateMachine)";

constexpr bool IsKnown(std::uint32_t state)
{
    return state == IDLE || state == SETTING_UP || state == ONLINE;
}

// Clients of one program differ by where they are, those of several by the system's number of the thread, and
// those of several machines by the moment.
std::uint32_t Seed(const void* machine) noexcept
{
    std::uint64_t seed = reinterpret_cast<std::uintptr_t>(machine) >> 4;
    for (const std::uint64_t part :
         {std::uint64_t{HAL::CurrentThreadId()}, static_cast<std::uint64_t>(HAL::TickMicroseconds())})
        seed = (seed ^ part) * 0x9E3779B97F4A7C15U;
    return static_cast<std::uint32_t>(seed >> 32);
}

std::int32_t Shown(HAL::SocketT socket) noexcept
{
    return static_cast<std::int32_t>(socket);
}

} // namespace

TcpIpClientStateMachineC::TcpIpClientStateMachineC(TcpIpClientI& client, ReconnectTimerI& timer, LogC log,
                                                   ReconnectSettingsT settings)
    : m_oTimer(timer), m_roTcpIpClient(client), m_log(std::move(log)), m_settings(std::move(settings)),
      m_random(Seed(this))
{}

// The engine.

void TcpIpClientStateMachineC::dispatch(ClientEvent event)
{
    const std::uint32_t state = m_uiState;
    if (!IsKnown(state)) {
        BSS_ASSERT(!"Invalid state machine state!");
        return;
    }
    const bool bAutoConnect = m_roTcpIpClient.getAutoConnect() != AutoConnect::OFF;
    const ClientTransitionT* const row = FindTransition(state, event, bAutoConnect);
    if (row == nullptr) return;
    run(row->action);
    if (row->next != state) goToState(row->next);
}

void TcpIpClientStateMachineC::run(ClientAction action)
{
    switch (action) {
    case ClientAction::None:
        break;
    case ClientAction::Attempt:
        m_oTimer.stop();
        execSettingUpState();
        break;
    case ClientAction::ScheduleRetry:
        scheduleRetry();
        break;
    case ClientAction::RememberClose:
        m_lastResult = RC_CLOSE_CALLED;
        break;
    }
}

void TcpIpClientStateMachineC::goToState(std::uint32_t state)
{
    m_log(GO_TO_STATE);
    const std::uint32_t oldState = m_uiState;
    if (state == oldState) {
        m_log(ALREADY_IN_STATE, "BSS::NET::TcpIpClientStateMachineC::goToState", state);
        return;
    }
    m_log(STATE_CHANGE, oldState, state);
    try {
        leaveState(oldState);
    } catch (...) { // an observer is interrupted; what is left is left all the same
        m_uiState = state;
        throw;
    }
    m_uiState = state;
    enterState(oldState);
}

void TcpIpClientStateMachineC::leaveState(std::uint32_t state)
{
    switch (state) {
    case IDLE:
        return leaveIdleState();
    case SETTING_UP:
        return leaveSettingUpState();
    case ONLINE:
        return leaveOnlineState();
    default:
        BSS_ASSERT(!"Invalid old state!");
    }
}

void TcpIpClientStateMachineC::enterState(std::uint32_t oldState)
{
    switch (m_uiState) {
    case IDLE:
        return enterIdleState();
    case SETTING_UP:
        return enterSettingUpState(oldState);
    case ONLINE:
        return enterOnlineState();
    default:
        BSS_ASSERT(!"Invalid new state!");
    }
}

// What comes from outside.

void TcpIpClientStateMachineC::start()
{
    m_log(START);
    dispatch(ClientEvent::Connect);
}

void TcpIpClientStateMachineC::stop()
{
    m_log(STOP);
    dispatch(ClientEvent::Disconnect);
}

void TcpIpClientStateMachineC::cleanup()
{
    m_log(CLEANUP);
    if (m_uiState != IDLE) goToState(IDLE);
    m_oTimer.stop();
    m_bClose = false;
}

void TcpIpClientStateMachineC::connectTcpIp()
{
    m_log(CONNECT);
    dispatch(ClientEvent::Connect);
}

void TcpIpClientStateMachineC::disconnectTcpIp()
{
    m_log(DISCONNECT);
    dispatch(ClientEvent::Disconnect);
}

void TcpIpClientStateMachineC::close()
{
    m_log(CLOSE);
    m_bClose = true;
    int error = 0;
    const HAL::SocketT socket = m_roTcpIpClient.shutdownSocket(error);
    m_log(CLOSING_ON, "BSS::NET::TcpIpClientStateMachineC::close", Shown(socket));
    if (error == 0) return;
    m_log(socket == HAL::NO_SOCKET ? ALREADY_CLOSED : SHUTDOWN_FAILED, HAL::SocketErrorText(error));
}

void TcpIpClientStateMachineC::execute()
{
    switch (m_uiState) {
    case IDLE:
        m_bClose = false;
        return;
    case SETTING_UP:
        if (m_bClose.exchange(false)) return dispatch(ClientEvent::Close);
        return dispatch(ClientEvent::TimerExpired);
    case ONLINE:
        return execOnlineState();
    default:
        BSS_ASSERT(!"Invalid execution state!");
    }
}

void TcpIpClientStateMachineC::executeClose()
{
    m_bClose = true;
    execute();
}

void TcpIpClientStateMachineC::onTimer()
{
    dispatch(ClientEvent::TimerExpired);
}

void TcpIpClientStateMachineC::onLinkLost(ResultCodeT rc)
{
    if (m_uiState != ONLINE) return dispatch(ClientEvent::LinkLost);
    m_lastResult = rc;
    execOnlineState();
}

// The states.

void TcpIpClientStateMachineC::enterIdleState()
{
    m_log(ENTER_IDLE);
    BSS_ASSERT(IDLE == m_uiState);
    BSS_ASSERT(!m_oTimer.isRunning());
    BSS_ASSERT(!m_roTcpIpClient.isSocketValid());
    m_log(NOTIFY_IDLE);
    const bool bClosed = m_lastResult == RC_CLOSE_CALLED;
    notify(BIO::OFFLINE, bClosed ? BIO::PortReason::CLOSED_HERE : BIO::PortReason::NONE);
}

void TcpIpClientStateMachineC::leaveIdleState()
{
    BSS_ASSERT(IDLE == m_uiState);
    m_log(LEAVE_IDLE);
    m_lastResult = RC_OK;
    m_bClose = false; // it was for what has been; one that is still queued comes by executeClose()
}

void TcpIpClientStateMachineC::enterSettingUpState(std::uint32_t oldState)
{
    m_log(ENTER_SETTING_UP);
    BSS_ASSERT(SETTING_UP == m_uiState);
    m_bSetUp = false;
    notify(BIO::GOING_ONLINE, BIO::PortReason::NONE);
    if (oldState == ONLINE && m_roTcpIpClient.getAutoConnect() == AutoConnect::WITH_TIMER) {
        m_log(START_TIMER);
        m_oTimer.start(intervalMs());
        return;
    }
    m_log(AT_ONCE);
    const std::uint32_t leftMs = oldState == ONLINE ? spacingLeftMs() : 0;
    if (leftMs == 0) return execSettingUpState();
    m_log(AT_ONCE_SPACED, leftMs);
    m_oTimer.start(leftMs);
}

void TcpIpClientStateMachineC::execSettingUpState()
{
    m_log(EXEC_SETTING_UP);
    BSS_ASSERT(SETTING_UP == m_uiState);
    m_lastAttemptMs = m_oTimer.nowMs();
    const bool bOpen = m_roTcpIpClient.isSocketValid();
    if (bOpen) m_log(ALREADY_OPEN);
    const ResultCodeT rc = bOpen ? m_roTcpIpClient.waitForConnection() : m_roTcpIpClient.setupConnection();
    m_bSetUp = rc == RC_OK;
    if (rc != RC_ATTEMPT_CANCELLED) m_lastResult = rc; // what has cancelled it tells its own result
    if (!m_bSetUp) m_roTcpIpClient.closeSocket();
    dispatch(m_bSetUp ? ClientEvent::Established : ClientEvent::Failed);
}

void TcpIpClientStateMachineC::leaveSettingUpState()
{
    m_log(LEAVE_SETTING_UP);
    m_oTimer.stop();
    if (m_bSetUp) return;
    m_roTcpIpClient.closeSocket();
    m_log(NOTIFY_FAILURE);
    notify(BIO::GOING_ONLINE, BIO::PortReason::CONNECT_FAILED);
}

void TcpIpClientStateMachineC::enterOnlineState()
{
    m_log(ENTER_ONLINE);
    BSS_ASSERT(ONLINE == m_uiState);
    BSS_ASSERT(!m_oTimer.isRunning());
    BSS_ASSERT(m_roTcpIpClient.isSocketValid());
    notify(BIO::ONLINE, BIO::PortReason::NONE);
}

void TcpIpClientStateMachineC::execOnlineState()
{
    m_log(EXEC_ONLINE);
    BSS_ASSERT(m_roTcpIpClient.isSocketValid());
    if (m_bClose.exchange(false)) {
        m_log(ONLINE_CLOSED);
        return dispatch(ClientEvent::Close);
    }
    m_log(m_roTcpIpClient.getAutoConnect() != AutoConnect::OFF ? ONLINE_AUTO : ONLINE_NO_AUTO);
    dispatch(ClientEvent::LinkLost);
}

void TcpIpClientStateMachineC::leaveOnlineState()
{
    m_log(LEAVE_ONLINE);
    BSS_ASSERT(ONLINE == m_uiState);
    BSS_ASSERT(m_roTcpIpClient.isSocketValid());
    m_roTcpIpClient.shutdownConnection();
    m_roTcpIpClient.closeSocket();
    const ResultCodeT rc = m_lastResult;
    const bool bByPeer = rc == RC_CLOSED;
    m_log(rc == RC_TIMED_OUT ? OFFLINE_TIMEOUT : MachineLines::OFFLINE, bByPeer ? 1 : 0);
    if (rc == RC_TIMED_OUT) return notify(BIO::OFFLINE, BIO::PortReason::RECEIVE_TIMEOUT);
    if (bByPeer) return notify(BIO::OFFLINE, BIO::PortReason::CLOSED_BY_PEER);
    // Without a loss it is a disconnect or a stop.
    const bool bHere = rc == RC_OK || rc == RC_CLOSE_CALLED;
    notify(BIO::OFFLINE, bHere ? BIO::PortReason::CLOSED_HERE : BIO::PortReason::NONE);
}

// What the table's actions do.

void TcpIpClientStateMachineC::scheduleRetry()
{
    switch (m_roTcpIpClient.getAutoConnect()) {
    case AutoConnect::OFF:
        return; // the next attempt is the caller's
    case AutoConnect::WITH_TIMER:
        return m_oTimer.start(intervalMs());
    case AutoConnect::IMMEDIATELY:
    default:
        return m_oTimer.start(m_settings.minSpacingMs);
    }
}

// A server that accepts and ends the connection would otherwise be connected to as fast as both can.
std::uint32_t TcpIpClientStateMachineC::spacingLeftMs() const
{
    const std::uint64_t passedMs = m_oTimer.nowMs() - m_lastAttemptMs;
    return passedMs < m_settings.minSpacingMs ? m_settings.minSpacingMs - static_cast<std::uint32_t>(passedMs)
                                              : 0;
}

std::uint32_t TcpIpClientStateMachineC::intervalMs()
{
    const std::uint64_t interval = m_settings.intervalMs;
    const std::uint64_t spread = interval * m_settings.jitterPercent / 100;
    if (spread == 0) return m_settings.intervalMs;
    m_random = m_random * 1664525U + 1013904223U;
    const std::uint64_t number = m_settings.random ? m_settings.random() : m_random >> 8;
    const std::uint64_t varied = interval - spread / 2 + number % (spread + 1);
    return static_cast<std::uint32_t>(varied < 0xFFFFFFFFU ? varied : 0xFFFFFFFFU);
}

void TcpIpClientStateMachineC::notify(BIO::PortEvent event, BIO::PortReason reason)
{
    const auto guarded = [this](const auto& tell) {
        try {
            tell();
        } catch (const boost::thread_interrupted&) {
            throw;
        } catch (const std::exception& error) {
            m_log(OBSERVER_THREW, error.what());
        } catch (...) {
            m_log(OBSERVER_THREW, "unknown");
        }
    };
    guarded([&] { m_roTcpIpClient.forwardPortEvent(event, reason); });
    guarded([&] {
        m_oStateSubject.notify(event, UTI::MakeShared<BIO::PortEventC>(reason, m_lastResult.load()));
    });
}

} // namespace BSS::NET
