// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server of many clients, on the loopback address.
#include "AlteredSockets.h"
#include "TcpIpServerFixture.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"

#include <algorithm>
#include <array>
#include <boost/thread/exceptions.hpp>
#include <mutex>
#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

class TcpIpServerTest : public TcpIpServerFixtureC
{};

TEST_F(TcpIpServerTest, DoesNotStartWithoutAnAddress)
{
    NetTcpIpServerC server;
    EXPECT_EQ(server.start(), RC_OBJECT_MISSING);
}

TEST_F(TcpIpServerTest, RefusesWhatIsNoAddress)
{
    NetTcpIpServerC server;
    EXPECT_EQ(server.configure("not an address", 1), RC_INVALID_ARGUMENT);
}

TEST_F(TcpIpServerTest, PortThatIsTakenIsLoggedAndRefused)
{
    const ListenerC other;
    settings.logger = log;
    NetTcpIpServerC server(settings);
    ASSERT_EQ(server.configure("127.0.0.1", other.port()), RC_OK);
    EXPECT_EQ(server.start(), RC_FAILED);
    EXPECT_FALSE(log->Beginning("6 NetTcpIpServerC - listen on 127.0.0.1:").empty());
}

TEST_F(TcpIpServerTest, SendingToNobodyIsNoFailureAndKeepsNothing)
{
    EXPECT_EQ(Server().send("x", 1), RC_OK);
    EXPECT_EQ(Server().getBufferedBytes(), 0U);
}

TEST_F(TcpIpServerTest, SendingNothingIsAnInvalidArgument)
{
    EXPECT_EQ(Server().send(nullptr, 1), RC_INVALID_ARGUMENT);
    EXPECT_EQ(Server().send("x", 0), RC_INVALID_ARGUMENT);
}

TEST_F(TcpIpServerTest, EveryClientIsSentEverythingInOrder)
{
    const HeldSocketC first = Join();
    const HeldSocketC second = Join();
    std::string all;
    for (int n = 0; n < 20000; ++n) {
        const std::string line = "line " + std::to_string(n) + "\n";
        all += line;
        ASSERT_EQ(Server().send(line.data(), line.size()), RC_OK);
    }
    EXPECT_TRUE(Receive(first, all.size()) == all);
    EXPECT_TRUE(Receive(second, all.size()) == all);
}

TEST_F(TcpIpServerTest, ClientIsSentWhatComesAfterIt)
{
    const HeldSocketC first = Join();
    Server().send("old", 3);
    ASSERT_EQ(Receive(first, 3), "old");
    const HeldSocketC second = Join();
    Server().send("new", 3);
    EXPECT_EQ(Receive(second, 3), "new");
}

TEST_F(TcpIpServerTest, ClientThatNeverReadsIsDroppedWithALineAndTheOthersGetEverything)
{
    settings.maxBufferedBytes = std::size_t{1} << 18;
    const HeldSocketC silent = Join();
    const HeldSocketC reading = Join();
    const std::string piece(50000, 'p');
    std::size_t nSent = 0;
    // The system itself takes some megabytes for a client that does not read.
    while (Server().getDroppedCount() == 0 && nSent < (std::size_t{1} << 28)) {
        Server().send(piece.data(), piece.size());
        nSent += piece.size();
        ASSERT_EQ(Receive(reading, piece.size()), piece);
    }
    EXPECT_EQ(Server().getDroppedCount(), 1U);
    EXPECT_EQ(Server().getClientCount(), 1U);
    EXPECT_TRUE(log->Beginning("5 NetTcpIpServerC - client 1 dropped, ").ends_with(" bytes behind\n"));
}

TEST_F(TcpIpServerTest, WhatIsKeptForASlowClientIsBounded)
{
    settings.maxBufferedBytes = 100000;
    const HeldSocketC silent = Join();
    const std::string piece(1000, 'p');
    while (Server().send(piece.data(), piece.size()) == RC_OK)
        ASSERT_LE(Server().getBufferedBytes(), settings.maxBufferedBytes + StreamBufferC::BLOCK_BYTES);
    EXPECT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
}

