// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How the TCP/IP client ends connections and itself.
#include "TcpIpClientOnFakes.h"

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientEndTest : public TcpIpClientOnFakesC
{};

TEST_F(TcpIpClientEndTest, DisconnectShutsTheConnectionDown)
{
    Online().disconnectTcpIp();
    Client().serve(0);
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection - shutdown succeeded\n"));
}

TEST_F(TcpIpClientEndTest, ShutdownWithoutASocketIsLogged)
{
    Client().shutdownConnection();
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection\n"));
    EXPECT_TRUE(Logged("NetTcpIpClientC::shutdownConnection - Socket already closed\n"));
}

TEST_F(TcpIpClientEndTest, ShutdownThatFailsIsLogged)
{
    Online().disconnectTcpIp();
    sockets.shutdownError = SOME_ERROR;
    Client().serve(0);
    EXPECT_TRUE(LoggedError("NetTcpIpClientC::shutdownConnection - shutdown failed ", SOME_ERROR));
}

TEST_F(TcpIpClientEndTest, StopEndsServing)
{
    Online().stop();
    EXPECT_FALSE(Client().serve(0));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_EQ(sockets.nOpen, 0);
}

TEST_F(TcpIpClientEndTest, CloseIsFollowedByAConnectThatCameAfterIt)
{
    Online().close();
    Client().connectTcpIp();
    Client().serve(0);
    Client().serve(0);
    EXPECT_EQ(Client().getState(), ONLINE);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TcpIpClientEndTest, CloseThatADisconnectHasReplacedDoesNotEndALaterConnection)
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
