// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The client's receiving, on its own thread, and sending, on whichever thread writes. Both wait before they
// move bytes, and no wait for the network is without limit; a write waits for those of other threads before.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientLines.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <algorithm>
#include <array>
#include <boost/thread/exceptions.hpp>
#include <exception>

namespace BSS::NET {

using namespace ClientLines;

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Net\BSS_NET_TcpIpClientTransfer)";

// As Windows spells its question whether the socket can be written to.
constexpr char NOT_WRITABLE[] = "__WSAFDIsSet((SOCKET)(socketDescriptor), (fd_set  *)(&stWriteFDS))";

constexpr std::uint32_t MAX_WAIT_MS = 60000;

std::int32_t Shown(HAL::SocketT socket) noexcept
{
    return static_cast<std::int32_t>(socket);
}

} // namespace

// Receives once, after as many waits as the limits allow. RC_OK without data when there is something else to
// do.
ResultCodeT NetTcpIpClientC::recvData(std::uint32_t maxWaitMs, std::size_t& nReceived)
{
    m_log(RECV_STARTS);
    nReceived = 0;
    const HAL::SocketT socket = m_Socket.get();
    std::array<HAL::PollItemT, 2> items = {{{socket, true}, {m_waker.getSocket(), true}}};
    std::size_t nReady = 0;
    const std::uint64_t begin = m_settings.clock();
    const int error =
        m_api.poll(items.data(), items.size(), wakeableWaitMs(receiveWaitMs(maxWaitMs)), nReady);
    m_ulTotalReceiveWaitMs += m_settings.clock() - begin;
    const bool bReady = items[0].canRead || items[0].failed;
    m_log(RECV_SELECTED, error != 0 ? -1 : bReady ? 1 : 0);
    if (error != 0) {
        m_log(RECV_FAILED, Shown(socket), HAL::SocketErrorText(error));
        return RC_FAILED;
    }
    if (items[1].canRead) m_waker.drain();
    if (!m_requests.isEmpty()) return RC_OK;
    if (bReady) return takeData(socket, nReceived);
    if (nReady == 0) logWait(socket);
    return noDataYet(socket);
}

// The limit is exceeded one millisecond after it has been reached.
std::uint32_t NetTcpIpClientC::receiveWaitMs(std::uint32_t maxWaitMs) const
{
    const std::uint64_t waitMs = std::min({m_settings.receiveWaitMs, maxWaitMs, MAX_WAIT_MS});
    const std::uint64_t limitMs = maxReceiveTimeoutMs();
    if (limitMs == 0) return static_cast<std::uint32_t>(waitMs);
    const std::uint64_t totalMs = m_ulTotalReceiveWaitMs;
    const std::uint64_t leftMs = totalMs > limitMs ? 0 : limitMs - totalMs + 1;
    return static_cast<std::uint32_t>(std::min(waitMs, leftMs));
}

// The system sends no keep-alive while bytes are on their way, and repeats them for a quarter of an hour.
bool NetTcpIpClientC::isCutOff(HAL::SocketT socket)
{
    if (m_settings.keepAliveIdleSeconds <= 0) return false;
    if (!m_api.isUnanswered(socket)) {
        m_unansweredSince.reset();
        return false;
    }
    const std::uint64_t now = m_settings.clock();
    if (!m_unansweredSince) m_unansweredSince = now;
    const std::int64_t limitSeconds =
        m_settings.keepAliveIdleSeconds +
        std::int64_t{m_settings.keepAliveIntervalSeconds} * m_settings.nKeepAliveProbes;
    const std::uint64_t unansweredMs = now - *m_unansweredSince;
    if (unansweredMs < static_cast<std::uint64_t>(limitSeconds) * 1000) return false;
    m_log(RECV_UNANSWERED, Shown(socket), static_cast<std::uint32_t>(unansweredMs));
    return true;
}

void NetTcpIpClientC::logWait(HAL::SocketT socket) const
{
    const std::uint32_t limitMs = maxReceiveTimeoutMs();
    if (limitMs == 0) return m_log(RECV_NO_LIMIT, Shown(socket));
    m_log(RECV_WAITED, Shown(socket), static_cast<std::uint32_t>(m_ulTotalReceiveWaitMs), limitMs);
}

// What others do with the thread, its reader for one, is no silence of the server: the waits alone count.
ResultCodeT NetTcpIpClientC::noDataYet(HAL::SocketT socket)
{
    if (isCutOff(socket)) return RC_CLOSED;
    const std::uint32_t limitMs = maxReceiveTimeoutMs();
    if (limitMs == 0 || m_ulTotalReceiveWaitMs <= limitMs) return RC_OK;
    m_log(RECV_TIMED_OUT, Shown(socket));
    return RC_TIMED_OUT;
}

