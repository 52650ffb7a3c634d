// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The list of clients changes on the server's thread only, under the lock; sockets are used
// by that thread alone.
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Net/BSS_NET_TaskOptions.h"
#include "Bss/Bss_Tsk/BSS_TSK_Task.h"

#include <algorithm>
#include <boost/thread/thread.hpp>
#include <chrono>
#include <exception>
#include <utility>

namespace BSS::NET {

namespace {

constexpr LogLineT LISTENING{DBG::LEVEL_INFO, "NetTcpIpServerC - listening on %s:%d\n"};
constexpr LogLineT LISTEN_FAILED{DBG::LEVEL_ERROR, "NetTcpIpServerC - listen on %s:%d failed (err %s)\n"};
constexpr LogLineT START_FAILED{DBG::LEVEL_ERROR, "NetTcpIpServerC - start failed: %s\n"};
constexpr LogLineT OPTION_FAILED{DBG::LEVEL_WARN,
                                 "NetTcpIpServerC - setsockopt %s failed on client %u (err %s)\n"};
constexpr LogLineT CLIENT_CAME{DBG::LEVEL_INFO, "NetTcpIpServerC - client %u connected\n"};
constexpr LogLineT CLIENT_GONE{DBG::LEVEL_INFO, "NetTcpIpServerC - client %u gone\n"};
constexpr LogLineT CLIENT_DROPPED{DBG::LEVEL_WARN, "NetTcpIpServerC - client %u dropped, %u bytes behind\n"};
constexpr LogLineT CLIENT_REFUSED{DBG::LEVEL_WARN, "NetTcpIpServerC - client refused, there are %u\n"};
constexpr LogLineT ACCEPT_FAILED{DBG::LEVEL_WARN, "NetTcpIpServerC - accept failed (err %s)\n"};
constexpr LogLineT WAIT_FAILED{DBG::LEVEL_ERROR, "NetTcpIpServerC - waiting failed (err %s)\n"};
constexpr LogLineT DATA_THREW{DBG::LEVEL_ERROR, "NetTcpIpServerC - exception in the reader: %s\n"};

constexpr int ACCEPT_LATER_MS = 100;
constexpr std::chrono::milliseconds WAIT_AGAIN{100};
constexpr std::size_t RECEIVE_BYTES = 16384;

// One client takes no more of the thread's time than this before the others have their turn.
constexpr std::size_t MAX_TURN_BYTES = std::size_t{1} << 18;

// A client that has gone without a word is found out after two minutes (older Windows has its own number of
// probes, 10), whether or not it was being sent something. One that does not read at all for as long, with
// bytes waiting for it, counts as gone too.
constexpr int KEEP_ALIVE_IDLE_S = 60;
constexpr int KEEP_ALIVE_INTERVAL_S = 15;
constexpr int KEEP_ALIVE_PROBES = 4;
constexpr int SEND_LIMIT_S = KEEP_ALIVE_IDLE_S + KEEP_ALIVE_INTERVAL_S * KEEP_ALIVE_PROBES;

} // namespace

struct NetTcpIpServerC::ClientT
{
    explicit ClientT(SocketApiI& api) : socket(api) {}

    std::uint32_t number = 0;
    SocketClientC socket;
    std::uint64_t position = 0; // in the stream
    std::uint64_t nBehind = 0;  // bytes, too many; to be dropped
    bool bGone = false;
    bool bFull = false; // the system takes no more for now; of the server's thread
};

class NetTcpIpServerC::ServerTaskC final : public TSK::TaskC
{
public:
    explicit ServerTaskC(NetTcpIpServerC& server)
        : TaskC(NetTaskSettings(server.m_settings.name, server.m_settings.logger)), m_server(server)
    {}

protected:
    void main() override { m_server.serve(); }

private:
    NetTcpIpServerC& m_server;
};

NetTcpIpServerC::NetTcpIpServerC(NetTcpIpServerSettingsT settings)
    : m_settings(std::move(settings)), m_log(m_settings.logger), m_api(*m_settings.pSockets),
      m_socketsInUse(m_api), m_listener(m_api), m_received(RECEIVE_BYTES),
      m_task(std::make_unique<ServerTaskC>(*this))
{}

NetTcpIpServerC::~NetTcpIpServerC()
{
    stop();
}

ResultCodeT NetTcpIpServerC::configure(const std::string& address, std::uint16_t port)
{
    HAL::SocketAddressT parsed;
    if (!HAL::ParseAddress(address, port, parsed)) return RC_INVALID_ARGUMENT;
    const std::lock_guard<std::mutex> guard(m_lifeLock);
    m_address = parsed;
    return RC_OK;
}

ResultCodeT NetTcpIpServerC::start()
{
    const boost::this_thread::disable_interruption undisturbed;
    const std::lock_guard<std::mutex> guard(m_lifeLock);
    if (m_bServing) return RC_OK;
    if (m_address.length == 0) return RC_OBJECT_MISSING;
    if (m_waker.getSocket() == HAL::NO_SOCKET) { // its thread would not hear of anything
        m_log(START_FAILED, "no sockets to wake it by");
        return RC_FAILED;
    }
    try {
        m_task->waitForStop(-1); // one that has ended by itself may still be about to go
        return startServing();
    } catch (const std::exception& error) {
        m_log(START_FAILED, error.what());
        m_bServing = false;
        endConnections();
        return RC_FAILED;
    }
}

ResultCodeT NetTcpIpServerC::startServing()
{
    if (m_listener.listen(m_address) != RC_OK) {
        m_log(LISTEN_FAILED, HAL::AddressText(m_address), HAL::PortOf(m_address),
              HAL::SocketErrorText(m_listener.getLastError()));
        return RC_FAILED;
    }
    const std::uint16_t port = m_listener.getPort();
    m_port = port;
    m_bStop = false;
    m_bServing = true;
    m_task->start();
    m_log(LISTENING, HAL::AddressText(m_address), port);
    return RC_OK;
}

void NetTcpIpServerC::stop()
{
    const boost::this_thread::disable_interruption undisturbed;
    const std::lock_guard<std::mutex> guard(m_lifeLock);
    {
        const std::lock_guard<std::mutex> lists(m_lock);
        m_bStop = true;
    }
    m_stopped.notify_all();
    m_waker.wake();
    m_task->waitForStop(-1);
    endConnections();
}

void NetTcpIpServerC::endConnections()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_clients.clear();
    m_listener.close();
    m_stream.release(m_stream.getEnd());
    m_port = 0;
}

