// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client costs, as ratios of one run:
//   - bytes per second through it, in both directions, against a plain blocking send/recv pair with the same
//     buffer sizes;
//   - the round trip of 64 bytes against the same with plain calls; the client answers from its reader.
#include "Bench_Net.h"

#include "Bss/Bss_Net/BSS_NET_SocketServer.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace BenchNet;

namespace {

constexpr std::size_t TOTAL_BYTES = std::size_t{1} << 29;
constexpr std::size_t MESSAGE_BYTES = 64;
constexpr int ROUND_TRIPS = 20000;

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
        m_nReceived += count;
        if (m_nReceived == TOTAL_BYTES) m_all.set_value();
    }

    /// Until a whole round has come. Nobody is woken for its parts, which would be the benchmark's own cost.
    void waitForAll() { m_all.get_future().wait(); }
    void write(std::size_t total)
    {
        const std::vector<char> bytes(BUFFER_BYTES, 'b');
        std::size_t nWritten = 0;
        for (std::size_t nSent = 0; nSent < total; nSent += nWritten)
            Check(m_client.write(bytes.data(), std::min(bytes.size(), total - nSent), nWritten) == RC_OK,
                  "write");
    }

    PeerT peer;
    std::atomic<bool> bAnswer{false};

private:
    static NetTcpIpClientSettingsT Settings(std::size_t bufferBytes)
    {
        NetTcpIpClientSettingsT settings;
        settings.receiveBufferBytes = bufferBytes;
        return settings;
    }
    std::size_t m_nReceived = 0; // of the client's thread
    std::promise<void> m_all;
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
        port.waitForAll();
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

} // namespace

bool BenchNet::RunReceiving(int nRounds)
{
    return Compare({"client receives", "MB/s", TOTAL_BYTES / 1e6, true, 0.9}, nRounds, &PlainThroughput,
                   &PortReceives);
}

bool BenchNet::RunSending(int nRounds)
{
    return Compare({"client sends", "MB/s", TOTAL_BYTES / 1e6, true, 0.9}, nRounds, &PlainThroughput,
                   &PortSends);
}

bool BenchNet::RunRoundTrips(int nRounds)
{
    return Compare({"round trip of 64 bytes", "us", ROUND_TRIPS / 1e6, false, 0, 1.3}, nRounds,
                   &PlainRoundTrips, &PortRoundTrips);
}
