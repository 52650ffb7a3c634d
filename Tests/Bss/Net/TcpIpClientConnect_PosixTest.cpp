// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Attempts at a server that does not answer: its queue of clients is full, and the system drops what asks for
// more.
#include "TcpIpClientFixture.h"

#include <array>
#include <chrono>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class TcpIpClientConnectTest : public TcpIpClientFixtureC
{
protected:
    TcpIpClientConnectTest()
    {
        for (HeldSocketC& filler : m_fillers) {
            filler = Open();
            EXPECT_EQ(HAL::SetNonBlocking(filler, true), 0);
            const int error = HAL::ConnectSocket(filler, m_silent.address());
            EXPECT_TRUE(error == 0 || HAL::IsConnectPending(error));
        }
    }

    /// The attempt that is under way ends by itself only when a test lets the clock go on.
    void StopTheClock()
    {
        settings.clock = [] { return std::uint64_t{1000000}; };
    }
    std::uint16_t port() const { return m_silent.port(); }

    static constexpr char TIMED_OUT[] = "5 NetTcpIpClientC::waitForConnection - connect timeout on ";
    static constexpr char STARTED[] = "3 NetTcpIpClientC::setupConnection - connect started on ";

private:
    ListenerC m_silent{"127.0.0.1", 0, 0};
    std::array<HeldSocketC, 4> m_fillers;
};

TEST_F(TcpIpClientConnectTest, AttemptAtASilentServerEndsAfterASecond)
{
    const auto begin = std::chrono::steady_clock::now();
    Start(port());
    ASSERT_TRUE(Logs(TIMED_OUT));
    // The client counts whole milliseconds.
    EXPECT_GT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(999));
    EXPECT_EQ(Client().getState(), SETTING_UP);
    EXPECT_EQ(watcher.nOnline, 0U);
}

TEST_F(TcpIpClientConnectTest, CloseDuringAnAttemptEndsIt)
{
    StopTheClock();
    Start(port());
    ASSERT_TRUE(Logs(STARTED));
    Client().close();
    EXPECT_TRUE(Reaches(IDLE));
    EXPECT_EQ(Client().getLastResult(), 0x02000008U);
    EXPECT_TRUE(log->Beginning(TIMED_OUT).empty());
}

TEST_F(TcpIpClientConnectTest, StopDuringAnAttemptEndsIt)
{
    StopTheClock();
    Start(port());
    ASSERT_TRUE(Logs(STARTED));
    Client().stop();
    EXPECT_TRUE(Client().waitForStop(LONG_MS));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_TRUE(log->Beginning(TIMED_OUT).empty());
}

TEST_F(TcpIpClientConnectTest, CloseDuringAnAttemptIsFollowedByAnother)
{
    StopTheClock();
    Start(port());
    ASSERT_TRUE(Logs(STARTED));
    Client().close();
    ASSERT_TRUE(Reaches(IDLE));
    ListenerC listener;
    config.m_unServerPort = listener.port();
    ASSERT_EQ(Client().setPortConfig(config), RC_OK);
    Client().connectTcpIp();
    EXPECT_TRUE(Reaches(ONLINE));
}

} // namespace
