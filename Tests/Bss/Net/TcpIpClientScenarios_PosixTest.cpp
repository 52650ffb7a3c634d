// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What servers of another network do to a TCP/IP client, and attempts that lead to nobody there.
#include "Support/JoinedNetworks_Posix.h"
#include "TcpIpClientScenarios.h"

#include <functional>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::JoinedNetworks;

namespace {

class TcpIpClientFarServerDeathTest : public TcpIpClientScenariosC
{
protected:
    void InTwoNetworks(const std::function<void()>& scenario)
    {
        config.m_wszIpDnsName = L"10.77.0.2";
        Support::ExpectInJoinedNetworks([&](JoinedNetworks& networks) {
            PlaceServers(JoinedNetworks::FAR_ADDRESS,
                         [&](const std::function<void()>& action) { networks.far(action); });
            scenario();
            End();
            EXPECT_TRUE(reports.Reports().empty());
        });
    }

    /// An attempt to connect to nobody, who does not refuse it either.
    void StartWithNobody()
    {
        config.m_wszIpDnsName = L"10.77.0.3";
        config.m_eAutoConnect = AutoConnect::WITH_TIMER;
        Start(4711);
        ASSERT_TRUE(Logs("3 BSS::NET::NetTcpIpClientC::waitForConnection - timeout: 1000"));
    }
    bool TimedOut() const
    {
        return !log->Beginning("5 NetTcpIpClientC::waitForConnection - connect timeout on ").empty();
    }
};

TEST_F(TcpIpClientFarServerDeathTest, ThatRefusesIsTriedAgainUntilItIsThere)
{
    InTwoNetworks([this] { IsAbsentThenThere(); });
}

TEST_F(TcpIpClientFarServerDeathTest, ThatResetsRightAfterAcceptIsALossAndIsMended)
{
    InTwoNetworks([this] { ResetsRightAfterAccept(); });
}

TEST_F(TcpIpClientFarServerDeathTest, ThatClosesHalfIsALoss)
{
    InTwoNetworks([this] { ClosesHalf(); });
}

TEST_F(TcpIpClientFarServerDeathTest, ThatReadsNothingEndsAWriteWithTheTimeout)
{
    InTwoNetworks([this] { ReadsNothing(); });
}

TEST_F(TcpIpClientFarServerDeathTest, ThatRestartsAHundredTimesIsFoundAgain)
{
    InTwoNetworks([this] { RestartsAHundredTimes(); });
}

TEST_F(TcpIpClientFarServerDeathTest, IsLeftByACloseDuringReceive)
{
    InTwoNetworks([this] { IsLeftDuringReceive(); });
}

TEST_F(TcpIpClientFarServerDeathTest, IsLeftByACloseFromACallback)
{
    InTwoNetworks([this] { IsLeftFromACallback(); });
}

TEST_F(TcpIpClientFarServerDeathTest, CloseEndsAnAttemptWithNobodyBeforeItsTime)
{
    InTwoNetworks([this] {
        StartWithNobody();
        Client().close();
        EXPECT_TRUE(Reaches(IDLE));
        EXPECT_EQ(Client().getLastResult(), 0x02000008U);
        EXPECT_FALSE(TimedOut());
    });
}

TEST_F(TcpIpClientFarServerDeathTest, StopEndsAnAttemptWithNobodyBeforeItsTime)
{
    InTwoNetworks([this] {
        StartWithNobody();
        Client().stop();
        EXPECT_TRUE(Client().waitForStop(LONG_MS));
        EXPECT_EQ(Client().getState(), IDLE);
        EXPECT_FALSE(TimedOut());
    });
}

} // namespace
