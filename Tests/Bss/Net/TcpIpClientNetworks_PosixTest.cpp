// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The TCP/IP client and a server in two networks with a cable between them, which is pulled.
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "Support/JoinedNetworks_Posix.h"
#include "Support/OwnNetwork_Posix.h"
#include "TcpIpClientFixture.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <ostream>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;
using Support::JoinedNetworks;

namespace {

/// A server of the far network, which answers whatever it is sent with one byte.
class FarServerC
{
public:
    explicit FarServerC(const JoinedNetworks& networks) : m_server(Settings())
    {
        EXPECT_EQ(m_server.configure(JoinedNetworks::FAR_ADDRESS, 0), RC_OK);
        networks.far([this] { EXPECT_EQ(m_server.start(), RC_OK); });
    }
    std::uint16_t port() const { return m_server.getPort(); }

    std::atomic<std::size_t> nReceived{0};

private:
    NetTcpIpServerSettingsT Settings()
    {
        NetTcpIpServerSettingsT settings;
        settings.onData = [this](std::uint32_t, const std::uint8_t*, std::size_t count) {
            nReceived += count;
            m_server.send("y", 1);
        };
        return settings;
    }

    NetTcpIpServerC m_server;
};

class TcpIpClientNetworksDeathTest : public TcpIpClientFixtureC
{
protected:
    TcpIpClientNetworksDeathTest()
    {
        config.m_wszIpDnsName = L"10.77.0.2";
        config.m_eAutoConnect = AutoConnect::WITH_TIMER;
        settings.reconnect.intervalMs = 50;
        settings.keepAliveIdleSeconds = 0;
    }

    using ScenarioT = std::function<void(const JoinedNetworks&)>;

    void InTwoNetworks(const ScenarioT& scenario)
    {
        Support::ExpectInJoinedNetworks([&](JoinedNetworks& networks) {
            scenario(networks);
            End();
            EXPECT_TRUE(reports.Reports().empty());
        });
    }

    bool Writes(const char* text)
    {
        std::size_t nWritten = 0;
        return Client().write(text, 1, nWritten) == RC_OK;
    }

    /// Client and server answer each other for as long as there is a way.
    void Converse()
    {
        watcher.onEvent = [this](BIO::PortEvent event) {
            if (event == BIO::ONLINE) Writes("x");
        };
        watcher.onBytes = [this] { Writes("x"); };
    }
    bool Hears()
    {
        const std::size_t nHeard = watcher.Data().size();
        return Eventually([&] { return watcher.Data().size() > nHeard + 100; });
    }
    bool Loses(std::size_t nBefore = 0)
    {
        return Eventually([&] { return watcher.Count(BIO::OFFLINE) > nBefore; });
    }
};

TEST_F(TcpIpClientNetworksDeathTest, BytesGoBothWaysFromOneNetworkToTheOther)
{
    InTwoNetworks([this](const JoinedNetworks& networks) {
        const FarServerC server(networks);
        Start(server.port());
        ASSERT_TRUE(Reaches(ONLINE));
        ASSERT_TRUE(Writes("x"));
        EXPECT_TRUE(Eventually([&] { return server.nReceived == 1; }));
        EXPECT_TRUE(Eventually([&] { return watcher.Data() == "y"; }));
        // They are two: the server is not to be found in this one.
        const HeldSocketC here = Open();
        EXPECT_NE(HAL::ConnectSocket(here, Address("127.0.0.1", server.port())), 0);
    });
}

TEST_F(TcpIpClientNetworksDeathTest, ConnectsOverIpv6AlsoWhereTheMachineHasNone)
{
    config.m_wszIpDnsName = L"::1";
    Support::ExpectInOwnNetwork([this] {
        if (LoopbackAddresses().size() < 2) return Support::NOT_PERMITTED;
        ListenerC listener("::1");
        Start(listener.port());
        const HeldSocketC peer = listener.accept();
        EXPECT_TRUE(Reaches(ONLINE));
        End();
        return 0;
    });
}

/// Which end of the cable is switched off, and what notices.
struct CutT
{
    const char* name;
    bool bServersEnd;
    bool bByKeepAlive;

