// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The state machine of the TCP/IP client, without a network: what it does, tells and logs.
#include "TcpIpClientStateMachineFixture.h"

#include "Bss/Bss_Uti/BSS_UTI_Observer.h"

#include "Support/Eventually.h"

#include <optional>
#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

using ToldT = std::vector<std::pair<BIO::PortEvent, BIO::PortReason>>;
using BIO::PortReason;

class TcpIpClientStateMachineTest : public TcpIpClientStateMachineFixtureC
{};

TEST_F(TcpIpClientStateMachineTest, BeginsIdle)
{
    EXPECT_EQ(Machine().getState(), 0U);
    EXPECT_TRUE(client.told.empty());
}

TEST_F(TcpIpClientStateMachineTest, StartGoesOnlineWhenTheServerIsThere)
{
    Machine().start();
    EXPECT_EQ(Machine().getState(), 2U);
    EXPECT_EQ(client.told, (ToldT{{BIO::GOING_ONLINE, PortReason::NONE}, {BIO::ONLINE, PortReason::NONE}}));
}

TEST_F(TcpIpClientStateMachineTest, StartLogsItsStepsInOrder)
{
    Machine().start();
    const std::vector<std::string> expected = {
        "3 TcpIpClientStateMachineC::start\n",
        "3 TcpIpClientStateMachineC::goToState\n",
        "4 TcpIpClientStateMachineC::goToState - state-change: 0 -> 1\n",
        "3 TcpIpClientStateMachineC::leaveIdleState\n",
        "3 TcpIpClientStateMachineC::enterSettingUpState\n",
        "3 TcpIpClientStateMachineC::enterSettingUpState - immediately reconnect\n",
        "3 TcpIpClientStateMachineC::execSettingUpState\n",
        "3 TcpIpClientStateMachineC::goToState\n",
        "4 TcpIpClientStateMachineC::goToState - state-change: 1 -> 2\n",
        "3 TcpIpClientStateMachineC::leaveSettingUpState\n",
        "3 TcpIpClientStateMachineC::enterOnlineState\n"};
    EXPECT_EQ(log->Messages(), expected);
}

TEST_F(TcpIpClientStateMachineTest, NoStepOfALifeIsReported)
{
    client.autoConnect = AutoConnect::WITH_TIMER;
    In(ONLINE).onLinkLost(RC_CLOSED);
    timer.stop();
    Machine().onTimer();
    Machine().close();
    Machine().execute();
    Machine().start();
    Machine().stop();
    Machine().cleanup();
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TcpIpClientStateMachineTest, GoingToTheCurrentStateOnlyLogs)
{
    Machine().goToState(IDLE);
    EXPECT_TRUE(Logged("BSS::NET::TcpIpClientStateMachineC::goToState - Already in state 0"));
    EXPECT_TRUE(client.told.empty());
}

TEST_F(TcpIpClientStateMachineTest, FailedAttemptStaysInSettingUp)
{
    client.bServerThere = false;
    Machine().start();
    EXPECT_EQ(Machine().getState(), 1U);
    EXPECT_FALSE(client.bOpen);
}

TEST_F(TcpIpClientStateMachineTest, FailedAttemptWithoutAutoConnectSchedulesNothing)
{
    client.bServerThere = false;
    Machine().start();
    EXPECT_FALSE(timer.bRunning);
}

TEST_F(TcpIpClientStateMachineTest, FailedFirstAttemptWithTheTimerStartsIt)
{
    client.autoConnect = AutoConnect::WITH_TIMER;
    client.bServerThere = false;
    Machine().start();
    EXPECT_TRUE(timer.bRunning);
    EXPECT_EQ(timer.delayMs, 5000U);
}

TEST_F(TcpIpClientStateMachineTest, FailedAttemptOfOtherModesIsRepeatedAfterTheSpacing)
{
    client.autoConnect = static_cast<AutoConnect>(77);
    client.bServerThere = false;
    Machine().start();
    EXPECT_TRUE(timer.bRunning);
    EXPECT_EQ(timer.delayMs, settings.minSpacingMs);
}

TEST_F(TcpIpClientStateMachineTest, IntervalVariesWithinItsJitter)
{
    settings.jitterPercent = 20;
    client.autoConnect = AutoConnect::WITH_TIMER;
    client.bServerThere = false;
    std::uint32_t number = 0;
    settings.random = [&number] { return number; };
    Machine().start();
    EXPECT_EQ(timer.delayMs, 4500U);
    number = 1000;
    Machine().onTimer();
    EXPECT_EQ(timer.delayMs, 5500U);
    number = 1001;
    Machine().onTimer();
    EXPECT_EQ(timer.delayMs, 4500U);
}

