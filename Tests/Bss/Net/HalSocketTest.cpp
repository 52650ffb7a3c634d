// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Stream sockets of the platform layer, on the loopback address.
#include "Loopback.h"

#include "Support/Eventually.h"

#include <array>
#include <string>
#include <vector>

using namespace BSS::HAL;
using namespace NetTests;

namespace {

class HalSocketTest : public testing::Test
{
protected:
    static std::string Receive(SocketT socket, std::size_t count)
    {
        std::string text;
        std::array<char, 4096> bytes;
        while (text.size() < count) {
            if (!CanRead(socket)) return text;
            const TransferT got = ReceiveBytes(socket, bytes.data(), bytes.size());
            if (got.error != 0 || got.count == 0) return text;
            text.append(bytes.data(), got.count);
        }
        return text;
    }

private:
    const SocketsStartedC m_started;
};

class HalSocketFamilyTest : public HalSocketTest, public testing::WithParamInterface<const char*>
{};

TEST_P(HalSocketFamilyTest, BytesArriveAsTheyWereSent)
{
    const PairT pair = Pair(GetParam());
    EXPECT_EQ(SendBytes(pair.client, "hello", 5).count, 5U);
    EXPECT_EQ(Receive(pair.server, 5), "hello");
}

TEST_P(HalSocketFamilyTest, PeerOfOneEndIsTheOtherEnd)
{
    const PairT pair = Pair(GetParam());
    SocketAddressT peer;
    SocketAddressT local;
    ASSERT_EQ(PeerAddressOf(pair.client, peer), 0);
    ASSERT_EQ(LocalAddressOf(pair.server, local), 0);
    EXPECT_EQ(AddressText(peer), AddressText(local));
    EXPECT_EQ(PortOf(peer), PortOf(local));
}

INSTANTIATE_TEST_SUITE_P(Both, HalSocketFamilyTest, testing::ValuesIn(LoopbackAddresses()));

TEST_F(HalSocketTest, NonBlockingReceiveWithoutDataSaysThatItWouldWait)
{
    const PairT pair = Pair();
    ASSERT_EQ(SetNonBlocking(pair.client, true), 0);
    std::array<char, 8> bytes;
    const TransferT got = ReceiveBytes(pair.client, bytes.data(), bytes.size());
    EXPECT_EQ(got.count, 0U);
    EXPECT_TRUE(IsWouldBlock(got.error)) << SocketErrorText(got.error);
}

TEST_F(HalSocketTest, NonBlockingSendIntoFullBuffersSaysThatItWouldWait)
{
    const PairT pair = Pair();
    ASSERT_EQ(SetNonBlocking(pair.client, true), 0);
    const std::vector<char> bytes(std::size_t{1} << 20);
    TransferT sent;
    std::size_t total = 0;
    while (sent.error == 0 && total < (std::size_t{1} << 30)) {
        sent = SendBytes(pair.client, bytes.data(), bytes.size());
        total += sent.count;
    }
    EXPECT_TRUE(IsWouldBlock(sent.error)) << SocketErrorText(sent.error);
}

TEST_F(HalSocketTest, ProperEndIsNoBytesAndNoError)
{
    PairT pair = Pair();
    pair.server.close();
    std::array<char, 8> bytes;
    ASSERT_TRUE(CanRead(pair.client));
    const TransferT got = ReceiveBytes(pair.client, bytes.data(), bytes.size());
    EXPECT_EQ(got.count, 0U);
    EXPECT_EQ(got.error, 0);
}

TEST_F(HalSocketTest, ResetIsALostConnection)
{
    PairT pair = Pair();
    pair.server.reset();
    std::array<char, 8> bytes;
    ASSERT_TRUE(CanRead(pair.client));
    EXPECT_TRUE(IsConnectionLost(ReceiveBytes(pair.client, bytes.data(), bytes.size()).error));
}

TEST_F(HalSocketTest, SendingIntoALostConnectionIsAnErrorAndNoSignal)
{
    PairT pair = Pair();
    pair.server.reset();
    ASSERT_TRUE(CanRead(pair.client));
    TransferT sent;
    EXPECT_TRUE(Support::Eventually([&] {
        sent = SendBytes(pair.client, "x", 1);
        return sent.error != 0;
    }));
    EXPECT_TRUE(IsConnectionLost(sent.error)) << SocketErrorText(sent.error);
}

TEST_F(HalSocketTest, HalfClosedConnectionStillCarriesTheOtherDirection)
{
    const PairT pair = Pair();
    ASSERT_EQ(ShutdownSocket(pair.server, ShutdownKind::Sending), 0);
    EXPECT_EQ(SendBytes(pair.client, "still", 5).count, 5U);
    EXPECT_EQ(Receive(pair.server, 5), "still");
}

TEST_F(HalSocketTest, NonBlockingConnectEndsWithRoomToWrite)
{
    ListenerC listener;
    const HeldSocketC client = Open();
    ASSERT_EQ(SetNonBlocking(client, true), 0);
    const int error = ConnectSocket(client, listener.address());
    ASSERT_TRUE(error == 0 || IsConnectPending(error)) << SocketErrorText(error);
    PollItemT item{client, false, true};
    std::size_t nReady = 0;
    ASSERT_EQ(PollSockets(&item, 1, LONG_MS, nReady), 0);
    EXPECT_TRUE(item.canWrite);
    int pending = -1;
    ASSERT_EQ(TakePendingError(client, pending), 0);
    EXPECT_EQ(pending, 0);
}

TEST_F(HalSocketTest, RefusedConnectWakesItsPollAndLeavesItsError)
{
    const HeldSocketC client = Open();
    ASSERT_EQ(SetNonBlocking(client, true), 0);
    const DeadPortC dead;
    const int error = ConnectSocket(client, Address("127.0.0.1", dead.port()));
    if (!IsConnectPending(error)) {
        EXPECT_NE(error, 0); // refused at once
        return;
    }
    PollItemT item{client, false, true};
    std::size_t nReady = 0;
    ASSERT_EQ(PollSockets(&item, 1, LONG_MS, nReady), 0);
    ASSERT_EQ(nReady, 1U);
    int pending = 0;
    ASSERT_EQ(TakePendingError(client, pending), 0);
    EXPECT_NE(pending, 0);
}

TEST_F(HalSocketTest, PortThatWasJustLeftCanBeTakenAgain)
{
    ListenerC first;
    HeldSocketC client = Open();
    ASSERT_EQ(ConnectSocket(client, first.address()), 0);
    HeldSocketC server = first.accept();
    const std::uint16_t port = first.port();
    server.close(); // this side waits for late packets
    first.close();
    const HeldSocketC second = Open();
    EXPECT_EQ(BindSocket(second, Address("127.0.0.1", port)), 0);
}

TEST_F(HalSocketTest, PortOfAServerCannotBeTakenByASecondOne)
{
    const ListenerC first;
    const HeldSocketC second = Open();
    const int bound = BindSocket(second, first.address());
    EXPECT_NE(bound != 0 ? bound : ListenSocket(second, 1), 0);
}

TEST_F(HalSocketTest, KeepAliveAndBuffersAreAccepted)
{
    const PairT pair = Pair();
    EXPECT_EQ(SetKeepAlive(pair.client, 5, 1, 3), 0);
    EXPECT_EQ(SetNoDelay(pair.client), 0);
    EXPECT_EQ(SetSendBuffer(pair.client, 65536), 0);
    EXPECT_EQ(SetReceiveBuffer(pair.client, 65536), 0);
}

TEST_F(HalSocketTest, EveryOperationOnNoSocketIsAnError)
{
    int pending = 0;
    SocketAddressT address;
    std::array<char, 1> byte = {};
    EXPECT_NE(CloseSocket(NO_SOCKET), 0);
    EXPECT_NE(SetNonBlocking(NO_SOCKET, true), 0);
    EXPECT_NE(SetNoDelay(NO_SOCKET), 0);
    EXPECT_NE(SetKeepAlive(NO_SOCKET, 1, 1, 1), 0);
    EXPECT_NE(ConnectSocket(NO_SOCKET, Address("127.0.0.1", 1)), 0);
    EXPECT_NE(BindSocket(NO_SOCKET, Address("127.0.0.1", 0)), 0);
    EXPECT_NE(ListenSocket(NO_SOCKET, 1), 0);
    EXPECT_NE(TakePendingError(NO_SOCKET, pending), 0);
    EXPECT_NE(LocalAddressOf(NO_SOCKET, address), 0);
    EXPECT_NE(SendBytes(NO_SOCKET, "x", 1).error, 0);
    EXPECT_NE(ReceiveBytes(NO_SOCKET, byte.data(), byte.size()).error, 0);
    EXPECT_NE(ShutdownSocket(NO_SOCKET, ShutdownKind::Both), 0);
}

TEST_F(HalSocketTest, OpenSocketsAreCounted)
{
    const std::int64_t before = OpenSocketCount();
    {
        const PairT pair = Pair();
        EXPECT_EQ(OpenSocketCount(), before + 2);
    }
    EXPECT_EQ(OpenSocketCount(), before);
}

TEST_F(HalSocketTest, StartAndStopAreCounted)
{
    ASSERT_EQ(StartSockets(), 0);
    EXPECT_EQ(StopSockets(), 0);
    const HeldSocketC socket = Open(); // the fixture's start still holds
    EXPECT_NE(socket, NO_SOCKET);
}

TEST_F(HalSocketTest, ErrorTextIsTheNumberAndTheSystemsWords)
{
    const int error = ListenSocket(NO_SOCKET, 1);
    const std::string text = SocketErrorText(error);
    EXPECT_TRUE(text.starts_with(std::to_string(error) + ": ")) << text;
    EXPECT_GT(text.size(), std::to_string(error).size() + 4) << text;
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

} // namespace
