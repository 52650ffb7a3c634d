// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The TCP/IP client on sockets that answer as the test likes, turn by turn, on a clock that only waits move.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "FakeSockets.h"
#include "Loopback.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"
#include "Support/ReportCapture.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class RecorderC final : public BIO::PortReaderI
{
public:
    void onPortEvent(BIO::PortEvent event, BIO::PortReason reason) override
    {
        events += std::to_string(event) + "/" + std::to_string(static_cast<int>(reason)) + " ";
        if (onEvent) onEvent(event);
    }
    void onData(const std::uint8_t* bytes, std::size_t count) override
    {
        data.append(reinterpret_cast<const char*>(bytes), count);
        if (onBytes) onBytes();
    }
    std::string events;
    std::string data;
    std::function<void(BIO::PortEvent)> onEvent;
    std::function<void()> onBytes;
};

class TcpIpClientTest : public testing::Test
{
protected:
    TcpIpClientTest()
    {
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = 4711;
        settings.pSockets = &sockets;
        settings.resolver = resolver;
        settings.clock = [this] { return sockets.nowMs; };
        settings.logger = log;
        settings.reconnect.jitterPercent = 0;
    }
    ~TcpIpClientTest() override
    {
        m_client.reset();
        EXPECT_EQ(sockets.nOpen, 0);
    }

    NetTcpIpClientC& Client()
    {
        if (!m_client) {
            m_client = std::make_unique<NetTcpIpClientC>(settings);
            EXPECT_EQ(m_client->setPortConfig(config), RC_OK);
            EXPECT_EQ(m_client->attachReader(reader), RC_OK);
        }
        return *m_client;
    }

    /// One turn after a request to connect.
    NetTcpIpClientC& Connecting()
    {
        Client().connectTcpIp();
        Client().serve(0);
        return Client();
    }

    NetTcpIpClientC& Online()
    {
        Connecting();
        EXPECT_EQ(Client().getState(), ONLINE);
        log->Clear();
        reader.events.clear();
        sockets.waits.clear();
        return Client();
    }

    ResultCodeT Write(const std::string& text) { return Client().write(text.data(), text.size(), nWritten); }

    bool Logged(const std::string& text) const
    {
        for (const std::string& message : log->Messages())
            if (message.substr(2) == text) return true;
        return false;
    }
    bool LoggedError(const std::string& text, int error) const
    {
        return Logged(text + "(err " + HAL::SocketErrorText(error) + ")\n");
    }

    const SocketsStartedC started;
    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    const std::shared_ptr<FakeResolverC> resolver = std::make_shared<FakeResolverC>();
    FakeSocketsC sockets;
    NetTcpIpClientSettingsT settings;
    NetTcpIpClientCfgT config;
    RecorderC reader;
    std::size_t nWritten = 0;

private:
    std::unique_ptr<NetTcpIpClientC> m_client;
};

// Setting up.

TEST_F(TcpIpClientTest, ConstructorTellsASocketLibraryThatDoesNotStart)
{
    sockets.startUpError = 10091;
    Client();
    EXPECT_TRUE(Logged("NetTcpIpClientC::NetTcpIpClientC: Error at WSAStartup(err 10091)\r\n"));
}

TEST_F(TcpIpClientTest, SocketLibraryIsStoppedWithTheClientIfItWasStarted)
{
    for (const int error : {0, 1}) {
        sockets.startUpError = error;
        const NetTcpIpClientC client(settings);
    }
    EXPECT_EQ(sockets.nCleanUps, 1);
}

TEST_F(TcpIpClientTest, SetPortConfigIsLogged)
{
    Client();
    EXPECT_TRUE(Logged("[NetTcpIpClientC]- setPortConfig 127.0.0.1:4711\n"));
}

TEST_F(TcpIpClientTest, ConfigurationThatCannotBeIsRefusedAndChangesNothing)
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

TEST_F(TcpIpClientTest, ImmediateConnectionIsOnlineAndLogged)
{
    Connecting();
    EXPECT_EQ(reader.events, "2/0 3/0 ");
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - DomainAddress: 127.0.0.1\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - new socket descriptor: 17\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - connect on 17 completed immediately\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::onConnectionEstablished - connection established 127.0.0.1:4711\n"));
}

TEST_F(TcpIpClientTest, PendingConnectionIsWaitedFor)
{
    sockets.connectError = Pending();
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::setupConnection - connect started on 17 (err " +
                       HAL::SocketErrorText(Pending()) + ")...\n"));
    EXPECT_TRUE(Logged("BSS::NET::NetTcpIpClientC::waitForConnection - timeout: 1000\n"));
}

