// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the network floor costs, as ratios of one run:
//   - bytes per second through a TCP/IP client, in both directions, against a plain blocking send/recv pair
//   with
//     the same buffer sizes;
//   - the round trip of 64 bytes against the same with plain calls; the client answers from its reader;
//   - what one client that never reads costs the 199 others of a server.
// Rounds of both sides alternate; the median of the rounds counts.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;

namespace {

constexpr std::size_t BUFFER_BYTES = std::size_t{1} << 16;
constexpr std::size_t TOTAL_BYTES = std::size_t{1} << 29;
constexpr std::size_t MESSAGE_BYTES = 64;
constexpr int ROUND_TRIPS = 20000;
constexpr int ROUNDS = 9;
constexpr int LONG_MS = 60000;

using ClockT = std::chrono::steady_clock;

void Check(bool bOk, const char* what)
{
    if (bOk) return;
    std::fprintf(stderr, "bench_net: %s failed\n", what);
    std::exit(1);
}

double Seconds(const std::function<void()>& work)
{
    const auto begin = ClockT::now();
    work();
    return std::chrono::duration<double>(ClockT::now() - begin).count();
}

/// A listener and one accepted, blocking connection.
struct PeerT
{
    SocketServerC listener;
    SocketClientC socket;

    PeerT()
    {
        HAL::SocketAddressT address;
        Check(HAL::ParseAddress("127.0.0.1", 0, address) && listener.listen(address) == RC_OK, "listen");
    }
    void accept()
    {
        Check(listener.accept(socket, LONG_MS) == RC_OK, "accept");
        HAL::SetNonBlocking(socket.getDescriptor(), false);
        socket.setNoDelay();
    }
};

void SendPlain(HAL::SocketT socket, std::size_t total)
{
    const std::vector<char> bytes(BUFFER_BYTES, 'b');
    for (std::size_t nSent = 0; nSent < total;) {
        const HAL::TransferT sent =
            HAL::SendBytes(socket, bytes.data(), std::min(bytes.size(), total - nSent));
        Check(sent.error == 0, "send");
        nSent += sent.count;
    }
}

void ReceivePlain(HAL::SocketT socket, std::size_t total)
{
    std::vector<char> bytes(BUFFER_BYTES);
    for (std::size_t nGot = 0; nGot < total;) {
        const HAL::TransferT got =
            HAL::ReceiveBytes(socket, bytes.data(), std::min(bytes.size(), total - nGot));
        Check(got.error == 0 && got.count > 0, "recv");
        nGot += got.count;
    }
}

/// A plain blocking client of a peer.
struct PlainT
{
    PeerT peer;
    SocketClientC client;

    PlainT()
    {
        HAL::SocketAddressT address;
        HAL::ParseAddress("127.0.0.1", peer.listener.getPort(), address);
        Check(client.connect(address, LONG_MS) == RC_OK, "connect");
        HAL::SetNonBlocking(client.getDescriptor(), false);
        client.setNoDelay();
        peer.accept();
    }
};

/// The client of this floor at a peer, and its reader.
class PortT final : public BIO::PortReaderI
{
public:
    explicit PortT(std::size_t bufferBytes = BUFFER_BYTES) : m_client(Settings(bufferBytes))
    {
        NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = peer.listener.getPort();
        Check(m_client.setPortConfig(config) == RC_OK && m_client.attachReader(*this) == RC_OK, "client");
        m_client.start();
        peer.accept();
        while (m_client.getState() != ONLINE)
            std::this_thread::yield();
    }
    void onPortEvent(BIO::PortEvent, BIO::PortReason) override {}
    void onData(const std::uint8_t* bytes, std::size_t count) override
    {
        if (bAnswer) {
            std::size_t nWritten = 0;
            Check(m_client.write(bytes, count, nWritten) == RC_OK, "answer");
        }
        nReceived.fetch_add(count);
        nReceived.notify_one();
    }
    void waitFor(std::size_t total)
    {
        for (std::size_t got = nReceived; got < total; got = nReceived)
            nReceived.wait(got);
    }
    void write(std::size_t total)
    {
        const std::vector<char> bytes(BUFFER_BYTES, 'b');
        std::size_t nWritten = 0;
        for (std::size_t nSent = 0; nSent < total; nSent += nWritten)
            Check(m_client.write(bytes.data(), std::min(bytes.size(), total - nSent), nWritten) == RC_OK,
                  "write");
    }

