// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Turns of the TCP/IP client's thread.
#include "TcpIpClientOnFakes.h"

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string_view>
#include <thread>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientTurnTest : public TcpIpClientOnFakesC
{};

/// Keeps nothing, for very many turns.
class NoLogC final : public DBG::DbgLogConsumerC
{
public:
    NoLogC() : DbgLogConsumerC("none", DBG::PrefixKind::None) {}
    void logFormatted(int, const char*, UTI::FormatSourceI&) override {}
    void logText(int, std::string_view) override {}

protected:
    bool write(std::string_view) override { return true; }
};

// A request may come between any two steps of a turn. As many turns as there is time for.
TEST_F(TcpIpClientTurnTest, NoRequestOfAnotherThreadButAStopEndsTheThread)
{
    settings.logger = std::make_shared<NoLogC>();
    NetTcpIpClientC& client = Client();
    std::atomic<bool> bDone{false};
    std::thread other([&] {
        for (unsigned n = 0; !bDone.load(); ++n) {
            client.disconnectTcpIp();
            for (unsigned i = 0; i < n % 256; ++i)
                HAL::SpinPause();
        }
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    bool bServes = true;
    for (int n = 0; n < 1000 && bServes && std::chrono::steady_clock::now() < end; ++n) {
        for (int nTurn = 0; nTurn < 2000 && bServes; ++nTurn)
            bServes = client.serve(0);
        sockets.waits.clear();
        reader.events.clear();
    }
    bDone = true;
    other.join();
    EXPECT_TRUE(bServes);
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