TEST_F(TcpIpClientStateMachineTest, MachinesInTheSamePlaceVaryDifferently)
{
    settings.jitterPercent = 20;
    client.autoConnect = AutoConnect::WITH_TIMER;
    client.bServerThere = false;
    std::optional<TcpIpClientStateMachineC> machine;
    const auto intervals = [&] {
        machine.emplace(client, timer, LogC(log), settings);
        std::vector<std::uint32_t> all;
        machine->start();
        for (int n = 0; n < 5; ++n) {
            all.push_back(timer.delayMs);
            machine->onTimer();
        }
        machine->stop();
        return all;
    };
    const std::vector<std::uint32_t> first = intervals();
    EXPECT_TRUE(Support::Eventually([&] { return intervals() != first; })); // with the clock's next tick
}

TEST_F(TcpIpClientStateMachineTest, TimerTriesAgain)
{
    In(SETTING_UP).onTimer();
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_EQ(client.nAttempts, 1);
}

TEST_F(TcpIpClientStateMachineTest, ConnectWhileSettingUpTriesAtOnceInPlaceOfTheTimer)
{
    In(SETTING_UP);
    client.bServerThere = false;
    timer.start(5000);
    Machine().connectTcpIp();
    EXPECT_EQ(client.nAttempts, 1);
    EXPECT_FALSE(timer.bRunning);
    EXPECT_TRUE(Logged(Of("connectTcpIp")));
}

TEST_F(TcpIpClientStateMachineTest, OpenSocketIsWaitedForInsteadOfASecondOne)
{
    In(SETTING_UP);
    client.bOpen = true;
    Machine().execute();
    EXPECT_EQ(client.nWaits, 1);
    EXPECT_EQ(client.nAttempts, 0);
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_TRUE(Logged(Of("execSettingUpState - socket already open, waiting for connection")));
}

TEST_F(TcpIpClientStateMachineTest, DisconnectEndsSettingUpAndItsTimerAndTellsTheFailure)
{
    In(SETTING_UP);
    timer.start(5000);
    Machine().disconnectTcpIp();
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_FALSE(timer.bRunning);
    EXPECT_EQ(client.told,
              (ToldT{{BIO::GOING_ONLINE, PortReason::CONNECT_FAILED}, {BIO::OFFLINE, PortReason::NONE}}));
    EXPECT_TRUE(Logged(Of("leaveSettingUpState - notify GOING_ONLINE failure")));
    EXPECT_TRUE(Logged(Of("enterIdleState - notify BSS::BIO::OFFLINE")));
}

TEST_F(TcpIpClientStateMachineTest, CloseWhileSettingUpGoesIdleWithItsResult)
{
    In(SETTING_UP).close();
    Machine().execute();
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_EQ(Machine().getLastResult(), 0x02000008U);
}

TEST_F(TcpIpClientStateMachineTest, LinkLostWithoutAutoConnectGoesIdle)
{
    In(ONLINE).onLinkLost(RC_CLOSED);
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_TRUE(Logged(Of("execOnlineState - auto-connect disabled, goto to IDLE state")));
}

TEST_F(TcpIpClientStateMachineTest, LinkLostByThePeerSaysSo)
{
    In(ONLINE).onLinkLost(RC_CLOSED);
    EXPECT_EQ(client.told.front(), (std::pair{BIO::OFFLINE, PortReason::CLOSED_BY_PEER}));
    EXPECT_TRUE(log->Has("4 " + Of("leaveOnlineState - notify OFFLINE, closed by peer : 1\n")));
    EXPECT_EQ(client.nShutdowns, 1);
}

TEST_F(TcpIpClientStateMachineTest, LinkLostByNobodysDoingHasNoReason)
{
    In(ONLINE).onLinkLost(RC_FAILED);
    EXPECT_EQ(client.told.front(), (std::pair{BIO::OFFLINE, PortReason::NONE}));
    EXPECT_TRUE(log->Has("4 " + Of("leaveOnlineState - notify OFFLINE, closed by peer : 0\n")));
}

TEST_F(TcpIpClientStateMachineTest, DisconnectOnlineIsOurOwnDoing)
{
    In(ONLINE).disconnectTcpIp();
    EXPECT_EQ(client.told.front(), (std::pair{BIO::OFFLINE, PortReason::CLOSED_HERE}));
}