TEST_F(TcpIpClientTest, ServerThatNeverAnswersEndsTheAttemptAfterASecond)
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

TEST_F(TcpIpClientTest, RefusalAtOnceIsLogged)
{
    sockets.connectError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::setupConnection - connect error on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientTest, RefusalOfAPendingConnectionIsLoggedWithItsNumber)
{
    sockets.connectError = Pending();
    sockets.pendingError = 17;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(
        LoggedError("NetTcpIpClientC::waitForConnection - error reported after connect on 17: 0x11 ", 17));
}

TEST_F(TcpIpClientTest, WaitThatFailsIsLogged)
{
    sockets.connectError = Pending();
    sockets.onPoll = [this] { sockets.pollError = SOME_ERROR; };
    Connecting();
    EXPECT_TRUE(LoggedError(
        "NetTcpIpClientC::waitForConnection - connect failed or exception in select on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientTest, SocketThatCannotBeMadeIsLogged)
{
    sockets.openError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::setupConnection - socket failed ", SOME_ERROR));
}

TEST_F(TcpIpClientTest, SocketThatStaysBlockingIsNotUsed)
{
    sockets.nonBlockingError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    const std::string line = log->Beginning("6 ").substr(2); // begins with a line of the source
    EXPECT_GT(std::stoi(line), 0);
    EXPECT_EQ(line.substr(4), " ioctl failed on 17 (err " + HAL::SocketErrorText(SOME_ERROR) + ")\n");
}

TEST_F(TcpIpClientTest, SocketWithDelayIsUsedAllTheSame)
{
    sockets.noDelayError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(LoggedError("BSS::NET::NetTcpIpClientC::setupConnection setsockopt TCP_NODELAY failed on 17 ",
                            SOME_ERROR));
}

TEST_F(TcpIpClientTest, KeepAliveIsAskedForAsItIsSet)
{
    settings.keepAliveIdleSeconds = 41;
    settings.keepAliveIntervalSeconds = 42;
    settings.nKeepAliveProbes = 43;
    Connecting();
    EXPECT_EQ(sockets.keepAliveIdle, 41);
    EXPECT_EQ(sockets.keepAliveInterval, 42);
    EXPECT_EQ(sockets.keepAliveProbes, 43);
}

TEST_F(TcpIpClientTest, KeepAliveThatIsSwitchedOffIsNotAskedFor)
{
    settings.keepAliveIdleSeconds = 0;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_EQ(sockets.keepAliveProbes, 0);
}

// A request may come between any two steps of a turn.
TEST_F(TcpIpClientTest, NoRequestOfAnotherThreadButAStopEndsTheThread)
{
    NetTcpIpClientC& client = Client();
    std::atomic<bool> bDone{false};
    std::thread other([&] {
        for (unsigned n = 0; !bDone.load(); ++n) {
            client.disconnectTcpIp();
            for (unsigned i = 0; i < n % 256; ++i)
                HAL::SpinPause();
        }
    });
    int nTurns = 0;
    while (nTurns < 2000000 && client.serve(0))
        ++nTurns;
    bDone = true;
    other.join();
    EXPECT_EQ(nTurns, 2000000);
}

TEST_F(TcpIpClientTest, SocketWithoutKeepAliveIsUsedAllTheSame)
{
    sockets.keepAliveError = SOME_ERROR;
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_EQ(log->Beginning("5 "),
              "5 BSS::NET::NetTcpIpClientC::setupConnection setsockopt SO_KEEPALIVE failed on 17 (err " +
                  HAL::SocketErrorText(SOME_ERROR) + ")\n");
}

TEST_F(TcpIpClientTest, NameIsResolved)
{
    config.m_wszIpDnsName = L"sensor.example";
    resolver->found.push_back(Address("192.0.2.7", 4711));
    Connecting();
    EXPECT_EQ(resolver->asked, "sensor.example");
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - calling gethostbyname\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - DomainName resolved: 192.0.2.7\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::onConnectionEstablished - connection established 192.0.2.7:4711\n"));
}

TEST_F(TcpIpClientTest, NameThatCannotBeResolvedIsLogged)
{
    config.m_wszIpDnsName = L"nowhere.example";
    resolver->error = 5;
    Connecting();
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_TRUE(Logged("NetTcpIpClientC::getServerAddress - Resolving nowhere.example failed: (err " +
                       HAL::ResolveErrorText(5) + ")\n"));
}

TEST_F(TcpIpClientTest, NextAddressOfANameIsTriedWhenOneFails)
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

TEST_F(TcpIpClientTest, CloseWhileResolvingEndsTheAttempt)
{
    config.m_wszIpDnsName = L"sensor.example";
    config.m_eAutoConnect = AutoConnect::WITH_TIMER;
    resolver->onResolve = [this] { Client().close(); };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(Client().getLastResult(), 0x02000008U);
}

TEST_F(TcpIpClientTest, CloseWhileConnectingEndsTheAttemptBeforeItsTime)
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

TEST_F(TcpIpClientTest, DisconnectWhileResolvingIsNoClose)
{
    config.m_wszIpDnsName = L"sensor.example";
    resolver->onResolve = [this] { Client().disconnectTcpIp(); };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_NE(Client().getLastResult(), 0x02000008U);
    EXPECT_EQ(reader.events, "2/0 2/3 1/0 ");
}

TEST_F(TcpIpClientTest, StopWhileConnectingIsNoClose)
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

TEST_F(TcpIpClientTest, ReconnectTimerRunsOutOnTheClock)
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

// Receiving.

TEST_F(TcpIpClientTest, WhatArrivesIsGivenToTheReader)
{
    sockets.arrived = {"abc", "de"};
    Online();
    Client().serve(0);
    Client().serve(0);
    EXPECT_EQ(reader.data, "abcde");
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData starts\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select for readability return 1\n"));
    EXPECT_TRUE(Logged("BSS::NET::NetTcpIpClientC::recvData: Received 3 bytes on 17.\n"));
}

TEST_F(TcpIpClientTest, SilenceWithoutALimitIsEndured)
{
    Online();
    for (int n = 0; n < 1000; ++n)
        Client().serve(60000);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select timed out on 17, no max timeout set.\n"));
}

TEST_F(TcpIpClientTest, SilenceBeyondTheLimitGoesOfflineWithItsReason)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    Online();
    const std::uint64_t before = sockets.nowMs;
    while (Client().getState() == ONLINE)
        Client().serve(60000);
    EXPECT_EQ(sockets.nowMs - before, 3001U);
    EXPECT_EQ(reader.events, "1/4 1/0 ");
    EXPECT_EQ(Client().getLastResult(), 0x02000006U);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - data receive time out on 17\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select timed out on 17\ntotal timeout: 500 ms\n"
                       "max timeout: 3000 ms\n"));
}