ResultCodeT NetTcpIpServerC::send(const void* bytes, std::size_t count)
{
    if (bytes == nullptr || count == 0) return RC_INVALID_ARGUMENT;
    bool bDropped = false;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_clients.empty()) return RC_OK;
        const std::uint64_t end = m_stream.getEnd() + count;
        bool bKept = false;
        for (const std::unique_ptr<ClientT>& client : m_clients) {
            if (client->nBehind != 0) continue;
            const std::uint64_t nBehind = end - client->position;
            if (nBehind <= m_settings.maxBufferedBytes) {
                bKept = true;
                continue;
            }
            client->nBehind = nBehind;
            bDropped = true;
        }
        releaseSent(); // the server's thread may be busy for long
        if (bKept) m_stream.append(static_cast<const char*>(bytes), count);
    }
    // One wake is enough until the thread has looked. Pairs with the exchange in waitForWork.
    if (!m_bWoken.exchange(true)) m_waker.wake();
    return bDropped ? RC_CLOSED : RC_OK;
}

void NetTcpIpServerC::releaseSent()
{
    std::uint64_t slowest = m_stream.getEnd();
    for (const std::unique_ptr<ClientT>& client : m_clients)
        if (client->nBehind == 0) slowest = std::min(slowest, client->position);
    m_stream.release(slowest);
}

std::size_t NetTcpIpServerC::getClientCount() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_clients.size();
}

std::size_t NetTcpIpServerC::getBufferedBytes() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return static_cast<std::size_t>(m_stream.getEnd() - m_stream.getBegin());
}

// The thread.

void NetTcpIpServerC::serve()
{
    // Whatever ends the thread: no client waits for a server that is not there any more.
    struct EndC
    {
        NetTcpIpServerC& server;
        ~EndC()
        {
            server.m_bServing = false; // first: a start() in between waits for the thread, and begins again
            server.endConnections();
        }
    } const end{*this};
    while (waitForWork()) {
        for (std::size_t n = 0; n < m_clients.size(); ++n)
            serveClient(*m_clients[n], m_items[n + 2]);
        if (m_items[0].canRead) acceptClients();
        removeGone();
    }
}

// The items: the listener, the waker, and the clients in their order.
bool NetTcpIpServerC::waitForWork()
{
    m_items.resize(2 + m_clients.size());
    m_items[0] = {m_bAcceptLater ? HAL::NO_SOCKET : m_listener.getDescriptor(), true};
    m_items[1] = {m_waker.getSocket(), true};
    bool bMore = false; // somebody has not been given all, though the system would take it
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        for (std::size_t n = 0; n < m_clients.size(); ++n) {
            const ClientT& client = *m_clients[n];
            m_items[n + 2] = {client.socket.getDescriptor(), true, client.bFull};
            bMore = bMore || client.nBehind != 0 || (!client.bFull && client.position != m_stream.getEnd());
        }
    }
    std::size_t nReady = 0;
    const int waitMs = bMore ? 0 : m_bAcceptLater ? ACCEPT_LATER_MS : HAL::POLL_WITHOUT_LIMIT;
    m_bAcceptLater = false;
    const int error = m_api.poll(m_items.data(), m_items.size(), waitMs, nReady);
    if (error != 0) pauseAfter(error);
    m_bWaitFails = error != 0;
    if (m_items[1].canRead) m_waker.drain();
    m_bWoken.exchange(false);
    return !m_bStop;
}