TEST_F(TcpIpServerTest, WhatIsKeptIsBoundedWhileTheServersThreadIsBusy)
{
    HoldT hold;
    settings.maxBufferedBytes = 200000;
    settings.onData = [&](std::uint32_t, const std::uint8_t*, std::size_t) { hold.Hold(); };
    const HeldSocketC client = Join();
    HAL::SendBytes(client, "x", 1);
    ASSERT_TRUE(Eventually([&] { return hold.bHeld.load(); }));
    const std::string piece(10000, 'p');
    std::size_t most = 0;
    for (int n = 0; n < 100; ++n) {
        Server().send(piece.data(), piece.size());
        most = std::max(most, Server().getBufferedBytes());
    }
    EXPECT_LE(most, settings.maxBufferedBytes + StreamBufferC::BLOCK_BYTES);
    EXPECT_LE(Server().getBufferedBytes(), StreamBufferC::BLOCK_BYTES); // nobody is to get it any more
    hold.Let();
    EXPECT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
    // It is told right after it is forgotten.
    EXPECT_TRUE(Eventually([this] { return !log->Beginning("5 ").empty(); }));
    EXPECT_EQ(log->Beginning("5 "), "5 NetTcpIpServerC - client 1 dropped, 210000 bytes behind\n");
    Server().stop();
}

TEST_F(TcpIpServerTest, PieceThatNobodyMayHaveIsNotKept)
{
    HoldT hold;
    settings.onData = [&](std::uint32_t, const std::uint8_t*, std::size_t) { hold.Hold(); };
    const HeldSocketC client = Join();
    HAL::SendBytes(client, "x", 1);
    ASSERT_TRUE(Eventually([&] { return hold.bHeld.load(); }));
    const std::string piece(settings.maxBufferedBytes + 1, 'p');
    EXPECT_EQ(Server().send(piece.data(), piece.size()), RC_CLOSED);
    EXPECT_EQ(Server().getBufferedBytes(), 0U);
    hold.Let();
    EXPECT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
    Server().stop();
}

TEST_F(TcpIpServerTest, WhateverTheFunctionThrowsIsLoggedAndTheServerGoesOn)
{
    settings.onData = [](std::uint32_t, const std::uint8_t*, std::size_t) { throw 42; };
    const HeldSocketC client = Join();
    HAL::SendBytes(client, "x", 1);
    EXPECT_TRUE(
        Eventually([this] { return log->Has("6 NetTcpIpServerC - exception in the reader: unknown\n"); }));
    Server().send("on", 2);
    EXPECT_EQ(Receive(client, 2), "on");
}

TEST_F(TcpIpServerTest, ServerWhoseThreadEndsLeavesNoClientWaitingAndCanBeStartedAgain)
{
    settings.onData = [](std::uint32_t, const std::uint8_t*, std::size_t) {
        throw boost::thread_interrupted();
    };
    const HeldSocketC client = Join();
    const std::uint16_t port = Server().getPort();
    HAL::SendBytes(client, "x", 1);
    std::array<char, 1> byte = {};
    ASSERT_TRUE(CanRead(client));
    EXPECT_EQ(HAL::ReceiveBytes(client, byte.data(), 1).count, 0U);
    ASSERT_TRUE(Eventually([this] { return Server().getPort() == 0; }));
    EXPECT_EQ(Server().getClientCount(), 0U);
    const HeldSocketC late = Open();
    EXPECT_NE(HAL::ConnectSocket(late, Address("127.0.0.1", port)), 0);
    ASSERT_EQ(Server().start(), RC_OK); // waits for the thread that has ended
    const HeldSocketC again = Join();
    Server().send("back", 4);
    EXPECT_EQ(Receive(again, 4), "back");
}

TEST_F(TcpIpServerTest, ServerWithoutAThreadIsRefusedAndItsPortIsFree)
{
    AlteredSocketsC sockets;
    settings.pSockets = &sockets;
    NetTcpIpServerC server(settings);
    ASSERT_EQ(server.configure("127.0.0.1", 0), RC_OK);
    HAL::OrderFault(HAL::FaultT::Thread, 1);
    EXPECT_EQ(server.start(), RC_FAILED);
    EXPECT_EQ(server.getPort(), 0);
    ASSERT_NE(sockets.listenedPort, 0);
    const ListenerC other("127.0.0.1", sockets.listenedPort);
}

TEST_F(TcpIpServerTest, PieceBeyondTheLimitIsSentToNobody)
{
    settings.maxBufferedBytes = 10;
    const HeldSocketC client = Join();
    EXPECT_EQ(Server().send("more than ten", 13), RC_CLOSED);
    EXPECT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
}

