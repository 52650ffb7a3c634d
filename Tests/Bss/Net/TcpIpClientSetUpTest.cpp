// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How the TCP/IP client connects: what it asks the system for, what it logs, what ends an attempt.
#include "TcpIpClientOnFakes.h"

#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientSetUpTest : public TcpIpClientOnFakesC
{};

TEST_F(TcpIpClientSetUpTest, ConstructorTellsASocketLibraryThatDoesNotStart)
{
    sockets.startUpError = 10091;
    Client();
    EXPECT_TRUE(Logged("NetTcpIpClientC::NetTcpIpClientC: Error at WSAStartup(err 10091)\r\n"));
}

TEST_F(TcpIpClientSetUpTest, SocketLibraryIsStoppedWithTheClientIfItWasStarted)
{
    for (const int error : {0, 1}) {
        sockets.startUpError = error;
        const NetTcpIpClientC client(settings);
    }
    EXPECT_EQ(sockets.nCleanUps, 1);
}

TEST_F(TcpIpClientSetUpTest, SetPortConfigIsLogged)
{
    Client();
    EXPECT_TRUE(Logged("[NetTcpIpClientC]- setPortConfig 127.0.0.1:4711\n"));
}

TEST_F(TcpIpClientSetUpTest, ConfigurationThatCannotBeIsRefusedAndChangesNothing)
{
    std::vector<NetTcpIpClientCfgT> bad(4, config);
    bad[0].m_wszIpDnsName.clear();
    bad[1].m_wszIpDnsName.assign(256, L'a');
    bad[2].m_unServerPort = 0;
    bad[3].m_wszIpDnsName = std::wstring(L"a\0b", 3);
    for (const NetTcpIpClientCfgT& one : bad)
        EXPECT_EQ(Client().setPortConfig(one), RC_INVALID_ARGUMENT);
    EXPECT_EQ(Client().getPortConfig().m_wszIpDnsName, L"127.0.0.1");
}

TEST_F(TcpIpClientSetUpTest, ImmediateConnectionIsOnlineAndLogged)
{
    Connecting();
    EXPECT_EQ(reader.events, "2/0 3/0 ");
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - DomainAddress: 127.0.0.1\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - new socket descriptor: 17\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - connect on 17 completed immediately\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::onConnectionEstablished - connection established 127.0.0.1:4711\n"));
}

TEST_F(TcpIpClientSetUpTest, PendingConnectionIsWaitedFor)
{
    sockets.connectError = Pending();
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - connect started on 17 (err " +
                       HAL::SocketErrorText(Pending()) + ")...\n"));
    EXPECT_TRUE(Logged("BSS::NET::NetTcpIpClientC::waitForConnection - timeout: 1000\n"));
}

TEST_F(TcpIpClientSetUpTest, ServerThatNeverAnswersEndsTheAttemptAfterASecond)
{
    sockets.connectError = Pending();
    sockets.bRoom = false;
    const std::uint64_t before = sockets.nowMs;
    Connecting();
    EXPECT_EQ(sockets.nowMs - before, 1000U);
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_EQ(sockets.nOpen, 0);
    EXPECT_TRUE(Logged("NetTcpIpClientC::waitForConnection - connect timeout on 17\n"));
}

TEST_F(TcpIpClientSetUpTest, RefusalAtOnceIsLogged)
{
    sockets.connectError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::setupConnection - connect error on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientSetUpTest, RefusalOfAPendingConnectionIsLoggedWithItsNumber)
{
    sockets.connectError = Pending();
    sockets.pendingError = 17;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(
        LoggedError("NetTcpIpClientC::waitForConnection - error reported after connect on 17: 0x11 ", 17));
}