ResultCodeT NetTcpIpClientC::takeData(HAL::SocketT socket, std::size_t& nReceived)
{
    const HAL::TransferT got = m_api.receive(socket, m_buffer.data(), m_buffer.size());
    if (got.error != 0 && HAL::IsWouldBlock(got.error)) {
        m_log(RECV_RETURNED, -1, HAL::SocketErrorText(got.error));
        return noDataYet(socket);
    }
    if (got.error != 0) {
        m_log(RECV_FAILED, Shown(socket), HAL::SocketErrorText(got.error));
        return HAL::IsConnectionLost(got.error) ? RC_CLOSED : RC_FAILED;
    }
    if (got.count == 0) {
        m_log(SERVER_SHUTDOWN, Shown(socket));
        return RC_CLOSED;
    }
    m_ulTotalReceiveWaitMs = 0;
    m_unansweredSince.reset();
    m_log(RECEIVED, "BSS::NET::NetTcpIpClientC::recvData", static_cast<std::int32_t>(got.count),
          Shown(socket));
    nReceived = got.count;
    giveToReader(got.count);
    return RC_OK;
}

void NetTcpIpClientC::giveToReader(std::size_t count)
{
    try {
        static_cast<void>(forwardData(m_buffer.data(), count));
    } catch (const boost::thread_interrupted&) {
        throw;
    } catch (const std::exception& error) {
        m_log(READER_THREW, error.what());
    } catch (...) {
        m_log(READER_THREW, "unknown");
    }
}

ResultCodeT NetTcpIpClientC::discardRd()
{
    m_log(DISCARD_RD);
    const SharedSocketC::UseC use(m_Socket);
    if (use.getSocket() == HAL::NO_SOCKET) return RC_CLOSED;
    std::array<std::uint8_t, 4096> bytes;
    // The end and errors stay for the thread that watches the connection; both are told again. What a fast
    // server keeps sending is not waited for.
    constexpr int MAX_ROUNDS = 4096;
    for (int n = 0; n < MAX_ROUNDS; ++n) {
        const HAL::TransferT got = m_api.receive(use.getSocket(), bytes.data(), bytes.size());
        if (got.error != 0 || got.count < bytes.size()) break;
    }
    return RC_OK;
}

ResultCodeT NetTcpIpClientC::discardWr()
{
    m_log(DISCARD_WR);
    return RC_OK;
}

ResultCodeT NetTcpIpClientC::write(const void* bytes, std::size_t count, std::size_t& nWritten)
{
    nWritten = 0;
    if (bytes == nullptr || count == 0) return RC_INVALID_ARGUMENT;
    const TSK::GuardC guard(m_writeLock);
    const SharedSocketC::UseC use(m_Socket);
    if (use.getSocket() == HAL::NO_SOCKET) return RC_CLOSED;
    return writeData(use.getSocket(), static_cast<const char*>(bytes), count, nWritten);
}

ResultCodeT NetTcpIpClientC::writeData(HAL::SocketT socket, const char* bytes, std::size_t count,
                                       std::size_t& nWritten)
{
    while (nWritten < count) {
        const ResultCodeT rc = waitForRoom(socket);
        if (rc != RC_OK) return rc;
        const HAL::TransferT sent = m_api.send(socket, bytes + nWritten, count - nWritten);
        if (sent.error != 0 && !HAL::IsWouldBlock(sent.error)) {
            m_log(SEND_FAILED, HAL::SocketErrorText(sent.error));
            return HAL::IsConnectionLost(sent.error) ? RC_CLOSED : RC_FAILED;
        }
        nWritten += sent.count;
        m_log(SENT, "BSS::NET::NetTcpIpClientC::writeData", static_cast<std::int32_t>(sent.count),
              Shown(socket));
    }
    return RC_OK;
}

ResultCodeT NetTcpIpClientC::waitForRoom(HAL::SocketT socket)
{
    HAL::PollItemT item{socket, false, true};
    std::size_t nReady = 0;
    if (const int error = m_api.poll(&item, 1, WRITE_TIMEOUT_MS, nReady)) {
        m_log(WRITE_SELECT_FAILED, HAL::SocketErrorText(error));
        return RC_FAILED;
    }
    if (nReady == 0) {
        m_log(WRITE_TIMED_OUT);
        return RC_TIMED_OUT;
    }
    if (item.failed) {
        m_log(WRITE_EXCEPTION);
        return RC_CLOSED;
    }
    if (!item.canWrite) ERR::AssertFailed(NOT_WRITABLE, 0, 0, BSS_SOURCE_NAME, __LINE__);
    return RC_OK;
}

} // namespace BSS::NET
