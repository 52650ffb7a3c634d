// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a client that never reads costs the others of the log's server. Lines go through the log consumer to a
// server with its usual limit. They are logged as fast as the slowest of the reading clients takes them, so
// that none of those falls behind; the silent one does, and has to be dropped, in every round.
#include "Bench_Net.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpServer.h"
#include "Bss/Bss_Net/BSS_NET_SocketClient.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace BenchNet;

namespace {

constexpr std::size_t READING_CLIENTS = 199;
constexpr std::size_t TOTAL_BYTES = std::size_t{24} << 20; // the systems of both sides keep some megabytes
constexpr std::size_t AHEAD_BYTES = std::size_t{1} << 18;  // far from the server's limit

/// The log's server at any port, which counts what it is given.
class CountingServerC final : public DBG::DbgLogServerI
{
public:
    void configure(std::uint16_t) override { m_server.configure(0); }
    ResultCodeT start() override { return m_server.start(); }
    bool send(std::string_view lines) override
    {
        nBytes += lines.size();
        return m_server.send(lines);
    }
    NetTcpIpServerC& network() { return m_server.getServer(); }

    std::size_t nBytes = 0; // of the logging thread

private:
    DBG::DbgLogTcpIpServerC m_server{"127.0.0.1"};
};

/// Clients that read all that comes, on a thread of their own.
class ReadersC
{
public:
    explicit ReadersC(std::vector<SocketClientC>& clients) : m_nReceived(clients.size())
    {
        for (const SocketClientC& client : clients)
            m_items.push_back({client.getDescriptor(), true});
        m_thread = std::thread([this] { read(); });
    }

    /// What the slowest of them has.
    std::size_t slowest() const { return m_nSlowest.load(std::memory_order_acquire); }
    void waitFor(std::size_t nBytes) const
    {
        for (std::size_t got = slowest(); got < nBytes; got = slowest())
            m_nSlowest.wait(got);
    }

    /// Once all have this much.
    void end(std::size_t nBytes)
    {
        waitFor(nBytes);
        m_bEnd = true;
        m_thread.join();
    }

private:
    void read()
    {
        std::vector<char> bytes(BUFFER_BYTES);
        while (!m_bEnd) {
            std::size_t nReady = 0;
            HAL::PollSockets(m_items.data(), m_items.size(), 1, nReady);
            for (std::size_t n = 0; n < m_items.size(); ++n) {
                if (!m_items[n].canRead) continue;
                const HAL::TransferT got = HAL::ReceiveBytes(m_items[n].socket, bytes.data(), bytes.size());
                Check(got.error == 0 && got.count > 0, "reading");
                m_nReceived[n] += got.count;
            }
            m_nSlowest.store(*std::min_element(m_nReceived.begin(), m_nReceived.end()),
                             std::memory_order_release);
            m_nSlowest.notify_one();
        }
    }

    std::vector<HAL::PollItemT> m_items;
    std::vector<std::size_t> m_nReceived;
    std::atomic<std::size_t> m_nSlowest{0};
    std::atomic<bool> m_bEnd{false};
    std::thread m_thread;
};

/// Seconds until the reading clients have all lines.
double LogClients(bool bSilentOne)
{
    auto made = std::make_unique<CountingServerC>();
    CountingServerC& server = *made;
    DBG::DbgLogTcpIpConsumerC consumer("TcpIp", std::move(made));
    Check(consumer.start() == RC_OK, "server");
    HAL::SocketAddressT address;
    Check(HAL::ParseAddress("127.0.0.1", server.network().getPort(), address), "address");
    SocketClientC silent;
    if (bSilentOne) Check(silent.connect(address, LONG_MS) == RC_OK, "connect");
    std::vector<SocketClientC> clients(READING_CLIENTS);
    for (SocketClientC& client : clients)
        Check(client.connect(address, LONG_MS) == RC_OK, "connect");
    while (server.network().getClientCount() != READING_CLIENTS + (bSilentOne ? 1 : 0))
        std::this_thread::yield();
    const std::string words(80, 'w');
    ReadersC readers(clients);
    const double seconds = Seconds([&] {
        while (server.nBytes < TOTAL_BYTES) {
            if (server.nBytes > AHEAD_BYTES) readers.waitFor(server.nBytes - AHEAD_BYTES);
            consumer.Log(DBG::LEVEL_INFO, "%s", words);
        }
        readers.end(server.nBytes);
    });
    Check(server.network().getDroppedCount() == (bSilentOne ? 1 : 0), "dropping the silent client alone");
    return seconds;
}

} // namespace

bool BenchNet::RunLogClients(int nRounds)
{
    // By reading client.
    return Compare(
        {"log clients", "MB/s", TOTAL_BYTES / 1e6, true, 0.9, 1.1}, nRounds, [] { return LogClients(false); },
        [] { return LogClients(true); });
}