TEST_F(TcpIpClientTest, DataBeginTheSilenceAnew)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    Online();
    for (int n = 0; n < 6; ++n)
        Client().serve(60000);
    sockets.arrived = {"x"};
    Client().serve(0);
    const std::uint64_t before = sockets.nowMs;
    while (Client().getState() == ONLINE)
        Client().serve(60000);
    EXPECT_EQ(sockets.nowMs - before, 3001U);
}

TEST_F(TcpIpClientTest, TimeThatTheReaderTakesIsNoSilence)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    sockets.arrived = {"x"};
    reader.onBytes = [this] { sockets.nowMs += 10000; };
    Online().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientTest, TimeThatTheOnlineNotificationTakesIsNoSilence)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    reader.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::ONLINE) sockets.nowMs += 10000;
    };
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientTest, SilenceIsTheSumOfItsWaits)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    Online();
    for (int n = 0; n < 3000; ++n)
        Client().serve(1);
    EXPECT_EQ(Client().getState(), ONLINE);
    Client().serve(1);
    EXPECT_EQ(Client().getState(), IDLE);
}

TEST_F(TcpIpClientTest, EndByTheServerIsLoggedAndTold)
{
    sockets.bEnded = true;
    Online().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(reader.events, "1/1 1/0 ");
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - recv detected server-shutdown on 17\n"));
}

TEST_F(TcpIpClientTest, ReceiveErrorIsLoggedAndEndsTheConnection)
{
    sockets.receiveError = Lost();
    Online().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::recvData - recv failed on 17 ", Lost()));
}

TEST_F(TcpIpClientTest, ReceiveErrorThatIsNobodysDoingIsToldWithoutAReason)
{
    sockets.receiveError = SOME_ERROR;
    Online().serve(0);
    EXPECT_EQ(reader.events, "1/0 1/0 ");
}