TEST_F(TcpIpClientStateMachineTest, LinkLostWithTheTimerWaitsForIt)
{
    client.autoConnect = AutoConnect::WITH_TIMER;
    In(ONLINE).onLinkLost(RC_CLOSED);
    EXPECT_EQ(Machine().getState(), SETTING_UP);
    EXPECT_TRUE(timer.bRunning);
    EXPECT_EQ(client.nAttempts, 0);
    EXPECT_TRUE(Logged(Of("execOnlineState - auto-connect enabled, goto to SETTING_UP state")));
    EXPECT_TRUE(Logged(Of("enterSettingUpState - start timer for reconnect")));
}

TEST_F(TcpIpClientStateMachineTest, LinkLostInOtherModesConnectsAtOnce)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    In(ONLINE).onLinkLost(RC_FAILED);
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_EQ(client.nAttempts, 1);
    EXPECT_TRUE(Logged(Of("enterSettingUpState - immediately reconnect")));
}

TEST_F(TcpIpClientStateMachineTest, LinkLostRightAfterItsAttemptIsConnectedAgainWhenTheSpacingIsOver)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    Machine().start();
    timer.clockMs += 30;
    Machine().onLinkLost(RC_CLOSED);
    EXPECT_EQ(Machine().getState(), SETTING_UP);
    EXPECT_EQ(client.nAttempts, 1);
    EXPECT_TRUE(timer.bRunning);
    EXPECT_EQ(timer.delayMs, 70U);
    EXPECT_TRUE(Logged(Of("enterSettingUpState - the last attempt was just now, next one in 70 ms")));
    timer.stop();
    timer.clockMs += 70;
    Machine().onTimer();
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_EQ(client.nAttempts, 2);
}

TEST_F(TcpIpClientStateMachineTest, ConnectDoesNotWaitForTheSpacing)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    Machine().start();
    Machine().onLinkLost(RC_CLOSED);
    Machine().connectTcpIp();
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_FALSE(timer.bRunning);
}

TEST_F(TcpIpClientStateMachineTest, CloseEndsTheSpacing)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    Machine().start();
    Machine().onLinkLost(RC_CLOSED);
    Machine().close();
    Machine().execute();
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_FALSE(timer.bRunning);
}

TEST_F(TcpIpClientStateMachineTest, ReceiveTimeoutIsToldWithItsReason)
{
    In(ONLINE).onLinkLost(RC_TIMED_OUT);
    EXPECT_EQ(client.told.front(), (std::pair{BIO::OFFLINE, PortReason::RECEIVE_TIMEOUT}));
    EXPECT_EQ(static_cast<int>(PortReason::RECEIVE_TIMEOUT), 4);
    EXPECT_TRUE(log->Has(
        "4 " + Of("leaveOnlineState - notify OFFLINE because of receive timeout, closed by peer : 0\n")));
}

TEST_F(TcpIpClientStateMachineTest, CloseOnlineGoesIdleWithItsResultWhateverTheMode)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    In(ONLINE).close();
    EXPECT_EQ(Machine().getState(), ONLINE); // until the machine's own thread comes to it
    Machine().execute();
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_EQ(Machine().getLastResult(), 0x02000008U);
    EXPECT_TRUE(Logged(Of("execOnlineState - close() has been called, goto IDLE state")));
}

TEST_F(TcpIpClientStateMachineTest, LinkLostBecauseOfCloseGoesIdle)
{
    client.autoConnect = AutoConnect::IMMEDIATELY;
    In(ONLINE).close();
    Machine().onLinkLost(RC_CLOSED);
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_EQ(Machine().getLastResult(), 0x02000008U);
}

TEST_F(TcpIpClientStateMachineTest, QueuedCloseEndsAConnectionThatWasBegunMeanwhile)
{
    In(ONLINE).close();
    Machine().onLinkLost(RC_CLOSED); // served by this
    Machine().connectTcpIp();
    Machine().executeClose();
    EXPECT_EQ(Machine().getState(), IDLE);
}

TEST_F(TcpIpClientStateMachineTest, CloseOfAnOpenSocketLogsIt)
{
    In(ONLINE).close();
    EXPECT_TRUE(Logged(Of("close")));
    EXPECT_TRUE(Logged("BSS::NET::TcpIpClientStateMachineC::close - Closing on 17"));
}

TEST_F(TcpIpClientStateMachineTest, CloseTellsAShutdownThatFails)
{
    In(ONLINE);
    client.shutdownError = 5;
    Machine().close();
    EXPECT_TRUE(log->Beginning("5 " + Of("close - shutdown failed (err 5: ")).ends_with(")\n"));
}

