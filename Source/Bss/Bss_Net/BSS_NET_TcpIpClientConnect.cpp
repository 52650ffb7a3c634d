// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The client's connecting and closing. The thread that owns the socket opens and closes it; others only end
// the connection.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientLines.h"

#include <array>

namespace BSS::NET {

using namespace ClientLines;

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Net\BSS_NET_TcpIpClientConnect)";

std::int32_t Shown(HAL::SocketT socket) noexcept
{
    return static_cast<std::int32_t>(socket);
}

} // namespace

ResultCodeT NetTcpIpClientC::getServerAddress(const NetTcpIpClientCfgT& config)
{
    m_log(GET_ADDRESS);
    m_addresses.clear();
    const std::string name = HAL::Utf8FromWide(config.m_wszIpDnsName);
    HAL::SocketAddressT address;
    if (HAL::ParseAddress(name, config.m_unServerPort, address)) {
        m_addresses.push_back(address);
        m_log(ADDRESS_AS_IS, name);
        return RC_OK;
    }
    m_log(RESOLVING);
    const auto isCancelled = [this] { return m_requests.endsAttempt(); };
    const int error = m_settings.resolver->resolve(name, config.m_unServerPort, isCancelled, m_addresses);
    if (error == NameResolverI::CANCELLED) return RC_ATTEMPT_CANCELLED;
    if (error != 0 || m_addresses.empty()) {
        m_log(RESOLVE_FAILED, name, HAL::ResolveErrorText(error));
        return RC_FAILED;
    }
    for (const HAL::SocketAddressT& found : m_addresses)
        m_log(RESOLVED, HAL::AddressText(found));
    return RC_OK;
}

ResultCodeT NetTcpIpClientC::setupConnection()
{
    BSS_ASSERT(!m_Socket.isValid());
    const NetTcpIpClientCfgT config = getPortConfig();
    ResultCodeT rc = config.check();
    if (rc == RC_OK) rc = getServerAddress(config);
    if (rc != RC_OK) return rc;
    // A name may stand for several addresses, of which not all need to lead to the server.
    for (const HAL::SocketAddressT& address : m_addresses) {
        if (m_requests.endsAttempt()) return RC_ATTEMPT_CANCELLED;
        rc = setupConnectionTo(address);
        if (rc == RC_OK) return RC_OK;
        closeSocket();
    }
    return rc;
}

ResultCodeT NetTcpIpClientC::setupConnectionTo(const HAL::SocketAddressT& address)
{
    int error = 0;
    const HAL::SocketT socket = m_api.open(HAL::KindOf(address), error);
    if (socket == HAL::NO_SOCKET) {
        m_log(SOCKET_FAILED, HAL::SocketErrorText(error));
        return RC_FAILED;
    }
    m_Socket.set(socket);
    m_address = address;
    m_log(NEW_SOCKET, Shown(socket));
    if (!prepareSocket(socket)) return RC_FAILED;
    error = m_api.connect(socket, address);
    if (error == 0) {
        m_log(CONNECTED_AT_ONCE, Shown(socket));
        onConnectionEstablished();
        return RC_OK;
    }
    if (!HAL::IsConnectPending(error)) {
        m_log(CONNECT_ERROR, Shown(socket), HAL::SocketErrorText(error));
        return RC_FAILED;
    }
    m_log(CONNECT_STARTED, Shown(socket), HAL::SocketErrorText(error));
    return waitForConnection();
}

// A socket that blocks would hold the thread for as long as the system likes; without the others the
// connection works, only not as well.
bool NetTcpIpClientC::prepareSocket(HAL::SocketT socket)
{
    if (const int error = m_api.setNonBlocking(socket)) {
        m_log(IOCTL_FAILED, __LINE__, Shown(socket), HAL::SocketErrorText(error));
        return false;
    }
    if (const int error = m_api.setNoDelay(socket)) {
        m_log(NO_DELAY_FAILED, "BSS::NET::NetTcpIpClientC::setupConnection", Shown(socket),
              HAL::SocketErrorText(error));
    }
    if (m_settings.keepAliveIdleSeconds <= 0) return true;
    if (const int error =
            m_api.setKeepAlive(socket, m_settings.keepAliveIdleSeconds, m_settings.keepAliveIntervalSeconds,
                               m_settings.nKeepAliveProbes)) {
        m_log(KEEP_ALIVE_FAILED, "BSS::NET::NetTcpIpClientC::setupConnection", Shown(socket),
              HAL::SocketErrorText(error));
    }
    return true;
}

