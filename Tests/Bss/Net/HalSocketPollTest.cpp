// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Waiting for sockets.
#include "Loopback.h"

#include <thread>
#include <vector>

using namespace BSS::HAL;
using namespace NetTests;

namespace {

class HalSocketPollTest : public testing::Test
{
    const SocketsStartedC m_started;
};

TEST_F(HalSocketPollTest, WaitWithoutAnEventEndsWithItsTime)
{
    const PairT pair = Pair();
    PollItemT item{pair.client, true};
    std::size_t nReady = 7;
    EXPECT_EQ(PollSockets(&item, 1, 1, nReady), 0);
    EXPECT_EQ(nReady, 0U);
    EXPECT_FALSE(item.canRead);
}

TEST_F(HalSocketPollTest, WaitForNothingEndsWithItsTime)
{
    std::size_t nReady = 7;
    EXPECT_EQ(PollSockets(nullptr, 0, 1, nReady), 0);
    EXPECT_EQ(nReady, 0U);
}

TEST_F(HalSocketPollTest, OnlyWhatIsAskedForIsAnswered)
{
    const PairT pair = Pair();
    PollItemT item{pair.client, true, false};
    std::size_t nReady = 0;
    EXPECT_EQ(PollSockets(&item, 1, 0, nReady), 0);
    EXPECT_FALSE(item.canWrite);
    item.wantWrite = true;
    EXPECT_EQ(PollSockets(&item, 1, LONG_MS, nReady), 0);
    EXPECT_TRUE(item.canWrite);
    EXPECT_FALSE(item.canRead);
}

TEST_F(HalSocketPollTest, SocketThatIsNotThereIsPassedOver)
{
    const PairT pair = Pair();
    SendBytes(pair.server, "x", 1);
    std::vector<PollItemT> items(2);
    items[0] = {NO_SOCKET, true, true};
    items[1] = {pair.client, true};
    std::size_t nReady = 0;
    EXPECT_EQ(PollSockets(items.data(), items.size(), LONG_MS, nReady), 0);
    EXPECT_EQ(nReady, 1U);
    EXPECT_FALSE(items[0].canRead || items[0].canWrite || items[0].failed);
    EXPECT_TRUE(items[1].canRead);
}

TEST_F(HalSocketPollTest, HundredsOfSocketsAreWatchedAtOnce)
{
    constexpr std::size_t COUNT = 200;
    std::vector<PairT> pairs;
    std::vector<PollItemT> items;
    for (std::size_t n = 0; n < COUNT; ++n) {
        pairs.push_back(Pair());
        items.push_back({pairs.back().client, true});
    }
    SendBytes(pairs[COUNT - 1].server, "x", 1);
    std::size_t nReady = 0;
    ASSERT_EQ(PollSockets(items.data(), items.size(), LONG_MS, nReady), 0);
    EXPECT_EQ(nReady, 1U);
    EXPECT_TRUE(items[COUNT - 1].canRead);
}

TEST_F(HalSocketPollTest, WakerEndsAnotherThreadsWait)
{
    SocketWakerC waker;
    ASSERT_NE(waker.getSocket(), NO_SOCKET);
    std::thread other([&] { waker.wake(); });
    EXPECT_TRUE(CanRead(waker.getSocket()));
    other.join();
}

TEST_F(HalSocketPollTest, WakerThatWasDrainedSleepsAgain)
{
    SocketWakerC waker;
    waker.wake();
    ASSERT_TRUE(CanRead(waker.getSocket()));
    waker.drain();
    EXPECT_FALSE(CanRead(waker.getSocket(), 0));
}

TEST_F(HalSocketPollTest, WakerNeverBlocksHoweverOftenItIsWoken)
{
    SocketWakerC waker;
    for (int n = 0; n < 100000; ++n)
        waker.wake();
    EXPECT_TRUE(CanRead(waker.getSocket()));
}

} // namespace