TEST_F(TcpIpServerTest, ClientsThatGoAreForgotten)
{
    for (int n = 0; n < 25; ++n) {
        Join().close();
        ASSERT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
    }
    EXPECT_TRUE(Eventually([this] { return log->Has("4 NetTcpIpServerC - client 25 gone\n"); }));
}

TEST_F(TcpIpServerTest, ClientsThatCutTheirConnectionAreForgotten)
{
    for (int n = 0; n < 25; ++n) {
        Join().reset();
        ASSERT_TRUE(Eventually([this] { return Server().getClientCount() == 0; }));
    }
    EXPECT_TRUE(Eventually([this] { return log->Has("4 NetTcpIpServerC - client 25 gone\n"); }));
}

TEST_F(TcpIpServerTest, ClientsBeyondTheLimitAreRefused)
{
    settings.nMaxClients = 1;
    const HeldSocketC first = Join();
    const HeldSocketC second = Open();
    ASSERT_EQ(HAL::ConnectSocket(second, Address("127.0.0.1", Server().getPort())), 0);
    std::array<char, 1> byte = {};
    ASSERT_TRUE(CanRead(second));
    EXPECT_EQ(HAL::ReceiveBytes(second, byte.data(), 1).count, 0U);
    EXPECT_EQ(Server().getClientCount(), 1U);
}

TEST_F(TcpIpServerTest, WhatClientsSendIsGivenToTheFunction)
{
    std::mutex lock;
    std::string got;
    settings.onData = [&](std::uint32_t client, const std::uint8_t* bytes, std::size_t count) {
        const std::lock_guard<std::mutex> guard(lock);
        got += std::to_string(client) + ":" + std::string(reinterpret_cast<const char*>(bytes), count);
    };
    const HeldSocketC client = Join();
    HAL::SendBytes(client, "hi", 2);
    EXPECT_TRUE(Eventually([&] {
        const std::lock_guard<std::mutex> guard(lock);
        return got == "1:hi";
    }));
    Server().stop();
}

TEST_F(TcpIpServerTest, StopEndsTheConnectionsAndStartBringsTheServerBack)
{
    const HeldSocketC client = Join();
    Server().stop();
    std::array<char, 1> byte = {};
    ASSERT_TRUE(CanRead(client));
    EXPECT_EQ(HAL::ReceiveBytes(client, byte.data(), 1).count, 0U);
    ASSERT_EQ(Server().start(), RC_OK);
    const HeldSocketC again = Join();
    Server().send("back", 4);
    EXPECT_EQ(Receive(again, 4), "back");
}

TEST_F(TcpIpServerTest, TwoHundredClientsAreServed)
{
    std::vector<HeldSocketC> clients;
    for (int n = 0; n < 200; ++n)
        clients.push_back(Join());
    Server().send("all", 3);
    for (const HeldSocketC& client : clients)
        EXPECT_EQ(Receive(client, 3), "all");
}

TEST(StreamBufferTest, BytesStayWhereTheyWereInTheStream)
{
    StreamBufferC stream;
    std::string all;
    for (int n = 0; n < 30000; ++n) {
        const std::string piece = std::to_string(n) + ",";
        stream.append(piece.data(), piece.size());
        all += piece;
    }
    stream.release(70000);
    EXPECT_EQ(stream.getBegin(), StreamBufferC::BLOCK_BYTES);
    std::string read;
    for (std::uint64_t position = 70000; position < stream.getEnd();) {
        const StreamBufferC::PartT part = stream.getPart(position);
        ASSERT_GT(part.count, 0U);
        read.append(part.bytes, part.count);
        position += part.count;
    }
    EXPECT_TRUE(read == all.substr(70000));
    EXPECT_EQ(stream.getPart(stream.getEnd()).count, 0U);
    EXPECT_EQ(stream.getPart(0).count, 0U);
}

TEST(StreamBufferTest, ReleasedStreamGoesOnWhereItWas)
{
    StreamBufferC stream;
    const std::string block(StreamBufferC::BLOCK_BYTES, 'b');
    stream.append(block.data(), block.size());
    stream.release(stream.getEnd());
    stream.append("next", 4);
    const StreamBufferC::PartT part = stream.getPart(StreamBufferC::BLOCK_BYTES);
    EXPECT_EQ(std::string(part.bytes, part.count), "next");
}

} // namespace
