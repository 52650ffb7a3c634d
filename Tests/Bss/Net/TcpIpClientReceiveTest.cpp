// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client does with what arrives, with silence, and with the end of the connection.
#include "TcpIpClientOnFakes.h"

#include <stdexcept>
#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientReceiveTest : public TcpIpClientOnFakesC
{};

TEST_F(TcpIpClientReceiveTest, WhatArrivesIsGivenToTheReader)
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

TEST_F(TcpIpClientReceiveTest, SilenceWithoutALimitIsEndured)
{
    Online();
    for (int n = 0; n < 1000; ++n)
        Client().serve(60000);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select timed out on 17, no max timeout set.\n"));
}

TEST_F(TcpIpClientReceiveTest, SilenceBeyondTheLimitGoesOfflineWithItsReason)
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

TEST_F(TcpIpClientReceiveTest, DataBeginTheSilenceAnew)
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

TEST_F(TcpIpClientReceiveTest, TimeThatTheReaderTakesIsNoSilence)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    sockets.arrived = {"x"};
    reader.onBytes = [this] { sockets.nowMs += 10000; };
    Online().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientReceiveTest, TimeThatTheOnlineNotificationTakesIsNoSilence)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    reader.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::ONLINE) sockets.nowMs += 10000;
    };
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientReceiveTest, SilenceIsTheSumOfItsWaits)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    Online();
    for (int n = 0; n < 3000; ++n)
        Client().serve(1);
    EXPECT_EQ(Client().getState(), ONLINE);
    Client().serve(1);
    EXPECT_EQ(Client().getState(), IDLE);
}

TEST_F(TcpIpClientReceiveTest, EndByTheServerIsLoggedAndTold)
{
    sockets.bEnded = true;
    Online().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(reader.events, "1/1 1/0 ");
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - recv detected server-shutdown on 17\n"));
}

TEST_F(TcpIpClientReceiveTest, ReceiveErrorIsLoggedAndEndsTheConnection)
{
    sockets.receiveError = Lost();
    Online().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::recvData - recv failed on 17 ", Lost()));
}

TEST_F(TcpIpClientReceiveTest, ReceiveErrorThatIsNobodysDoingIsToldWithoutAReason)
{
    sockets.receiveError = SOME_ERROR;
    Online().serve(0);
    EXPECT_EQ(reader.events, "1/0 1/0 ");
}

TEST_F(TcpIpClientReceiveTest, WaitForDataThatFailsIsLoggedAndEndsTheConnection)
{
    Online();
    sockets.pollError = SOME_ERROR;
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select for readability return -1\n"));
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::recvData - recv failed on 17 ", SOME_ERROR));
}

TEST_F(TcpIpClientReceiveTest, WakeWithoutARequestIsNeitherDataNorATimeout)
{
    Online();
    sockets.bWoken = true;
    Client().serve(1000);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - select for readability return 0\n"));
    EXPECT_TRUE(log->Beginning("1 NetTcpIpClientC::recvData - select timed out").empty());
}

TEST_F(TcpIpClientReceiveTest, ReceiveThatWouldWaitAfterAllChangesNothing)
{
    sockets.receiveError = WouldBlock();
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(log->Beginning("1 NetTcpIpClientC::recvData - select timed out").empty());
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - recv return -1, LastError: " +
                       HAL::SocketErrorText(WouldBlock()) + "\n"));
}

TEST_F(TcpIpClientReceiveTest, ReaderThatThrowsIsLoggedAndTheConnectionStays)
{
    sockets.arrived = {"x"};
    reader.onBytes = [] { throw std::runtime_error("full"); };
    Online().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::recvData - exception in the reader: full\n"));
}

TEST_F(TcpIpClientReceiveTest, BytesThatStayUnansweredForTheKeepAlivesTimeEndTheConnection)
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

TEST_F(TcpIpClientReceiveTest, AnswerBeginsTheTimeOfUnansweredBytesAnew)
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

TEST_F(TcpIpClientReceiveTest, UnansweredBytesEndNothingWithoutAKeepAlive)
{
    settings.keepAliveIdleSeconds = 0;
    Online();
    sockets.bUnanswered = true;
    for (int n = 0; n < 1000; ++n)
        Client().serve(500);
    EXPECT_EQ(Client().getState(), ONLINE);
}

TEST_F(TcpIpClientReceiveTest, ServerThatAcceptsAndResetsIsConnectedToOnceInASpacing)
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

TEST_F(TcpIpClientReceiveTest, CloseFromTheReaderEndsTheConnection)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    sockets.arrived = {"x"};
    reader.onBytes = [this] { Client().close(); };
    Online().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(reader.events, "1/2 1/2 ");
}

TEST_F(TcpIpClientReceiveTest, CloseFromTheOnlineNotificationEndsTheConnection)
{
    reader.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::ONLINE) Client().close();
    };
    Connecting();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
}

TEST_F(TcpIpClientReceiveTest, DiscardRdThrowsAwayWhatHasArrived)
{
    sockets.arrived = {"old"};
    Online();
    EXPECT_EQ(Client().discardRd(), RC_OK);
    sockets.arrived.push_back("new");
    Client().serve(0);
    EXPECT_EQ(reader.data, "new");
    EXPECT_TRUE(Logged("[NetTcpIpClientC] -NetTcpIpClientC::discardRd\n"));
}

TEST_F(TcpIpClientReceiveTest, DiscardWrIsLogged)
{
    EXPECT_EQ(Client().discardWr(), RC_OK);
    EXPECT_TRUE(Logged("[NetTcpIpClientC] -NetTcpIpClientC::discardWr\n"));
}

} // namespace