// The next wait would fail as quickly, and the thread would have a processor to itself.
void NetTcpIpServerC::pauseAfter(int error)
{
    if (!m_bWaitFails) m_log(WAIT_FAILED, HAL::SocketErrorText(error));
    std::unique_lock<std::mutex> guard(m_lock);
    m_stopped.wait_for(guard, WAIT_AGAIN, [this] { return m_bStop.load(); });
}

void NetTcpIpServerC::acceptClients()
{
    for (;;) {
        auto client = std::make_unique<ClientT>(m_api);
        const ResultCodeT rc = m_listener.accept(client->socket, 0);
        if (rc == RC_TIMED_OUT) return;
        if (rc != RC_OK) {
            m_log(ACCEPT_FAILED, HAL::SocketErrorText(m_listener.getLastError()));
            if (rc == RC_CLOSED) continue; // this one has gone again; the next is another matter
            // Without descriptors to spare the listener would stay ready; others may give some back.
            m_bAcceptLater = true;
            return;
        }
        if (m_clients.size() >= m_settings.nMaxClients) {
            m_log(CLIENT_REFUSED, static_cast<std::uint32_t>(m_clients.size()));
            continue;
        }
        client->number = ++m_nAccepted;
        prepare(*client);
        m_log(CLIENT_CAME, client->number);
        const std::lock_guard<std::mutex> guard(m_lock);
        client->position = m_stream.getEnd();
        m_clients.push_back(std::move(client));
    }
}

// Without these a client is served all the same, only not as well.
void NetTcpIpServerC::prepare(ClientT& client)
{
    SocketC& socket = client.socket;
    const auto check = [&](ResultCodeT rc, const char* option) {
        if (rc == RC_OK) return;
        m_log(OPTION_FAILED, option, client.number, HAL::SocketErrorText(socket.getLastError()));
    };
    check(socket.setNoDelay(), "TCP_NODELAY");
    check(socket.setKeepAlive(KEEP_ALIVE_IDLE_S, KEEP_ALIVE_INTERVAL_S, KEEP_ALIVE_PROBES), "SO_KEEPALIVE");
    check(socket.setSendLimit(SEND_LIMIT_S), "TCP_USER_TIMEOUT");
}

void NetTcpIpServerC::serveClient(ClientT& client, const HAL::PollItemT& answer)
{
    if (answer.canWrite || answer.failed) client.bFull = false;
    const bool bRead = answer.canRead || answer.failed;
    const bool bAlive = (!bRead || readFrom(client)) && (client.bFull || sendTo(client));
    if (!bAlive) client.bGone = true;
}

bool NetTcpIpServerC::readFrom(ClientT& client)
{
    std::size_t count = 0;
    const ResultCodeT rc = client.socket.receive(m_received.data(), m_received.size(), count);
    if (rc == RC_TIMED_OUT) return true;
    if (rc != RC_OK) return false;
    if (!m_settings.onData) return true;
    try {
        m_settings.onData(client.number, m_received.data(), count);
    } catch (const boost::thread_interrupted&) {
        throw;
    } catch (const std::exception& error) {
        m_log(DATA_THREW, error.what());
    } catch (...) {
        m_log(DATA_THREW, "unknown");
    }
    return true;
}

bool NetTcpIpServerC::sendTo(ClientT& client)
{
    for (std::size_t nTurn = 0; nTurn < MAX_TURN_BYTES;) {
        StreamBufferC::PartT part;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            if (client.nBehind != 0) return false;
            part = m_stream.getPart(client.position);
        }
        if (part.count == 0) return true;
        std::size_t nSent = 0;
        const ResultCodeT rc = client.socket.send(part.bytes, part.count, nSent);
        client.bFull = rc == RC_TIMED_OUT;
        if (client.bFull) return true;
        if (rc != RC_OK) return false;
        nTurn += nSent;
        const std::lock_guard<std::mutex> guard(m_lock);
        client.position += nSent;
    }
    return true;
}

void NetTcpIpServerC::removeGone()
{
    std::vector<std::unique_ptr<ClientT>> gone;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        for (std::unique_ptr<ClientT>& client : m_clients)
            if (client->bGone || client->nBehind != 0) gone.push_back(std::move(client));
        if (!gone.empty()) std::erase(m_clients, nullptr);
        releaseSent();
    }
    for (const std::unique_ptr<ClientT>& client : gone) {
        if (client->nBehind == 0) {
            m_log(CLIENT_GONE, client->number);
            continue;
        }
        ++m_nDropped;
        m_log(CLIENT_DROPPED, client->number, static_cast<std::uint32_t>(client->nBehind));
        // What the system still keeps for it goes too.
        HAL::SetResetOnClose(client->socket.getDescriptor());
    }
}

} // namespace BSS::NET
