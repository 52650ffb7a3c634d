// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The times of the TCP/IP client by the clock on the wall, on sockets of the system.
#include "TcpIpClientFixture.h"

#include <array>
#include <chrono>
#include <string>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

using ClockT = std::chrono::steady_clock;
using std::chrono::milliseconds;

class TcpIpClientTimesTest : public TcpIpClientFixtureC
{
protected:
    std::size_t Attempts() const
    {
        std::size_t count = 0;
        for (const std::string& message : log->Messages())
            count +=
                message.starts_with("3 NetTcpIpClientC::setupConnection - new socket descriptor: ") ? 1 : 0;
        return count;
    }
};

TEST_F(TcpIpClientTimesTest, ReceiveLimitEndsAConnectionThreeSecondsAfterTheLastData)
{
    config.m_ulMaxReceiveTimeoutMs = 3000;
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    // Silence up to here does not count any more.
    ASSERT_TRUE(Logs("1 NetTcpIpClientC::recvData - select timed out on "));
    const auto begin = ClockT::now();
    ASSERT_EQ(HAL::SendBytes(peer, "x", 1).count, 1U);
    ASSERT_TRUE(Eventually([this] { return watcher.Told(BIO::OFFLINE, BIO::PortReason::RECEIVE_TIMEOUT); }));
    const auto passed = ClockT::now() - begin;
    EXPECT_GE(passed, milliseconds(3000));
    EXPECT_LT(passed, milliseconds(6000));
    EXPECT_EQ(watcher.Data(), "x");
    EXPECT_EQ(Client().getLastResult(), 0x02000006U);
    std::array<char, 1> byte = {};
    EXPECT_TRUE(CanRead(peer)); // the server is told too
    EXPECT_EQ(HAL::ReceiveBytes(peer, byte.data(), 1).count, 0U);
}

TEST_F(TcpIpClientTimesTest, AbsentServerIsTriedAgainAtOnceInOtherModesButForTheSpacing)
{
    config.m_eAutoConnect = static_cast<AutoConnect>(77);
    settings.reconnect.intervalMs = 60000; // no timer of the other mode runs out here
    settings.reconnect.minSpacingMs = 100;
    DeadPortC dead;
    const auto begin = ClockT::now();
    Start(dead.port());
    ASSERT_TRUE(Eventually([this] { return Attempts() >= 5; }));
    const auto passed = ClockT::now() - begin;
    EXPECT_GE(passed, milliseconds(400));
    EXPECT_EQ(watcher.nOnline, 0U);
    EXPECT_EQ(watcher.Count(BIO::GOING_ONLINE), 1U); // one story, however many attempts
    ListenerC listener = dead.listen();
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

} // namespace
