// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The owned sockets and their result codes.
#include "Bss/Bss_Net/BSS_NET_SocketServer.h"

#include "AlteredSockets.h"
#include "FakeSockets.h"
#include "Loopback.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class SocketTest : public testing::Test
{
protected:
    void Connect()
    {
        ASSERT_EQ(server.listen(Address("127.0.0.1", 0)), RC_OK);
        ASSERT_EQ(client.connect(Address("127.0.0.1", server.getPort()), LONG_MS), RC_OK);
        ASSERT_EQ(server.accept(accepted, LONG_MS), RC_OK);
    }

    const SocketsStartedC started;
    SocketServerC server;
    SocketClientC client;
    SocketClientC accepted;
    std::array<char, 64> bytes = {};
    std::size_t count = 99;
};

TEST_F(SocketTest, OperationsWithoutASocketSaySo)
{
    SocketC none;
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ(none.close(), RC_INVALID_SOCKET);
    EXPECT_EQ(none.shutdown(), RC_INVALID_SOCKET);
    EXPECT_EQ(none.setNoDelay(), RC_INVALID_SOCKET);
    EXPECT_EQ(none.setKeepAlive(1, 1, 1), RC_INVALID_SOCKET);
    EXPECT_EQ(none.waitReadable(0), RC_INVALID_SOCKET);
    EXPECT_EQ(none.waitWritable(0), RC_INVALID_SOCKET);
    EXPECT_EQ(none.send("x", 1, count), RC_INVALID_SOCKET);
    EXPECT_EQ(none.receive(bytes.data(), 1, count), RC_INVALID_SOCKET);
}

TEST_F(SocketTest, WhatOneSendsTheOtherReceives)
{
    Connect();
    ASSERT_EQ(client.sendAll("four", 4, LONG_MS, count), RC_OK);
    EXPECT_EQ(count, 4U);
    ASSERT_EQ(accepted.waitReadable(LONG_MS), RC_OK);
    ASSERT_EQ(accepted.receive(bytes.data(), bytes.size(), count), RC_OK);
    EXPECT_EQ(std::string(bytes.data(), count), "four");
}

TEST_F(SocketTest, ReceivingWithoutDataTimesOut)
{
    Connect();
    EXPECT_EQ(client.receive(bytes.data(), bytes.size(), count), RC_TIMED_OUT);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(client.waitReadable(0), RC_TIMED_OUT);
}

TEST_F(SocketTest, EndOfTheOtherSideIsClosed)
{
    Connect();
    accepted.close();
    ASSERT_EQ(client.waitReadable(LONG_MS), RC_OK);
    EXPECT_EQ(client.receive(bytes.data(), bytes.size(), count), RC_CLOSED);
}

TEST_F(SocketTest, NothingToMoveIsAnInvalidArgument)
{
    Connect();
    EXPECT_EQ(client.send(nullptr, 1, count), RC_INVALID_ARGUMENT);
    EXPECT_EQ(client.send("x", 0, count), RC_INVALID_ARGUMENT);
    EXPECT_EQ(client.receive(nullptr, 1, count), RC_INVALID_ARGUMENT);
    EXPECT_EQ(client.receive(bytes.data(), 0, count), RC_INVALID_ARGUMENT);
}

TEST_F(SocketTest, RefusedConnectionLeavesNoSocketAndTellsTheError)
{
    const DeadPortC dead;
    EXPECT_NE(client.connect(Address("127.0.0.1", dead.port()), LONG_MS), RC_OK);
    EXPECT_FALSE(client.isValid());
    EXPECT_NE(client.getLastError(), 0);
}

TEST_F(SocketTest, NobodyToAcceptTimesOut)
{
    ASSERT_EQ(server.listen(Address("127.0.0.1", 0)), RC_OK);
    EXPECT_EQ(server.accept(accepted, 0), RC_TIMED_OUT);
    EXPECT_FALSE(accepted.isValid());
}

TEST_F(SocketTest, SecondServerOnAPortFailsAndHasNoSocket)
{
    ASSERT_EQ(server.listen(Address("127.0.0.1", 0)), RC_OK);
    SocketServerC second;
    EXPECT_EQ(second.listen(Address("127.0.0.1", server.getPort())), RC_FAILED);
    EXPECT_FALSE(second.isValid());
    EXPECT_EQ(second.getPort(), 0);
}

TEST_F(SocketTest, SlowReceiverEndsSendAllWithItsLimit)
{
    Connect();
    const std::vector<char> much(std::size_t{64} << 20);
    EXPECT_EQ(client.sendAll(much.data(), much.size(), 1, count), RC_TIMED_OUT);
    EXPECT_LT(count, much.size());
    EXPECT_GT(count, 0U);
}

TEST_F(SocketTest, MovedSocketHasOneOwner)
{
    Connect();
    SocketClientC other = std::move(client);
    EXPECT_FALSE(client.isValid());
    EXPECT_TRUE(other.isValid());
}

TEST_F(SocketTest, SocketsAreClosedWithTheirObjects)
{
    const std::int64_t before = HAL::OpenSocketCount();
    {
        SocketServerC listening;
        ASSERT_EQ(listening.listen(Address("127.0.0.1", 0)), RC_OK);
        EXPECT_EQ(HAL::OpenSocketCount(), before + 1);
    }
    EXPECT_EQ(HAL::OpenSocketCount(), before);
}

TEST_F(SocketTest, SocketTakesItsCallsAlongWhenItIsMoved)
{
    AlteredSocketsC sockets;
    sockets.optionError = SOME_ERROR;
    SocketClientC first(sockets);
    ASSERT_EQ(first.open(HAL::AddressKind::IPv4), RC_OK);
    SocketClientC second(std::move(first));
    EXPECT_EQ(second.setNoDelay(), RC_FAILED);
    SocketClientC third;
    third = std::move(second);
    EXPECT_EQ(third.setNoDelay(), RC_FAILED);
    EXPECT_EQ(third.getLastError(), SOME_ERROR);
}

} // namespace