    PeerT peer;
    std::atomic<std::size_t> nReceived{0};
    std::atomic<bool> bAnswer{false};

private:
    static NetTcpIpClientSettingsT Settings(std::size_t bufferBytes)
    {
        NetTcpIpClientSettingsT settings;
        settings.receiveBufferBytes = bufferBytes;
        return settings;
    }
    NetTcpIpClientC m_client;
};

double PlainThroughput()
{
    PlainT plain;
    return Seconds([&] {
        std::thread sending([&] { SendPlain(plain.client.getDescriptor(), TOTAL_BYTES); });
        ReceivePlain(plain.peer.socket.getDescriptor(), TOTAL_BYTES);
        sending.join();
    });
}

double PortReceives()
{
    PortT port;
    return Seconds([&] {
        std::thread sending([&] { SendPlain(port.peer.socket.getDescriptor(), TOTAL_BYTES); });
        port.waitFor(TOTAL_BYTES);
        sending.join();
    });
}

double PortSends()
{
    PortT port;
    return Seconds([&] {
        std::thread sending([&] { port.write(TOTAL_BYTES); });
        ReceivePlain(port.peer.socket.getDescriptor(), TOTAL_BYTES);
        sending.join();
    });
}

void Ping(HAL::SocketT socket)
{
    const std::vector<char> bytes(MESSAGE_BYTES, 'p');
    for (int n = 0; n < ROUND_TRIPS; ++n) {
        Check(HAL::SendBytes(socket, bytes.data(), bytes.size()).count == bytes.size(), "ping");
        ReceivePlain(socket, MESSAGE_BYTES);
    }
}

double PlainRoundTrips()
{
    PlainT plain;
    std::thread answering([&] {
        std::vector<char> bytes(MESSAGE_BYTES);
        for (int n = 0; n < ROUND_TRIPS; ++n) {
            ReceivePlain(plain.client.getDescriptor(), MESSAGE_BYTES);
            HAL::SendBytes(plain.client.getDescriptor(), bytes.data(), bytes.size());
        }
    });
    const double seconds = Seconds([&] { Ping(plain.peer.socket.getDescriptor()); });
    answering.join();
    return seconds;
}

double PortRoundTrips()
{
    PortT port;
    port.bAnswer = true;
    return Seconds([&] { Ping(port.peer.socket.getDescriptor()); });
}

/// Seconds until all reading clients have got everything; the first client reads only if it is told to.
double LogClients(bool bFirstReads)
{
    constexpr std::size_t CLIENTS = 200;
    constexpr std::size_t LINES = 20000;
    NetTcpIpServerSettingsT settings;
    settings.maxBufferedBytes = std::size_t{8} << 20;
    NetTcpIpServerC server(settings);
    Check(server.configure("127.0.0.1", 0) == RC_OK && server.start() == RC_OK, "server");
    HAL::SocketAddressT address;
    HAL::ParseAddress("127.0.0.1", server.getPort(), address);
    std::vector<SocketClientC> clients(CLIENTS);
    for (SocketClientC& client : clients)
        Check(client.connect(address, LONG_MS) == RC_OK, "connect");
    while (server.getClientCount() != CLIENTS)
        std::this_thread::yield();
    const std::string line(99, 'l');
    const std::size_t total = LINES * (line.size() + 1);
    const std::size_t nFirst = bFirstReads ? 0 : 1;
    return Seconds([&] {
        std::thread reading([&] {
            std::vector<HAL::PollItemT> items;
            std::vector<std::size_t> left(CLIENTS, total);
            for (std::size_t n = nFirst; n < CLIENTS; ++n)
                items.push_back({clients[n].getDescriptor(), true});
            std::vector<char> bytes(BUFFER_BYTES);
            for (std::size_t nOpen = items.size(); nOpen > 0;) {
                std::size_t nReady = 0;
                HAL::PollSockets(items.data(), items.size(), LONG_MS, nReady);
                Check(nReady > 0, "reading");
                for (std::size_t n = 0; n < items.size(); ++n) {
                    if (!items[n].canRead) continue;
                    const HAL::TransferT got = HAL::ReceiveBytes(items[n].socket, bytes.data(), bytes.size());
                    Check(got.error == 0 && got.count > 0, "reading");
                    left[n] -= got.count;
                    if (left[n] > 0) continue;
                    items[n].socket = HAL::NO_SOCKET;
                    items[n].canRead = false;
                    --nOpen;
                }
            }
        });
        for (std::size_t n = 0; n < LINES; ++n)
            server.send((line + "\n").data(), line.size() + 1);
        reading.join();
    });
}

using SideT = double (*)();

void Compare(const char* name, SideT plain, SideT ours, double perUnit, const char* unit,
             bool bHigherIsBetter)
{
    std::vector<double> ratios;
    std::vector<double> plainValues;
    std::vector<double> ourValues;
    for (int n = 0; n < ROUNDS; ++n) {
        const double first = plain();
        const double second = ours();
        plainValues.push_back(bHigherIsBetter ? perUnit / first : first / perUnit);
        ourValues.push_back(bHigherIsBetter ? perUnit / second : second / perUnit);
        ratios.push_back(ourValues.back() / plainValues.back());
    }
    for (std::vector<double>* values : {&ratios, &plainValues, &ourValues})
        std::sort(values->begin(), values->end());
    std::printf("%-28s plain %10.1f  ours %10.1f %-6s ratio %.3f  (%.3f to %.3f)\n", name,
                plainValues[ROUNDS / 2], ourValues[ROUNDS / 2], unit, ratios[ROUNDS / 2], ratios.front(),
                ratios.back());
    std::fflush(stdout);
}

} // namespace

int main()
{
    Check(HAL::StartSockets() == 0, "start");
    std::printf("buffers of %zu bytes, %zu MiB a round, %d rounds\n", BUFFER_BYTES, TOTAL_BYTES >> 20,
                ROUNDS);
    Compare("client receives", &PlainThroughput, &PortReceives, TOTAL_BYTES / 1e6, "MB/s", true);
    Compare("client sends", &PlainThroughput, &PortSends, TOTAL_BYTES / 1e6, "MB/s", true);
    Compare("round trip of 64 bytes", &PlainRoundTrips, &PortRoundTrips, ROUND_TRIPS / 1e6, "us", false);
    // Bytes that reach the 199 (or 200) clients that read.
    Compare(
        "200 clients, one is silent", [] { return LogClients(true) / 200; },
        [] { return LogClients(false) / 199; }, 2.0, "MB/s", true);
    HAL::StopSockets();
    return 0;
}
