// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Turns of the TCP/IP client's thread.
#include "TcpIpClientOnFakes.h"

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <atomic>
#include <chrono>
#include <thread>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientTurnTest : public TcpIpClientOnFakesC
{};

// A request may come between any two steps of a turn.
TEST_F(TcpIpClientTurnTest, NoRequestOfAnotherThreadButAStopEndsTheThread)
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

constexpr char WAIT_FAILED[] = "NetTcpIpClientC::waitForRequest - waiting failed ";

TEST_F(TcpIpClientTurnTest, ThreadWhoseWaitsFailSaysSoOnceAndLooksTenTimesASecond)
{
    sockets.pollError = SOME_ERROR;
    const auto begin = std::chrono::steady_clock::now();
    for (int n = 0; n < 3; ++n)
        EXPECT_TRUE(Client().serve(60000));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_TRUE(LoggedError(WAIT_FAILED, SOME_ERROR));
    log->Clear();
    Client().serve(0);
    EXPECT_FALSE(LoggedError(WAIT_FAILED, SOME_ERROR));
}

TEST_F(TcpIpClientTurnTest, NextFailureOfWaitsIsToldAgain)
{
    sockets.pollError = SOME_ERROR;
    Client().serve(0);
    sockets.pollError = 0;
    Client().serve(0);
    log->Clear();
    sockets.pollError = SOME_ERROR;
    Client().serve(0);
    EXPECT_TRUE(LoggedError(WAIT_FAILED, SOME_ERROR));
}

TEST_F(TcpIpClientTurnTest, RequestIsServedThoughWaitsFail)
{
    sockets.pollError = SOME_ERROR;
    Client().serve(0);
    Connecting();
    EXPECT_EQ(Client().getState(), ONLINE);
}

} // namespace