    friend void PrintTo(const CutT& cut, std::ostream* out) { *out << cut.name; }
};

class TcpIpClientCableDeathTest : public TcpIpClientNetworksDeathTest,
                                  public testing::WithParamInterface<CutT>
{
protected:
    static bool Switch(const JoinedNetworks& networks, bool bUp)
    {
        return GetParam().bServersEnd ? networks.switchFar(bUp) : networks.switchNear(bUp);
    }
};

TEST_P(TcpIpClientCableDeathTest, InterfaceThatGoesDownIsNoticedAndTheClientIsBackWhenItIsUp)
{
    if (GetParam().bByKeepAlive) {
        settings.keepAliveIdleSeconds = 1;
        settings.keepAliveIntervalSeconds = 1;
        settings.nKeepAliveProbes = 1;
    } else {
        config.m_ulMaxReceiveTimeoutMs = 1500;
        Converse();
    }
    InTwoNetworks([this](const JoinedNetworks& networks) {
        const FarServerC server(networks);
        Start(server.port());
        ASSERT_TRUE(Reaches(ONLINE));
        EXPECT_TRUE(GetParam().bByKeepAlive || Hears());
        EXPECT_EQ(watcher.Count(BIO::OFFLINE), 0U);
        ASSERT_TRUE(Switch(networks, false));
        ASSERT_TRUE(Loses());
        EXPECT_EQ(watcher.Told(BIO::OFFLINE, BIO::PortReason::RECEIVE_TIMEOUT), !GetParam().bByKeepAlive);
        ASSERT_TRUE(Switch(networks, true));
        ASSERT_TRUE(Eventually([this] { return watcher.nOnline == 2; }));
        EXPECT_TRUE(Writes("x"));
        EXPECT_TRUE(GetParam().bByKeepAlive || Hears());
    });
}

INSTANTIATE_TEST_SUITE_P(Cuts, TcpIpClientCableDeathTest,
                         testing::Values(CutT{"ServersByReceiveLimit", true, false},
                                         CutT{"ServersByKeepAlive", true, true},
                                         CutT{"ClientsByReceiveLimit", false, false},
                                         CutT{"ClientsByKeepAlive", false, true}),
                         [](const auto& which) { return which.param.name; });

TEST_F(TcpIpClientNetworksDeathTest, LossOfTheCableWhileBytesAreOnTheirWayIsNoticedInTheKeepAlivesTime)
{
    settings.keepAliveIdleSeconds = 1;
    settings.keepAliveIntervalSeconds = 1;
    settings.nKeepAliveProbes = 1;
    InTwoNetworks([this](const JoinedNetworks& networks) {
        const FarServerC server(networks);
        Start(server.port());
        ASSERT_TRUE(Reaches(ONLINE));
        ASSERT_TRUE(networks.switchFar(false));
        EXPECT_TRUE(Writes("x")); // to nobody
        EXPECT_TRUE(Loses());
    });
}

// A machine that is not there does not refuse. Its neighbours ask for it for longer than an attempt takes.
TEST_F(TcpIpClientNetworksDeathTest, HostThatIsNotThereEndsTheAttemptAfterASecond)
{
    config.m_wszIpDnsName = L"10.77.0.3";
    config.m_eAutoConnect = AutoConnect::OFF;
    InTwoNetworks([this](const JoinedNetworks&) {
        const auto begin = std::chrono::steady_clock::now();
        Start(4711);
        ASSERT_TRUE(Logs("5 NetTcpIpClientC::waitForConnection - connect timeout on "));
        const auto passed = std::chrono::steady_clock::now() - begin;
        EXPECT_GT(passed, std::chrono::milliseconds(999)); // the client counts whole milliseconds
        EXPECT_LT(passed, std::chrono::milliseconds(5000));
        EXPECT_TRUE(log->Has("3 BSS::NET::NetTcpIpClientC::waitForConnection - timeout: 1000\n"));
        EXPECT_EQ(Client().getState(), SETTING_UP);
        EXPECT_EQ(watcher.nOnline, 0U);
    });
}

TEST_F(TcpIpClientNetworksDeathTest, ServerWithoutARouteEndsTheAttemptAtOnceAndIsFoundWhenThereIsOne)
{
    InTwoNetworks([this](const JoinedNetworks& networks) {
        const FarServerC server(networks);
        ASSERT_TRUE(networks.removeRoute());
        Start(server.port());
        ASSERT_TRUE(Logs("5 NetTcpIpClientC::setupConnection - connect error on "));
        EXPECT_TRUE(log->Beginning("5 NetTcpIpClientC::setupConnection - connect error on ")
                        .ends_with(" (err " + HAL::SocketErrorText(ENETUNREACH) + ")\n"));
        EXPECT_EQ(watcher.nOnline, 0U);
        ASSERT_TRUE(networks.addRoute());
        EXPECT_TRUE(Reaches(ONLINE));
        EXPECT_TRUE(log->Beginning("5 NetTcpIpClientC::waitForConnection").empty());
    });
}

TEST_F(TcpIpClientNetworksDeathTest, RouteThatIsLostEndsTheConnectionByTheReceiveLimitUntilItIsBack)
{
    config.m_ulMaxReceiveTimeoutMs = 1500;
    Converse();
    InTwoNetworks([this](const JoinedNetworks& networks) {
        const FarServerC server(networks);
        Start(server.port());
        ASSERT_TRUE(Hears());
        ASSERT_TRUE(networks.removeRoute());
        ASSERT_TRUE(
            Eventually([this] { return watcher.Told(BIO::OFFLINE, BIO::PortReason::RECEIVE_TIMEOUT); }));
        ASSERT_TRUE(Logs("5 NetTcpIpClientC::setupConnection - connect error on "));
        ASSERT_TRUE(networks.addRoute());
        EXPECT_TRUE(Eventually([this] { return watcher.nOnline == 2; }));
        EXPECT_TRUE(Hears());
    });
}

} // namespace
