// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What other threads want of a client's thread.
#include "Bss/Bss_Net/BSS_NET_ClientRequests.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>

using BSS::NET::ClientRequestsC;
using RequestT = BSS::NET::ClientRequest;

namespace {

TEST(ClientRequestsTest, NothingIsTakenWhenNothingWasPosted)
{
    EXPECT_EQ(ClientRequestsC().take(), std::nullopt);
}

TEST(ClientRequestsTest, CloseTakesThePlaceOfWhatCameBefore)
{
    ClientRequestsC requests;
    requests.post(RequestT::Connect);
    requests.post(RequestT::Close);
    EXPECT_EQ(requests.take(), RequestT::Close);
    EXPECT_TRUE(requests.isEmpty());
}

TEST(ClientRequestsTest, ConnectAfterCloseIsDoneAfterIt)
{
    ClientRequestsC requests;
    requests.post(RequestT::Close);
    requests.post(RequestT::Connect);
    requests.post(RequestT::Connect);
    EXPECT_EQ(requests.take(), RequestT::Close);
    EXPECT_EQ(requests.take(), RequestT::Connect);
    EXPECT_TRUE(requests.isEmpty());
}

TEST(ClientRequestsTest, HoweverManyAreMadeTwoAreKept)
{
    ClientRequestsC requests;
    for (int n = 0; n < 1000; ++n) {
        requests.post(RequestT::Connect);
        requests.post(RequestT::Disconnect);
        requests.post(RequestT::Connect);
    }
    EXPECT_EQ(requests.take(), RequestT::Disconnect);
    EXPECT_EQ(requests.take(), RequestT::Connect);
    EXPECT_TRUE(requests.isEmpty());
}

TEST(ClientRequestsTest, StopStaysUntilReset)
{
    ClientRequestsC requests;
    requests.post(RequestT::Stop);
    requests.post(RequestT::Connect);
    EXPECT_EQ(requests.take(), RequestT::Stop);
    EXPECT_EQ(requests.take(), RequestT::Stop);
    requests.reset();
    EXPECT_TRUE(requests.isEmpty());
}

TEST(ClientRequestsTest, AttemptIsEndedByAllButConnect)
{
    ClientRequestsC requests;
    requests.post(RequestT::Connect);
    EXPECT_FALSE(requests.endsAttempt());
    requests.post(RequestT::Close);
    EXPECT_TRUE(requests.endsAttempt());
}

TEST(ClientRequestsTest, RequestEndsAWaitForOne)
{
    ClientRequestsC requests;
    const auto begin = std::chrono::steady_clock::now();
    const std::future<void> waiting =
        std::async(std::launch::async, [&] { requests.await(std::chrono::seconds(30)); });
    requests.post(RequestT::Connect);
    waiting.wait();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(ClientRequestsTest, WaitForARequestHasAnEnd)
{
    ClientRequestsC requests;
    const auto begin = std::chrono::steady_clock::now();
    requests.await(std::chrono::milliseconds(20));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(20));
}

} // namespace