TEST_F(TcpIpClientStateMachineTest, CloseTellsASocketThatIsClosedAlready)
{
    client.shutdownError = 9;
    Machine().close();
    EXPECT_TRUE(log->Beginning("3 " + Of("close - socket already closed (err 9: ")).ends_with(")\n"));
}

TEST_F(TcpIpClientStateMachineTest, CloseWhileIdleDoesNotEndALaterConnection)
{
    Machine().close();
    Machine().execute();
    Machine().start();
    Machine().onLinkLost(RC_CLOSED);
    EXPECT_NE(Machine().getLastResult(), 0x02000008U);
}

TEST_F(TcpIpClientStateMachineTest, StopAndCleanupLogTheirNames)
{
    Machine().stop();
    Machine().cleanup();
    Machine().disconnectTcpIp();
    for (const char* name : {"stop", "cleanup", "disconnectTcpIp"})
        EXPECT_TRUE(Logged(Of(name))) << name;
}

TEST_F(TcpIpClientStateMachineTest, CleanupLeavesNothingBehind)
{
    In(ONLINE).cleanup();
    EXPECT_EQ(Machine().getState(), IDLE);
    EXPECT_FALSE(client.bOpen);
    EXPECT_FALSE(timer.bRunning);
}

TEST_F(TcpIpClientStateMachineTest, ObserversThatThrowAreLoggedAndChangeNothing)
{
    client.bThrow = true;
    Machine().start();
    EXPECT_EQ(Machine().getState(), ONLINE);
    EXPECT_TRUE(log->Has("6 TcpIpClientStateMachineC - exception in an observer: no\n"));
}

class SubjectObserverC final : public UTI::ObserverC
{
public:
    ~SubjectObserverC() override { detachAll(); }
    void update(UTI::SubjectC&, std::uint32_t code, const UTI::RefPtrT<UTI::SharedObjectC>& payload) override
    {
        const auto* event = dynamic_cast<const BIO::PortEventC*>(payload.get());
        ASSERT_NE(event, nullptr);
        told.emplace_back(code, event->getReason());
    }
    std::vector<std::pair<std::uint32_t, PortReason>> told;
};

TEST_F(TcpIpClientStateMachineTest, SubjectTellsWhatTheUsersAreTold)
{
    SubjectObserverC observer;
    Machine().getStateSubject().attach(observer);
    Machine().start();
    Machine().onLinkLost(RC_TIMED_OUT);
    ASSERT_EQ(observer.told.size(), client.told.size());
    for (std::size_t n = 0; n < client.told.size(); ++n) {
        EXPECT_EQ(observer.told[n].first, client.told[n].first);
        EXPECT_EQ(observer.told[n].second, client.told[n].second);
    }
}

TEST_F(TcpIpClientStateMachineTest, UnknownNewStateIsReported)
{
    Machine().goToState(77);
    EXPECT_EQ(reports.Count("!\"Invalid new state!\""), 1U);
    EXPECT_EQ(Machine().getState(), 77U);
}

TEST_F(TcpIpClientStateMachineTest, UnknownOldStateIsReported)
{
    Machine().goToState(77);
    Machine().goToState(IDLE);
    EXPECT_EQ(reports.Count("!\"Invalid old state!\""), 1U);
}

TEST_F(TcpIpClientStateMachineTest, ExecutionInAnUnknownStateIsReported)
{
    Machine().goToState(77);
    Machine().execute();
    EXPECT_EQ(reports.Count("!\"Invalid execution state!\""), 1U);
}

TEST_F(TcpIpClientStateMachineTest, EventInAnUnknownStateIsReported)
{
    Machine().goToState(77);
    Machine().start();
    Machine().stop();
    EXPECT_EQ(reports.Count("!\"Invalid state machine state!\""), 2U);
}

TEST_F(TcpIpClientStateMachineTest, IdleWithARunningTimerAndASocketIsReported)
{
    Machine().goToState(77);
    timer.start(1);
    client.bOpen = true;
    Machine().goToState(IDLE);
    EXPECT_EQ(reports.Count("!m_oTimer.isRunning()"), 1U);
    EXPECT_EQ(reports.Count("!m_roTcpIpClient.isSocketValid()"), 1U);
}

TEST_F(TcpIpClientStateMachineTest, OnlineWithoutASocketIsReported)
{
    Machine().goToState(ONLINE);
    EXPECT_EQ(reports.Count("m_roTcpIpClient.isSocketValid()"), 1U);
}

} // namespace
