// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Connections that are cut off without a word, as when somebody pulls the cable.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/OwnNetwork_Posix.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class LastEventC final : public BIO::PortReaderI
{
public:
    void onData(const std::uint8_t*, std::size_t count) override { nBytes += count; }
    void onPortEvent(BIO::PortEvent event, BIO::PortReason reason) override
    {
        if (event == BIO::ONLINE) ++nOnline;
        if (event == BIO::OFFLINE && nOnline > 0) ++nOffline;
        if (event == BIO::OFFLINE && reason == BIO::PortReason::RECEIVE_TIMEOUT) ++nTimedOut;
    }
    std::atomic<int> nOnline{0};
    std::atomic<int> nOffline{0};
    std::atomic<int> nTimedOut{0};
    std::atomic<std::size_t> nBytes{0};
};

/// A client of a server in this process, on line.
class ConnectedC
{
public:
    explicit ConnectedC(std::uint32_t receiveLimitMs, int keepAliveIdleSeconds)
        : m_client(Settings(keepAliveIdleSeconds))
    {
        NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = m_listener.port();
        config.m_eAutoConnect = AutoConnect::WITH_TIMER;
        config.m_ulMaxReceiveTimeoutMs = receiveLimitMs;
        if (m_client.setPortConfig(config) != RC_OK || m_client.attachReader(events) != RC_OK) return;
        m_client.start();
        peer = m_listener.accept();
        bOnline = Support::Eventually([&] { return events.nOnline == 1; });
    }

    bool Writes()
    {
        std::size_t nWritten = 0;
        return m_client.write("x", 1, nWritten) == RC_OK;
    }

    LastEventC events; ///< outlives the client
    HeldSocketC peer;
    bool bOnline = false;

private:
    static NetTcpIpClientSettingsT Settings(int keepAliveIdleSeconds)
    {
        NetTcpIpClientSettingsT settings;
        settings.reconnect.intervalMs = 1;
        settings.keepAliveIdleSeconds = keepAliveIdleSeconds;
        settings.keepAliveIntervalSeconds = 1;
        settings.nKeepAliveProbes = 1;
        return settings;
    }

    ListenerC m_listener;
    NetTcpIpClientC m_client;
};

int LoseTheInterfaceAndGetItBack()
{
    ConnectedC connected(1500, 0); // longer than a thread waits for its turn on a busy machine
    LastEventC& events = connected.events;
    if (!connected.bOnline) return 3;
    // The server keeps talking, so that the silence is the interface's.
    HAL::SetNonBlocking(connected.peer, true);
    std::atomic<bool> bTalk{true};
    std::thread talking([&] {
        while (bTalk) {
            HAL::SendBytes(connected.peer, "x", 1);
            std::this_thread::yield();
        }
    });
    const bool bTalked = Support::Eventually([&] { return events.nBytes > 1000; }) && events.nTimedOut == 0;
    const bool bDown = Support::SwitchInterface(false);
    const bool bNoticed = Support::Eventually([&] { return events.nTimedOut >= 1; });
    bTalk = false;
    talking.join();
    if (!bTalked || !bDown) return 4;
    if (!bNoticed) return 5;
    if (!Support::SwitchInterface(true)) return 6;
    return Support::Eventually([&] { return events.nOnline >= 2; }) ? 0 : 7;
}

TEST(TcpIpClientCutOffDeathTest, InterfaceThatGoesDownWithoutAWordIsNoticedAndItsReturnToo)
{
    Support::ExpectInOwnNetwork(&LoseTheInterfaceAndGetItBack);
}

int LoseTheInterfaceWhileSilent()
{
    ConnectedC connected(0, 1);
    if (!connected.bOnline) return 3;
    if (!Support::SwitchInterface(false)) return 4;
    if (!Support::Eventually([&] { return connected.events.nOffline >= 1; })) return 5;
    return connected.events.nTimedOut == 0 ? 0 : 6;
}

TEST(TcpIpClientCutOffDeathTest, KeepAliveAloneNoticesTheLossOfASilentConnection)
{
    Support::ExpectInOwnNetwork(&LoseTheInterfaceWhileSilent);
}

int LoseTheInterfaceWhileWriting()
{
    ConnectedC connected(0, 1);
    if (!connected.bOnline || !connected.Writes()) return 3;
    if (!Support::SwitchInterface(false)) return 4;
    connected.Writes(); // stays on its way, and no keep-alive is sent meanwhile
    return Support::Eventually([&] { return connected.events.nOffline >= 1; }) ? 0 : 5;
}

TEST(TcpIpClientCutOffDeathTest, LossIsNoticedAlsoWhileBytesAreOnTheirWay)
{
    Support::ExpectInOwnNetwork(&LoseTheInterfaceWhileWriting);
}

// The system asks a full server again and again whether there is room.
TEST(TcpIpClientCutOffTest, ServerThatIsFullButAnswersIsNotTakenForCutOff)
{
    const SocketsStartedC started;
    const PairT pair = Pair();
    ASSERT_EQ(HAL::SetNonBlocking(pair.client, true), 0);
    const std::vector<char> much(std::size_t{1} << 20);
    while (HAL::SendBytes(pair.client, much.data(), much.size()).error == 0) {
    }
    // Longer than the system takes to ask for the second time.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    bool bUnanswered = false;
    while (!bUnanswered && std::chrono::steady_clock::now() < end)
        bUnanswered = CanRead(pair.client, 20) || HAL::IsUnanswered(pair.client);
    EXPECT_FALSE(bUnanswered);
}

} // namespace