TEST_F(TcpIpClientTest, WaitForDataThatFailsIsLoggedAndEndsTheConnection)
{
    Online();
    sockets.pollError = SOME_ERROR;
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select for readability return -1\n"));
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::recvData - recv failed on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientTest, WakeWithoutARequestIsNeitherDataNorATimeout)
{
    Online();
    sockets.bWoken = true;
    Client().serve(1000);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select for readability return 0\n"));
    EXPECT_TRUE(log->Beginning("1 NetTcpIpClientC::recvData - select timed out").empty());
}

TEST_F(TcpIpClientTest, ReceiveThatWouldWaitAfterAllChangesNothing)
{
    sockets.receiveError = WouldBlock();
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(log->Beginning("1 NetTcpIpClientC::recvData - select timed out").empty());
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - recv return -1, LastError: " +
                       HAL::SocketErrorText(WouldBlock()) + "\n"));
}

TEST_F(TcpIpClientTest, ReaderThatThrowsIsLoggedAndTheConnectionStays)
{
    sockets.arrived = {"x"};
    reader.onBytes = [] { throw std::runtime_error("full"); };
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - exception in the reader: full\n"));
}

TEST_F(TcpIpClientTest, BytesThatStayUnansweredForTheKeepAlivesTimeEndTheConnection)
{
    settings.keepAliveIdleSeconds = 2;
    settings.keepAliveIntervalSeconds = 1;
    settings.nKeepAliveProbes = 3;
    Online();
    sockets.bUnanswered = true;
    Client().serve(500);
    const std::uint64_t begin = sockets.nowMs;
    while (Client().getState() == ONLINE)
        Client().serve(500);
    EXPECT_EQ(sockets.nowMs - begin, 5000U);
    EXPECT_TRUE(
        Logged("NetTcpIpClientC::recvData - nothing that was sent on 17 has been answered for 5000 ms\n"));
}

TEST_F(TcpIpClientTest, AnswerBeginsTheTimeOfUnansweredBytesAnew)
{
    settings.keepAliveIdleSeconds = 1;
    settings.nKeepAliveProbes = 0;
    Online();
    for (int n = 0; n < 10; ++n) {
        sockets.bUnanswered = n % 2 == 0;
        Client().serve(500);
    }
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientTest, UnansweredBytesEndNothingWithoutAKeepAlive)
{
    settings.keepAliveIdleSeconds = 0;
    Online();
    sockets.bUnanswered = true;
    for (int n = 0; n < 1000; ++n)
        Client().serve(500);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientTest, ServerThatAcceptsAndResetsIsConnectedToOnceInASpacing)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    settings.reconnect.minSpacingMs = 100;
    sockets.receiveError = Lost();
    const std::uint64_t begin = sockets.nowMs;
    std::vector<std::uint64_t> connectedAt;
    reader.onEvent = [&](BIO::PortEvent event) {
        if (event == BIO::ONLINE) connectedAt.push_back(sockets.nowMs - begin);
    };
    Client().connectTcpIp();
    while (connectedAt.size() < 4)
        Client().serve(1000);
    EXPECT_EQ(connectedAt, (std::vector<std::uint64_t>{0, 100, 200, 300}));
}

TEST_F(TcpIpClientTest, CloseFromTheReaderEndsTheConnection)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    sockets.arrived = {"x"};
    reader.onBytes = [this] { Client().close(); };
    Online().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(reader.events, "1/2 1/2 ");
}

TEST_F(TcpIpClientTest, CloseFromTheOnlineNotificationEndsTheConnection)
{
    reader.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::ONLINE) Client().close();
    };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
}

TEST_F(TcpIpClientTest, DiscardRdThrowsAwayWhatHasArrived)
{
    sockets.arrived = {"old"};
    Online();
    EXPECT_EQ(Client().discardRd(), RC_OK);
    sockets.arrived.push_back("new");
    Client().serve(0);
    EXPECT_EQ(reader.data, "new");
    EXPECT_TRUE(Logged("[NetTcpIpClientC] -NetTcpIpClientC::discardRd\n"));
}

TEST_F(TcpIpClientTest, DiscardWrIsLogged)
{
    EXPECT_EQ(Client().discardWr(), RC_OK);
    EXPECT_TRUE(Logged("[NetTcpIpClientC] -NetTcpIpClientC::discardWr\n"));
}

// Sending.

