// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The life of a timer engine: starting, stopping, waiting for the system to be awake, and the process's own
// one.
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerService.h"
#include "Bss/Bss_Tsk/BSS_TSK_WakeUp.h"
#include "Support/Eventually.h"
#include "TimerFixture.h"

#include <algorithm>
#include <boost/thread/exceptions.hpp>
#include <stdexcept>
#include <thread>

using namespace BSS::TSK::Timer;
using BSS::TSK::EventC;
using TaskTests::OnTimer;
using TaskTests::s_inside;
using TaskTests::TimerTest;

namespace {

TEST_F(TimerTest, StartingTwiceIsFine)
{
    Start();
    EXPECT_EQ(engine.start(1), 1);
}

TEST_F(TimerTest, AnEngineNumberAboveFifteenIsReported)
{
    EXPECT_EQ(engine.start(16), 1);
    EXPECT_EQ(Report(), "dwID <= (0xf0000000 >> 28) 1092");
}

TEST_F(TimerTest, WithoutAnEventOrAThreadItDoesNotStart)
{
    for (const std::uint32_t nth : {1u, 2u}) {
        BSS::HAL::OrderFault(BSS::HAL::FaultT::Event, nth);
        EXPECT_EQ(engine.start(1), 0);
    }
    BSS::HAL::OrderFault(BSS::HAL::FaultT::Thread, 1);
    EXPECT_EQ(engine.start(1), 0);
    EXPECT_FALSE(engine.isRunning());
    Start();
}

TEST_F(TimerTest, AnEngineThatDoesNotRunGivesNoTimers)
{
    EXPECT_EQ(Set(10, 1), 0u);
    EXPECT_EQ(engine.getMinResolution(), 55u);
}

TEST_F(TimerTest, StoppingWithTimersLeftIsReported)
{
    Start();
    Set(10, 1);
    EXPECT_EQ(engine.stop(), 1);
    EXPECT_EQ(reports.Count("m_ID2IdxMap.empty()"), 1u);
    EXPECT_EQ(reports.Count("m_lpTimerList == 0"), 1u);
    EXPECT_EQ(reports.Count("m_ulNbActiveTimers == 0"), 1u);
    ticks.add(100);
    Start();
    EXPECT_TRUE(ticks.turn(100));
    EXPECT_EQ(Fired(), TimersT{});
}

TEST_F(TimerTest, DestroyingARunningEngineIsReportedAndStopsIt)
{
    Support::ManualTicks other;
    BSS::TIM::TickClockC otherClock(other);
    {
        TimerEngineC doomed(otherClock);
        doomed.start(4);
        reports.Clear();
    }
    EXPECT_EQ(reports.Count("m_hTimerEvent == 0 && m_hTimerThread == 0"), 1u);
    EXPECT_EQ(reports.Reports().size(), 1u);
}

TEST_F(TimerTest, ACallbackCannotStopItsOwnEngine)
{
    Start();
    int answer = 99;
    s_inside = [&](std::uint32_t, std::uint32_t) { answer = engine.stop(); };
    Set(10, 1);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(answer, 0);
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(TimerTest, CanBeStartedAgain)
{
    for (int i = 0; i < 5; ++i) {
        Start();
        Set(10, 1);
        EXPECT_TRUE(ticks.turn(10));
        EXPECT_EQ(engine.stop(), 1);
    }
    EXPECT_EQ(Fired().size(), 5u);
}

TEST_F(TimerTest, FiresNothingUntilTheSystemIsAwakeWhenToldToWaitForIt)
{
    Start();
    Set(10, 1);
    EventC& awake = GetWakeUpRequestedEvent();
    awake.reset();
    engine.setWakeUpWait(true);
    std::atomic<bool> turned{false};
    std::thread clockHand([&] { turned = ticks.turn(20); });
    std::atomic<bool> set{false};
    std::thread setter([&] {
        Set(5, 2);
        set = true;
    });
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_FALSE(set.load());
    EXPECT_EQ(Fired(), TimersT{});
    awake.set();
    clockHand.join();
    setter.join();
    EXPECT_TRUE(turned.load());
    EXPECT_TRUE(ticks.turn(10));
    // Whether the second one was set before the hand turned is open, and with it which one is due first.
    TimersT fired = Fired();
    std::sort(fired.begin(), fired.end());
    EXPECT_EQ(fired, (TimersT{1, 2}));
    engine.setWakeUpWait(false);
}

TEST_F(TimerTest, WhoWaitsForTheSystemToBeAwakeInOrderToSetATimerHoldsUpNobodyWhoKillsOne)
{
    Start();
    EventC& awake = GetWakeUpRequestedEvent();
    awake.reset();
    engine.setWakeUpWait(true);
    std::atomic<bool> begun{false};
    std::atomic<std::uint32_t> id{0};
    std::thread setter([&] {
        begun = true;
        id = Set(1000, 2);
    });
    EXPECT_TRUE(Support::Eventually([&] { return begun.load(); }));
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_EQ(engine.killTimer(0), BSS::RC_NOT_FOUND);
    EXPECT_EQ(id.load(), 0u);
    awake.set();
    setter.join();
    EXPECT_EQ(engine.killTimer(id.load()), BSS::RC_OK);
    engine.setWakeUpWait(false);
}

TEST_F(TimerTest, ACallbackSetsATimerWithoutWaitingForTheSystemToBeAwake)
{
    Start();
    EventC& awake = GetWakeUpRequestedEvent();
    awake.set();
    engine.setWakeUpWait(true);
    std::atomic<std::uint32_t> id{0};
    s_inside = [&](std::uint32_t, std::uint32_t) {
        awake.reset(); // the system goes to sleep after the engine has looked
        id = Set(1000, 2);
    };
    Set(1000, 1, 0, 0);
    EXPECT_TRUE(Support::Eventually([&] { return id.load() != 0; }));
    awake.set(); // lets an engine go that waits with its lock held
    EXPECT_EQ(engine.killTimer(id.load()), BSS::RC_OK);
    engine.setWakeUpWait(false);
}

TEST_F(TimerTest, StopsWhileItWaitsForTheSystemToBeAwake)
{
    GetWakeUpRequestedEvent().reset();
    engine.setWakeUpWait(true);
    Start();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_EQ(engine.stop(), 1);
    EXPECT_FALSE(engine.isRunning());
}

TEST_F(TimerTest, ACallbackThatEndsTheEngineByAnInterruptionLeavesOneThatCanBeStartedAgain)
{
    Start();
    s_inside = [](std::uint32_t, std::uint32_t) { throw boost::thread_interrupted(); };
    EXPECT_NE(Set(1000, 7, 0, 0), 0u);
    EXPECT_TRUE(Support::Eventually([&] { return !engine.isRunning(); }));
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_EQ(Set(1000, 7), 0u);
    s_inside = nullptr;
    Start();
    EXPECT_TRUE(engine.isRunning());
    Set(10, 8);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Fired(), (TimersT{7, 8}));
}

TEST_F(TimerTest, AFirstDueTimeIsATimeOfItsClock)
{
    Start();
    const std::uint64_t now = clock.now();
    ticks.add(3); // what passes between a look at the clock and the setting
    EXPECT_NE(engine.setTimerAt(10, 1, &OnTimer, 1, TIMER_ONE_SHOT, now + 5), 0u);
    EXPECT_NE(engine.setTimerAt(10, 1, &OnTimer, 2, TIMER_ONE_SHOT, now - 5), 0u);
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired(), (TimersT{2}));
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired(), (TimersT{2, 1}));
}