TEST_F(TcpIpClientSetUpTest, WaitThatFailsIsLogged)
{
    sockets.connectError = Pending();
    sockets.onPoll = [this] { sockets.pollError = SOME_ERROR; };
    Connecting();
    EXPECT_TRUE(LoggedError(
        "NetTcpIpClientC::waitForConnection - connect failed or exception in select on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientSetUpTest, SocketThatCannotBeMadeIsLogged)
{
    sockets.openError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::setupConnection - socket failed ", SOME_ERROR));
}

TEST_F(TcpIpClientSetUpTest, SocketThatStaysBlockingIsNotUsed)
{
    sockets.nonBlockingError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    const std::string line = log->Beginning("6 ").substr(2); // begins with a line of the source
    EXPECT_GT(std::stoi(line), 0);
    EXPECT_EQ(line.substr(4), " ioctl failed on 17 (err " + HAL::SocketErrorText(SOME_ERROR) + ")\n");
}

TEST_F(TcpIpClientSetUpTest, SocketWithDelayIsUsedAllTheSame)
{
    sockets.noDelayError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(LoggedError("BSS::NET::NetTcpIpClientC::setupConnection setsockopt TCP_NODELAY failed on 17 ",
                            SOME_ERROR));
}

TEST_F(TcpIpClientSetUpTest, KeepAliveIsAskedForAsItIsSet)
{
    settings.keepAliveIdleSeconds = 41;
    settings.keepAliveIntervalSeconds = 42;
    settings.nKeepAliveProbes = 43;
    Connecting();
    EXPECT_EQ(sockets.keepAliveIdle, 41);
    EXPECT_EQ(sockets.keepAliveInterval, 42);
    EXPECT_EQ(sockets.keepAliveProbes, 43);
}

TEST_F(TcpIpClientSetUpTest, KeepAliveThatIsSwitchedOffIsNotAskedFor)
{
    settings.keepAliveIdleSeconds = 0;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_EQ(sockets.keepAliveProbes, 0);
}

TEST_F(TcpIpClientSetUpTest, SocketWithoutKeepAliveIsUsedAllTheSame)
{
    sockets.keepAliveError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_EQ(log->Beginning("5 "),
              "5 BSS::NET::NetTcpIpClientC::setupConnection setsockopt SO_KEEPALIVE failed on 17 (err " +
                  HAL::SocketErrorText(SOME_ERROR) + ")\n");
}

TEST_F(TcpIpClientSetUpTest, NameIsResolved)
{
    config.m_wszIpDnsName = L"sensor.example";
    resolver->found.push_back(Address("192.0.2.7", 4711));
    Connecting();
    EXPECT_EQ(resolver->asked, "sensor.example");
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - calling gethostbyname\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - DomainName resolved: 192.0.2.7\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::onConnectionEstablished - connection established 192.0.2.7:4711\n"));
}

TEST_F(TcpIpClientSetUpTest, NameThatCannotBeResolvedIsLogged)
{
    config.m_wszIpDnsName = L"nowhere.example";
    resolver->error = 5;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - Resolving nowhere.example failed: (err " +
                       HAL::ResolveErrorText(5) + ")\n"));
}

TEST_F(TcpIpClientSetUpTest, ExceptionWithoutAnErrorIsNoConnection)
{
    sockets.connectError = Pending();
    sockets.bRoom = false;
    sockets.bException = true;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_EQ(Client().getLastResult(), RC_FAILED);
    EXPECT_TRUE(
        LoggedError("NetTcpIpClientC::waitForConnection - connect failed or exception in select on 17 ", 0));
}

TEST_F(TcpIpClientSetUpTest, NextAddressOfANameIsTriedWhenOneFails)
{
    config.m_wszIpDnsName = L"sensor.example";
    resolver->found = {Address("::1", 4711), Address("192.0.2.7", 4711)};
    sockets.connectError = Pending();
    sockets.pendingError = SOME_ERROR;
    int nPolls = 0;
    sockets.onPoll = [&] { sockets.pendingError = ++nPolls == 1 ? SOME_ERROR : 0; };
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_EQ(sockets.nOpen, 1);
}

TEST_F(TcpIpClientSetUpTest, CloseWhileResolvingEndsTheAttempt)
{
    config.m_wszIpDnsName = L"sensor.example";
    config.m_eAutoConnect = AutoConnect::WITH_TIMER;
    resolver->onResolve = [this] { Client().close(); };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(Client().getLastResult(), 0x02000008U);
}

TEST_F(TcpIpClientSetUpTest, CloseWhileConnectingEndsTheAttemptBeforeItsTime)
{
    sockets.connectError = Pending();
    sockets.bRoom = false;
    sockets.onPoll = [this] {
        sockets.onPoll = nullptr;
        Client().close();
    };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(sockets.waits.size(), 1U);
}

TEST_F(TcpIpClientSetUpTest, DisconnectWhileResolvingIsNoClose)
{
    config.m_wszIpDnsName = L"sensor.example";
    resolver->onResolve = [this] { Client().disconnectTcpIp(); };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_NE(Client().getLastResult(), 0x02000008U);
    EXPECT_EQ(reader.events, "2/0 2/3 1/0 ");
}

TEST_F(TcpIpClientSetUpTest, StopWhileConnectingIsNoClose)
{
    sockets.connectError = Pending();
    sockets.bRoom = false;
    sockets.onPoll = [this] {
        sockets.onPoll = nullptr;
        Client().stop();
    };
    Connecting();
    EXPECT_FALSE(Client().serve(0));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_NE(Client().getLastResult(), 0x02000008U);
    EXPECT_EQ(reader.events, "2/0 2/3 1/0 ");
}

TEST_F(TcpIpClientSetUpTest, ReconnectTimerRunsOutOnTheClock)
{
    config.m_eAutoConnect = AutoConnect::WITH_TIMER;
    sockets.connectError = SOME_ERROR;
    Connecting();
    const std::uint64_t before = sockets.nowMs;
    sockets.connectError = 0;
    while (Client().getState() != ONLINE)
        Client().serve(700);
    EXPECT_EQ(sockets.nowMs - before, 5000U);
}

} // namespace