TEST_F(TcpIpClientTest, WriteSendsAllOfItInAsManyPartsAsItTakes)
{
    sockets.sendAtOnce = 2;
    Online();
    EXPECT_EQ(Write("hello"), RC_OK);
    EXPECT_EQ(nWritten, 5U);
    EXPECT_EQ(sockets.sent, "hello");
    EXPECT_TRUE(Logged("BSS::NET::NetTcpIpClientC::writeData: Sent 2 bytes on 17.\n"));
}

TEST_F(TcpIpClientTest, WriteWithoutRoomEndsAfterHalfASecond)
{
    Online();
    sockets.bRoom = false;
    const std::uint64_t before = sockets.nowMs;
    EXPECT_EQ(Write("x"), RC_TIMED_OUT);
    EXPECT_EQ(sockets.nowMs - before, 500U);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData timeout(500ms) exceeded\r\n"));
}

TEST_F(TcpIpClientTest, WriteWhoseWaitFailsIsLogged)
{
    Online();
    sockets.pollError = SOME_ERROR;
    EXPECT_EQ(Write("x"), RC_FAILED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData: select returned SOCKET_ERROR, (err " +
                       HAL::SocketErrorText(SOME_ERROR) + ").\n"));
}

TEST_F(TcpIpClientTest, WriteWithAnExceptionIsLogged)
{
    Online();
    sockets.bException = true;
    EXPECT_EQ(Write("x"), RC_CLOSED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData: select returns with except FDS set!\n"));
}

TEST_F(TcpIpClientTest, WriteThatFailsIsLogged)
{
    Online();
    sockets.sendError = Lost();
    EXPECT_EQ(Write("x"), RC_CLOSED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData send returned SOCKET_ERROR, (err " +
                       HAL::SocketErrorText(Lost()) + ").\n"));
}

TEST_F(TcpIpClientTest, SocketThatIsReadyForNothingIsReported)
{
    Online();
    sockets.bRoom = false;
    sockets.bStrange = true;
    EXPECT_EQ(Write("x"), RC_OK);
    ASSERT_EQ(reports.Reports().size(), 1U);
    const Support::ReportT report = reports.Reports().front();
    EXPECT_EQ(report.text, "__WSAFDIsSet((SOCKET)(socketDescriptor), (fd_set  *)(&stWriteFDS))");
    EXPECT_TRUE(report.file.ends_with("BSS_NET_TcpIpClientTransfer")) << report.file;
    EXPECT_GT(report.line, 0);
}

TEST_F(TcpIpClientTest, WriteWithoutAConnectionIsClosed)
{
    EXPECT_EQ(Write("x"), RC_CLOSED);
}

TEST_F(TcpIpClientTest, WriteOfNothingIsAnInvalidArgument)
{
    Online();
    EXPECT_EQ(Write(""), RC_INVALID_ARGUMENT);
    EXPECT_EQ(Client().write(nullptr, 1, nWritten), RC_INVALID_ARGUMENT);
}

// Ending.

TEST_F(TcpIpClientTest, DisconnectShutsTheConnectionDown)
{
    Online().disconnectTcpIp();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection - shutdown succeeded\n"));
}

TEST_F(TcpIpClientTest, ShutdownWithoutASocketIsLogged)
{
    Client().shutdownConnection();
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection - Socket already closed\n"));
}

TEST_F(TcpIpClientTest, ShutdownThatFailsIsLogged)
{
    Online().disconnectTcpIp();
    sockets.shutdownError = SOME_ERROR;
    Client().serve(0);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::shutdownConnection - shutdown failed ", SOME_ERROR));
}

TEST_F(TcpIpClientTest, StopEndsServing)
{
    Online().stop();
    EXPECT_FALSE(Client().serve(0));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(sockets.nOpen, 0);
}

TEST_F(TcpIpClientTest, CloseIsFollowedByAConnectThatCameAfterIt)
{
    Online().close();
    Client().connectTcpIp();
    Client().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TcpIpClientTest, CloseThatADisconnectHasReplacedDoesNotEndALaterConnection)
{
    config.m_eAutoConnect = AutoConnect::WITH_TIMER;
    Online().close();
    Client().disconnectTcpIp();
    Client().connectTcpIp();
    Client().serve(0);
    Client().serve(0);
    ASSERT_EQ(Client().getState(), ONLINE);
    sockets.bEnded = true;
    Client().serve(0);
    EXPECT_EQ(Client().getState(), SETTING_UP);
}

} // namespace