ResultCodeT NetTcpIpClientC::waitForConnection()
{
    const HAL::SocketT socket = m_Socket.get();
    m_log(WAIT_TIMEOUT, "BSS::NET::NetTcpIpClientC::waitForConnection", CONNECT_TIMEOUT_MS);
    const std::uint64_t end = m_settings.clock() + CONNECT_TIMEOUT_MS;
    std::array<HAL::PollItemT, 2> items = {{{socket, false, true}, {m_waker.getSocket(), true}}};
    for (;;) {
        const std::uint64_t now = m_settings.clock();
        std::size_t nReady = 0;
        const int waitMs = now < end ? wakeableWaitMs(end - now) : 0;
        const int error = m_api.poll(items.data(), items.size(), waitMs, nReady);
        if (error != 0) {
            m_log(CONNECT_FAILED, Shown(socket), HAL::SocketErrorText(error));
            return RC_FAILED;
        }
        if (items[1].canRead) m_waker.drain();
        if (m_requests.endsAttempt()) return RC_ATTEMPT_CANCELLED;
        if (items[0].canWrite || items[0].failed) break;
        if (m_settings.clock() >= end) {
            m_log(CONNECT_TIMED_OUT, Shown(socket));
            return RC_TIMED_OUT;
        }
    }
    int pending = 0;
    if (const int error = m_api.takePendingError(socket, pending)) {
        m_log(CONNECT_FAILED, Shown(socket), HAL::SocketErrorText(error));
        return RC_FAILED;
    }
    if (pending == 0 && !items[0].canWrite) { // an exception that the system has no number for
        m_log(CONNECT_FAILED, Shown(socket), HAL::SocketErrorText(0));
        return RC_FAILED;
    }
    if (pending != 0) {
        m_log(ERROR_REPORTED, Shown(socket), pending, HAL::SocketErrorText(pending));
        return RC_FAILED;
    }
    onConnectionEstablished();
    return RC_OK;
}

void NetTcpIpClientC::onConnectionEstablished()
{
    m_ulTotalReceiveWaitMs = 0;
    m_unansweredSince.reset();
    m_Socket.share();
    m_log(ESTABLISHED, HAL::AddressText(m_address), HAL::PortOf(m_address));
}

void NetTcpIpClientC::shutdownConnection()
{
    m_log(SHUTDOWN);
    int error = 0;
    const bool bSocket = m_Socket.with([&](HAL::SocketT socket) {
        error = m_api.shutdown(socket, HAL::ShutdownKind::Both);
        return socket != HAL::NO_SOCKET;
    });
    if (!bSocket) {
        m_log(SHUTDOWN_ALREADY);
    } else if (error == 0) {
        m_log(SHUTDOWN_DONE);
    } else {
        m_log(ClientLines::SHUTDOWN_FAILED, HAL::SocketErrorText(error));
    }
}

// With no socket the system is asked all the same, for its words about that. The request is there before the
// connection ends, and the socket stays until it has: what observers of that end ask for comes after it.
HAL::SocketT NetTcpIpClientC::shutdownSocket(int& error)
{
    return m_Socket.with([&](HAL::SocketT socket) {
        m_requests.post(ClientRequest::Close);
        error = m_api.shutdown(socket, HAL::ShutdownKind::Both);
        return socket;
    });
}

void NetTcpIpClientC::closeSocket()
{
    const HAL::SocketT socket = m_Socket.take();
    if (socket != HAL::NO_SOCKET) m_api.close(socket);
}

} // namespace BSS::NET
