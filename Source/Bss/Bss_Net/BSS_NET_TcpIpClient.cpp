// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The client's thread and what others ask of it; connecting is in BSS_NET_TcpIpClientConnect,
// receiving and sending are in BSS_NET_TcpIpClientTransfer.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Net/BSS_NET_TaskOptions.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientLines.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_Task.h"

#include <algorithm>
#include <array>
#include <boost/thread/thread.hpp>
#include <chrono>
#include <utility>

namespace BSS::NET {

using namespace ClientLines;

namespace {

// Nothing wakes the thread but its requests.
constexpr std::uint32_t LONG_WAIT_MS = 60000;

// Without descriptors to spare, or where the system lets it wait for nothing, it looks for itself.
constexpr std::uint64_t UNWAKEABLE_WAIT_MS = 100;

} // namespace

class NetTcpIpClientC::ClientTaskC final : public TSK::TaskC
{
public:
    explicit ClientTaskC(NetTcpIpClientC& client)
        : TaskC(NetTaskSettings(client.m_settings.name, client.m_settings.logger)), m_client(client)
    {}

    // The thread waits for sockets, which no interruption reaches.
    void stop() override
    {
        m_client.post(ClientRequest::Stop);
        logStop();
        setState(TSK::ComponentState::Stopped);
    }

protected:
    void main() override
    {
        try {
            while (m_client.serve(LONG_WAIT_MS)) {
            }
        } catch (...) {
            m_client.finishAfterFailure();
            throw;
        }
    }

private:
    NetTcpIpClientC& m_client;
};

NetTcpIpClientC::NetTcpIpClientC(NetTcpIpClientSettingsT settings)
    : m_settings(std::move(settings)), m_log(m_settings.logger), m_api(*m_settings.pSockets),
      m_socketsInUse(m_api), m_timer(m_settings.clock),
      m_machine(*this, m_timer, m_log, m_settings.reconnect),
      m_buffer(std::max<std::size_t>(m_settings.receiveBufferBytes, 1)),
      m_task(std::make_unique<ClientTaskC>(*this))
{
    if (const int error = m_socketsInUse.getError()) m_log(START_UP_FAILED, error);
}

NetTcpIpClientC::~NetTcpIpClientC()
{
    const boost::this_thread::disable_interruption undisturbed;
    stop();
    m_task->waitForStop(-1);
    finish(); // one that was served by another thread
}

ResultCodeT NetTcpIpClientC::setPortConfig(const NetTcpIpClientCfgT& config)
{
    m_log(SET_PORT_CONFIG, HAL::Utf8FromWide(config.m_wszIpDnsName), config.m_unServerPort);
    const ResultCodeT rc = config.check();
    if (rc != RC_OK) return rc;
    const TSK::GuardC guard(m_configLock);
    m_config = config;
    return RC_OK;
}

NetTcpIpClientCfgT NetTcpIpClientC::getPortConfig() const
{
    const TSK::GuardC guard(m_configLock);
    return m_config;
}

AutoConnect NetTcpIpClientC::getAutoConnect() const
{
    const TSK::GuardC guard(m_configLock);
    return m_config.m_eAutoConnect;
}

std::uint32_t NetTcpIpClientC::maxReceiveTimeoutMs() const
{
    const TSK::GuardC guard(m_configLock);
    return m_config.m_ulMaxReceiveTimeoutMs;
}

// What others want.

void NetTcpIpClientC::start()
{
    // The stop that a thread has ended by is there to be seen until it is started again. Asked in this order,
    // so that one that ends meanwhile is started anew and not taken for one that goes on.
    const bool bStopping = m_requests.isStopping();
    const bool bRunning = m_task->isRunning();
    if (bStopping && bRunning) throw SysServiceErrorC("the client is about to end", RC_SERVICE_FAILED);
    if (!bRunning) {
        m_requests.reset();
        m_task->start();
    }
    post(ClientRequest::Connect);
}

void NetTcpIpClientC::stop()
{
    m_task->stop();
}

bool NetTcpIpClientC::waitForStop(int timeoutMs)
{
    return m_task->waitForStop(timeoutMs);
}

void NetTcpIpClientC::connectTcpIp()
{
    post(ClientRequest::Connect);
}

void NetTcpIpClientC::disconnectTcpIp()
{
    post(ClientRequest::Disconnect);
}

void NetTcpIpClientC::close()
{
    m_machine.close(); // posts the request, too
    m_waker.wake();
}

void NetTcpIpClientC::post(ClientRequest request)
{
    m_requests.post(request);
    m_waker.wake();
}

// The thread.

bool NetTcpIpClientC::serve(std::uint32_t maxWaitMs)
{
    if (serveRequest()) return true;
    if (m_requests.isStopping()) { // anything else may have come since we looked
        finish();
        return false;
    }
    if (m_machine.getState() == ONLINE) {
        std::size_t nReceived = 0;
        const ResultCodeT rc = recvData(maxWaitMs, nReceived);
        if (rc != RC_OK) m_machine.onLinkLost(rc);
        return true;
    }
    waitForRequest(maxWaitMs);
    if (m_timer.isRunning() && m_timer.leftMs() == 0 && !m_requests.endsAttempt()) {
        m_timer.stop();
        m_machine.onTimer();
    }
    return true;
}

bool NetTcpIpClientC::serveRequest()
{
    const std::optional<ClientRequest> request = m_requests.take();
    if (!request) return false;
    switch (*request) {
    case ClientRequest::Connect:
        m_machine.connectTcpIp();
        return true;
    case ClientRequest::Disconnect:
        m_machine.disconnectTcpIp();
        return true;
    case ClientRequest::Close:
        m_machine.executeClose();
        return true;
    case ClientRequest::Stop:
        break;
    }
    return false;
}

void NetTcpIpClientC::waitForRequest(std::uint32_t maxWaitMs)
{
    std::uint64_t waitMs = maxWaitMs;
    if (m_timer.isRunning()) waitMs = std::min(waitMs, m_timer.leftMs());
    std::array<HAL::PollItemT, 1> items = {{{m_waker.getSocket(), true}}};
    std::size_t nReady = 0;
    const int error = m_api.poll(items.data(), items.size(),
                                 wakeableWaitMs(std::min<std::uint64_t>(waitMs, LONG_WAIT_MS)), nReady);
    if (error != 0) {
        // The next wait would fail as quickly, and the thread would have a processor to itself.
        if (!m_bWaitFails) m_log(WAIT_FAILED, HAL::SocketErrorText(error));
        m_requests.await(std::chrono::milliseconds(std::min(waitMs, UNWAKEABLE_WAIT_MS)));
    }
    m_bWaitFails = error != 0;
    if (items[0].canRead) m_waker.drain();
}

int NetTcpIpClientC::wakeableWaitMs(std::uint64_t waitMs) const noexcept
{
    const bool bWakeable = m_waker.getSocket() != HAL::NO_SOCKET;
    return static_cast<int>(bWakeable ? waitMs : std::min(waitMs, UNWAKEABLE_WAIT_MS));
}

void NetTcpIpClientC::finish()
{
    if (m_machine.getState() == IDLE) return;
    m_machine.stop();
    m_machine.cleanup();
}

// Nobody may go on believing in a connection that has no thread any more. What observers throw now is of no
// interest beside what has ended the thread.
void NetTcpIpClientC::finishAfterFailure() noexcept
{
    const boost::this_thread::disable_interruption undisturbed;
    m_requests.post(
        ClientRequest::Stop); // whoever is told of the end and starts again is told that it runs yet
    try {
        finish();
    } catch (...) {
        closeSocket();
    }
}

void NetTcpIpClientC::forwardPortEvent(BIO::PortEvent event, BIO::PortReason reason)
{
    forwardEvent(event, reason);
}

} // namespace BSS::NET
