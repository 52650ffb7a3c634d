// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes through the TCP/IP client.
#include "TcpIpClientOnFakes.h"

#include <string>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientWriteTest : public TcpIpClientOnFakesC
{};

TEST_F(TcpIpClientWriteTest, WriteSendsAllOfItInAsManyPartsAsItTakes)
{
    sockets.sendAtOnce = 2;
    Online();
    EXPECT_EQ(Write("hello"), RC_OK);
    EXPECT_EQ(nWritten, 5U);
    EXPECT_EQ(sockets.sent, "hello");
    EXPECT_TRUE(Logged("BSS::NET::NetTcpIpClientC::writeData: Sent 2 bytes on 17.\n"));
}

TEST_F(TcpIpClientWriteTest, WriteWithoutRoomEndsAfterHalfASecond)
{
    Online();
    sockets.bRoom = false;
    const std::uint64_t before = sockets.nowMs;
    EXPECT_EQ(Write("x"), RC_TIMED_OUT);
    EXPECT_EQ(sockets.nowMs - before, 500U);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData timeout(500ms) exceeded\r\n"));
}

TEST_F(TcpIpClientWriteTest, WriteWhoseWaitFailsIsLogged)
{
    Online();
    sockets.pollError = SOME_ERROR;
    EXPECT_EQ(Write("x"), RC_FAILED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData: select returned SOCKET_ERROR, (err " +
                       HAL::SocketErrorText(SOME_ERROR) + ").\n"));
}

TEST_F(TcpIpClientWriteTest, WriteWithAnExceptionIsLogged)
{
    Online();
    sockets.bException = true;
    EXPECT_EQ(Write("x"), RC_CLOSED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData: select returns with except FDS set!\n"));
}

TEST_F(TcpIpClientWriteTest, WriteThatFailsIsLogged)
{
    Online();
    sockets.sendError = Lost();
    EXPECT_EQ(Write("x"), RC_CLOSED);
    EXPECT_TRUE(Logged("NetTcpIpClientC::writeData send returned SOCKET_ERROR, (err " +
                       HAL::SocketErrorText(Lost()) + ").\n"));
}

TEST_F(TcpIpClientWriteTest, SocketThatIsReadyForNothingIsReported)
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

TEST_F(TcpIpClientWriteTest, WriteWithoutAConnectionIsClosed)
{
    EXPECT_EQ(Write("x"), RC_CLOSED);
}

TEST_F(TcpIpClientWriteTest, WriteOfNothingIsAnInvalidArgument)
{
    Online();
    EXPECT_EQ(Write(""), RC_INVALID_ARGUMENT);
    EXPECT_EQ(Client().write(nullptr, 1, nWritten), RC_INVALID_ARGUMENT);
}

} // namespace
