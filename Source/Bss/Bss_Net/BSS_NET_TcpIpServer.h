// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A server that sends one stream of bytes to all its clients. A slow or dead client delays neither the others
// nor the sender: what it has not taken yet is kept up to a limit, and beyond that it is dropped, with a log
// line. What clients send is given to a function, or thrown away.
//
// A thread of its own serves all clients. What the function throws is logged; only boost::thread_interrupted
// and a lack of memory end the thread, and with it all connections: start() begins again. Where the system
// lets it wait for nothing, it says so once and looks ten times a second. All operations are safe from any
// thread; configuring, starting, stopping and the end of the object are not for the function.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"
#include "Bss/Bss_Net/BSS_NET_LogLine.h"
#include "Bss/Bss_Net/BSS_NET_SocketApi.h"
#include "Bss/Bss_Net/BSS_NET_SocketServer.h"
#include "Bss/Bss_Net/BSS_NET_SocketsInUse.h"
#include "Bss/Bss_Net/BSS_NET_StreamBuffer.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace BSS::TSK {
class TaskC;
} // namespace BSS::TSK

namespace BSS::NET {

struct NetTcpIpServerSettingsT
{
    std::string name = "NetTcpIpServer"; ///< of the thread
    std::shared_ptr<DBG::DbgLogConsumerC> logger = {};
    SocketApiI* pSockets = &SystemSockets();             ///< not owned
    std::size_t maxBufferedBytes = std::size_t{1} << 20; ///< that a client may be behind
    std::size_t nMaxClients = 1000;

    /// Called on the server's thread with the number of the client and what it has sent.
    std::function<void(std::uint32_t, const std::uint8_t*, std::size_t)> onData = {};
};

class NetTcpIpServerC
{
public:
    explicit NetTcpIpServerC(NetTcpIpServerSettingsT settings = {});
    ~NetTcpIpServerC();
    NetTcpIpServerC(const NetTcpIpServerC&) = delete;
    NetTcpIpServerC& operator=(const NetTcpIpServerC&) = delete;

    /// Where clients come to: an address of this machine, and a port, 0 for any that is free. Counts from the
    /// next start. RC_INVALID_ARGUMENT for what is no address.
    ResultCodeT configure(const std::string& address, std::uint16_t port);

    /// RC_OK, also when it runs already; RC_OBJECT_MISSING when it is not configured; RC_FAILED, with a log
    /// line, when the address, the port or a thread is not to be had, or when the process had no descriptors
    /// to spare as the object was made. Waits for a thread that is just about to end by itself.
    [[nodiscard]] ResultCodeT start();

    /// Ends all connections and returns when that is done.
    void stop();

    /// Sends to all clients of this moment. Does not wait. RC_CLOSED when one of them was dropped by it. What
    /// no client may have any more is not kept, however long the server's thread is busy.
    ResultCodeT send(const void* bytes, std::size_t count);

    std::uint16_t getPort() const noexcept { return m_port.load(); }
    std::size_t getClientCount() const;
    std::uint64_t getDroppedCount() const noexcept { return m_nDropped.load(); }

    /// What is kept for the slowest client, in bytes.
    std::size_t getBufferedBytes() const;

private:
    class ServerTaskC;
    struct ClientT;

    ResultCodeT startServing();
    void serve();
    bool waitForWork();
    void pauseAfter(int error);
    void acceptClients();
    void prepare(ClientT& client);
    void serveClient(ClientT& client, const HAL::PollItemT& answer);
    bool readFrom(ClientT& client);
    bool sendTo(ClientT& client);
    void removeGone();
    void releaseSent();
    void endConnections();

    const NetTcpIpServerSettingsT m_settings;
    const LogC m_log;
    SocketApiI& m_api;
    HAL::SocketAddressT m_address;
    const SocketsInUseC m_socketsInUse;
    HAL::SocketWakerC m_waker;
    SocketServerC m_listener;
    std::atomic<std::uint16_t> m_port{0};
    std::atomic<bool> m_bStop{false};
    std::condition_variable m_stopped; // with the lock
    std::atomic<bool> m_bServing{false};
    std::atomic<bool> m_bWoken{false};
    std::atomic<std::uint64_t> m_nDropped{0};

    mutable std::mutex m_lock; // guards the stream, the list, and the clients' positions
    StreamBufferC m_stream;
    std::vector<std::unique_ptr<ClientT>> m_clients;

    // Of the server's thread.
    std::vector<HAL::PollItemT> m_items;
    std::vector<std::uint8_t> m_received;
    std::uint32_t m_nAccepted = 0;
    bool m_bAcceptLater = false;
    bool m_bWaitFails = false;

    std::mutex m_lifeLock; // start and stop
    std::unique_ptr<TSK::TaskC> m_task;
};

} // namespace BSS::NET
