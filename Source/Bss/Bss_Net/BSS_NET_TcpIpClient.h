// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A byte-stream port over one TCP connection to a configured server. A thread of its own keeps the connection
// alive, receives, and gives the reader what arrives; every failure is logged with the system's words and
// becomes a change of state, never an exception. Sending happens on the thread that writes.
//
// All operations but serve() are safe from any thread, also from callbacks of observers, readers and writers,
// which run on the client's thread; only waitForStop and the end of the object are not for callbacks.
// The client stops when it is destroyed. What arrives while there is no reader is gone.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_InBetweenPortBase.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Net/BSS_NET_ClientRequests.h"
#include "Bss/Bss_Net/BSS_NET_DeadlineTimer.h"
#include "Bss/Bss_Net/BSS_NET_NameResolver.h"
#include "Bss/Bss_Net/BSS_NET_SharedSocket.h"
#include "Bss/Bss_Net/BSS_NET_SocketApi.h"
#include "Bss/Bss_Net/BSS_NET_SocketsInUse.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientStateMachine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace BSS::TSK {
class TaskC;
} // namespace BSS::TSK

namespace BSS::NET {

/// What a client is made of; the defaults are what programs use.
struct NetTcpIpClientSettingsT
{
    std::string name = "NetTcpIpClient"; ///< of the thread
    std::shared_ptr<DBG::DbgLogConsumerC> logger = {};
    SocketApiI* pSockets = &SystemSockets(); ///< not owned
    std::shared_ptr<NameResolverI> resolver = std::make_shared<NameResolverC>();
    ClockMsT clock = &HAL::TickCount64;
    ReconnectSettingsT reconnect = {};
    std::uint32_t receiveWaitMs = 500; ///< the longest single wait for data
    std::size_t receiveBufferBytes = std::size_t{1} << 16;

    /// Signs of life that the system asks for on a silent connection: after how many seconds, how often, and
    /// how many may stay without an answer. 0 idle seconds: none. Bytes that were sent may stay without an
    /// answer for as long as all that takes. Windows before 10 (1703) has its own number of them, 10.
    int keepAliveIdleSeconds = 30;
    int keepAliveIntervalSeconds = 5;
    int nKeepAliveProbes = 3;
};

class NetTcpIpClientC final : public BIO::InBetweenPortBaseC, private TcpIpClientI
{
public:
    static constexpr int CONNECT_TIMEOUT_MS = 1000;
    static constexpr int WRITE_TIMEOUT_MS = 500;

    explicit NetTcpIpClientC(NetTcpIpClientSettingsT settings = {});
    ~NetTcpIpClientC() override;

    /// The address counts from the next attempt to connect on, the auto-connect mode from the next loss or
    /// failed attempt, the receive limit from the next wait. RC_INVALID_ARGUMENT, and nothing changed, for
    /// what NetTcpIpClientCfgT::check refuses.
    [[nodiscard]] ResultCodeT setPortConfig(const NetTcpIpClientCfgT& config);
    NetTcpIpClientCfgT getPortConfig() const;

    /// Starts the thread and connects; connects when the thread is running. Throws as TSK::TaskC::start does,
    /// so while the thread is about to end after stop().
    void start();

    /// Disconnects and ends the thread; returns at once.
    void stop();

    /// As TSK::TaskC::waitForStop.
    bool waitForStop(int timeoutMs);

    void connectTcpIp();
    void disconnectTcpIp();

    /// Ends the connection or the attempt at once; there is none until connectTcpIp.
    void close();

    /// Ends both directions of the connection, without the wish to be without one: what follows is as when
    /// the server ends it.
    void shutdownConnection() override;

    /// Sends all of it, in as many parts as the connection takes. RC_TIMED_OUT when it takes nothing for
    /// WRITE_TIMEOUT_MS, RC_CLOSED when there is none, RC_FAILED, RC_INVALID_ARGUMENT for nothing to send.
    /// What several threads write is not mixed: each waits until those before it are done. A failure is the
    /// writer's to know; the loss behind it is noticed and told by the client's own thread.
    [[nodiscard]] ResultCodeT write(const void* bytes, std::size_t count, std::size_t& nWritten) override;
    ResultCodeT discardRd() override;

    /// Nothing is kept for sending; there is nothing to throw away.
    ResultCodeT discardWr() override;

    bool isSocketValid() const override { return m_Socket.isValid(); }
    std::uint32_t getState() const noexcept { return m_machine.getState(); }
    ResultCodeT getLastResult() const noexcept { return m_machine.getLastResult(); }
    UTI::SubjectC& getStateSubject() noexcept { return m_machine.getStateSubject(); }

    /// One turn of the thread's work, for those who give the client their own thread instead of start(): does
    /// what is asked for, receives once, or waits that long for one of them. False once stop() was called.
    bool serve(std::uint32_t maxWaitMs);

private:
    class ClientTaskC;

    // For the machine.
    AutoConnect getAutoConnect() const override;
    ResultCodeT setupConnection() override;
    ResultCodeT waitForConnection() override;
    void closeSocket() override;
    HAL::SocketT shutdownSocket(int& error) override;
    void forwardPortEvent(BIO::PortEvent event, BIO::PortReason reason) override;

    ResultCodeT getServerAddress(const NetTcpIpClientCfgT& config);
    ResultCodeT setupConnectionTo(const HAL::SocketAddressT& address);
    bool prepareSocket(HAL::SocketT socket);
    void onConnectionEstablished();
    ResultCodeT recvData(std::uint32_t maxWaitMs, std::size_t& nReceived);
    ResultCodeT takeData(HAL::SocketT socket, std::size_t& nReceived);
    void logWait(HAL::SocketT socket) const;
    ResultCodeT noDataYet(HAL::SocketT socket);
    bool isCutOff(HAL::SocketT socket);
    std::uint32_t receiveWaitMs(std::uint32_t maxWaitMs) const;
    void giveToReader(std::size_t count);
    ResultCodeT writeData(HAL::SocketT socket, const char* bytes, std::size_t count, std::size_t& nWritten);
    ResultCodeT waitForRoom(HAL::SocketT socket);

    void post(ClientRequest request);
    bool serveRequest();
    void waitForRequest(std::uint32_t maxWaitMs);
    int wakeableWaitMs(std::uint64_t waitMs) const noexcept;
    void finish();
    void finishAfterFailure() noexcept;
    std::uint32_t maxReceiveTimeoutMs() const;

    const NetTcpIpClientSettingsT m_settings;
    const LogC m_log;
    SocketApiI& m_api;
    const SocketsInUseC m_socketsInUse;
    mutable TSK::MutexC m_configLock;
    NetTcpIpClientCfgT m_config;
    SharedSocketC m_Socket;
    TSK::MutexC m_writeLock;
    HAL::SocketWakerC m_waker;
    ClientRequestsC m_requests;
    DeadlineTimerC m_timer;
    TcpIpClientStateMachineC m_machine;

    // Of the client's thread.
    std::vector<HAL::SocketAddressT> m_addresses;
    HAL::SocketAddressT m_address;            // the one that is tried
    std::uint64_t m_ulTotalReceiveWaitMs = 0; // since the last data
    std::optional<std::uint64_t> m_unansweredSince;
    std::vector<std::uint8_t> m_buffer;
    bool m_bWaitFails = false;

    std::unique_ptr<TSK::TaskC> m_task;
};

} // namespace BSS::NET