TEST_F(TimerTest, AnEventThatWasClosedIsPassedOver)
{
    Start();
    const BSS::HAL::WaitHandleT closed = BSS::HAL::MakeWaitEvent(BSS::HAL::ResetMode::Auto, false);
    BSS::HAL::CloseWaitHandle(closed);
    engine.setTimer(10, 1, TimerTargetT(closed), 0, TIMER_SET_EVENT, TIMER_FIRST_AFTER_PERIOD);
    engine.setTimer(10, 1, TimerTargetT(closed), 0, TIMER_PULSE_EVENT, TIMER_FIRST_AFTER_PERIOD);
    Set(10, 3);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Fired(), (TimersT{3}));
    EXPECT_EQ(engine.getActiveCount(), 0u);
}

TEST_F(TimerTest, MayBeStartedAndStoppedWhileOthersSetTimers)
{
    std::atomic<bool> over{false};
    std::thread setting([&] {
        while (!over.load()) {
            engine.killTimer(Set(1000, 1));
            EXPECT_GE(engine.getMinResolution(), 1u);
        }
    });
    for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(engine.start(1), 1);
        EXPECT_EQ(engine.stop(), 1);
    }
    over = true;
    setting.join();
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_EQ(engine.getMinResolution(), 55u);
}

// The process's own engine, on the system's clock.

void SetAnotherProcessTimer(std::uint32_t, std::uint32_t, std::uint32_t user, std::uint32_t, std::uint32_t)
{
    for (int i = 0; i < 20; ++i)
        KillProcessTimer(SetProcessTimer(1000, 1, &OnTimer, user, TIMER_ONE_SHOT, 1000));
    OnTimer(0, 0, user, 0, 0);
}

TEST(ProcessTimer, CallbacksMaySetTimersAlsoWhileTheEngineStops)
{
    const Support::LogCapture systemLog;
    const Support::ReportCapture reports; // of timers that are left, and of those that are refused
    s_inside = nullptr;
    for (int round = 0; round < 50; ++round) {
        {
            const std::lock_guard<std::mutex> guard(TaskTests::s_firedLock);
            TaskTests::s_fired.clear();
        }
        for (int i = 0; i < 20; ++i)
            EXPECT_NE(SetProcessTimer(1, 1, &SetAnotherProcessTimer, 1, TIMER_PERIODIC, 0), 0u);
        EXPECT_TRUE(Support::Eventually([&] {
            const std::lock_guard<std::mutex> guard(TaskTests::s_firedLock);
            return !TaskTests::s_fired.empty();
        }));
        StopProcessTimerEngine();
    }
}

TEST(ProcessTimer, FiresOnTheSystemsClock)
{
    const Support::LogCapture systemLog;
    const Support::ReportCapture reports;
    EventC event;
    const std::uint32_t id =
        SetProcessTimer(1, 1, TimerTargetT(event.getHandle()), 0, TIMER_SET_EVENT | TIMER_PERIODIC, 0);
    EXPECT_NE(id, 0u);
    EXPECT_EQ(id >> 28, 0u);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(event.wait(20000), BSS::RC_OK);
    EXPECT_EQ(KillProcessTimer(id), BSS::RC_OK);
    StopProcessTimerEngine();
}

} // namespace
