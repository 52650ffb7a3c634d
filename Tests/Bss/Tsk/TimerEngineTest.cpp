// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Setting, firing and killing timers.
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
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

TEST_F(TimerTest, AOneShotFiresOnceAfterItsPeriod)
{
    Start();
    EXPECT_NE(Set(10, 7), 0u);
    EXPECT_TRUE(ticks.turn(9));
    EXPECT_EQ(Fired(), TimersT{});
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired(), TimersT{7});
    EXPECT_TRUE(ticks.turn(100));
    EXPECT_EQ(Fired(), TimersT{7});
    EXPECT_EQ(engine.getActiveCount(), 0u);
}

TEST_F(TimerTest, APeriodicTimerFiresAtMultiplesOfItsPeriod)
{
    Start();
    const std::uint32_t id = Set(10, 7, TIMER_PERIODIC);
    EXPECT_TRUE(ticks.turnStepwise(35));
    EXPECT_EQ(Fired(), (TimersT{7, 7, 7}));
    EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
    EXPECT_TRUE(ticks.turn(100));
    EXPECT_EQ(Fired().size(), 3u);
}

TEST_F(TimerTest, AFirstDelayTakesThePlaceOfTheFirstPeriod)
{
    Start();
    const std::uint32_t id = Set(10, 7, TIMER_PERIODIC, 3);
    EXPECT_TRUE(ticks.turn(3));
    EXPECT_EQ(Fired().size(), 1u);
    EXPECT_TRUE(ticks.turn(9));
    EXPECT_EQ(Fired().size(), 1u);
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired().size(), 2u);
    engine.killTimer(id);
}

TEST_F(TimerTest, AFirstDelayOfZeroFiresAtOnce)
{
    Start();
    Set(1000, 7, 0, 0);
    EXPECT_TRUE(ticks.turn(0));
    EXPECT_EQ(Fired(), TimersT{7});
}

TEST_F(TimerTest, FiresInTheOrderInWhichTimersAreDueAndThenInWhichTheyWereSet)
{
    Start();
    Set(30, 1);
    Set(10, 2);
    Set(20, 3);
    Set(10, 4);
    Set(20, 5);
    EXPECT_TRUE(ticks.turn(50));
    EXPECT_EQ(Fired(), (TimersT{2, 4, 3, 5, 1}));
}

TEST_F(TimerTest, KeepsThatOrderForTimersThatWereSetAtDifferentDistances)
{
    Start();
    Set(100000, 1);
    EXPECT_TRUE(ticks.turn(90000));
    Set(10000, 2);
    EXPECT_TRUE(ticks.turn(9900));
    Set(100, 3);
    EXPECT_TRUE(ticks.turn(99));
    Set(1, 4);
    Set(1, 5, 0, 1);
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired(), (TimersT{1, 2, 3, 4, 5}));
}

TEST_F(TimerTest, PeriodicTimersThatWereMissedFireAsOftenAsTheyMissedInDueOrder)
{
    Start();
    const std::uint32_t ten = Set(10, 10, TIMER_PERIODIC);
    const std::uint32_t fifteen = Set(15, 15, TIMER_PERIODIC);
    EXPECT_TRUE(ticks.turn(31)); // asleep
    EXPECT_EQ(Fired(), (TimersT{10, 15, 10, 15, 10}));
    engine.killTimer(ten);
    engine.killTimer(fifteen);
}

TEST_F(TimerTest, GoesOnAcrossTheWrapOfTheTickCounter)
{
    Support::ManualTicks late(0xFFFFFFF0u);
    BSS::TIM::TickClockC lateClock(late);
    TimerEngineC lateEngine(lateClock);
    ASSERT_EQ(lateEngine.start(2), 1);
    const std::uint32_t id =
        lateEngine.setTimer(10, 1, &OnTimer, 1, TIMER_PERIODIC, TIMER_FIRST_AFTER_PERIOD);
    for (std::size_t i = 1; i <= 5; ++i) {
        EXPECT_TRUE(late.turn(9));
        EXPECT_EQ(Fired().size(), i - 1);
        EXPECT_TRUE(late.turn(1));
        EXPECT_EQ(Fired().size(), i);
    }
    lateEngine.killTimer(id);
    lateEngine.stop();
}

TEST_F(TimerTest, TheIdCarriesTheEngineAndANumberThatCountsUp)
{
    Start(15);
    const std::uint32_t first = Set(1000, 1);
    const std::uint32_t second = Set(1000, 1);
    EXPECT_EQ(first, 0xF0000001u);
    EXPECT_EQ(second, 0xF0000002u);
    engine.killTimer(first);
    engine.killTimer(second);
}

TEST_F(TimerTest, NumbersBeginAgainAtOneAfterTheLast)
{
    Start(3);
    engine.setIdCounter(0x0FFFFFFE);
    const std::uint32_t last = Set(1000, 1);
    const std::uint32_t next = Set(1000, 1);
    EXPECT_EQ(last, 0x3FFFFFFFu);
    EXPECT_EQ(next, 0x30000001u);
    engine.killTimer(last);
    engine.killTimer(next);
}

TEST_F(TimerTest, ANumberWhoseTimerStillLivesIsReportedAndPassedOver)
{
    Start();
    const std::uint32_t one = Set(1000, 1);
    engine.setIdCounter(0x0FFFFFFF);
    const std::uint32_t two = Set(1000, 1);
    EXPECT_EQ(two, one + 1);
    EXPECT_EQ(Report(), "m_ID2IdxMap.find(dwTimerId) == m_ID2IdxMap.end() 903");
    engine.killTimer(one);
    engine.killTimer(two);
}

TEST_F(TimerTest, KillingWhatIsNoTimerIsNotFound)
{
    Start();
    const std::uint32_t id = Set(10, 1);
    EXPECT_EQ(engine.killTimer(0), BSS::RC_NOT_FOUND);
    EXPECT_EQ(engine.killTimer(id + 1), BSS::RC_NOT_FOUND);
    EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
    EXPECT_EQ(engine.killTimer(id), BSS::RC_NOT_FOUND);
}

// Arguments.

TEST_F(TimerTest, OtherFlagsAreReportedAndRefused)
{
    Start();
    EXPECT_EQ(Set(10, 1, 0x002), 0u);
    EXPECT_EQ(Report(), "false 1534");
    EXPECT_EQ(Set(10, 1, 0x200), 0u);
    EXPECT_EQ(reports.Reports().size(), 2u);
    engine.killTimer(Set(10, 1, TIMER_KILL_SYNCHRONOUS | TIMER_PERIODIC));
    EXPECT_EQ(reports.Reports().size(), 2u);
}

TEST_F(TimerTest, APeriodOfMoreThanTwoHoursIsTwoHours)
{
    Start();
    Set(7200001, 1);
    EXPECT_EQ(Report(), "false 1543");
    EXPECT_TRUE(ticks.turn(7199999));
    EXPECT_EQ(Fired().size(), 0u);
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired().size(), 1u);
}

TEST_F(TimerTest, APeriodOfZeroIsRefused)
{
    Start();
    EXPECT_EQ(Set(0, 1), 0u);
    EXPECT_EQ(Report(), "false 1550");
    EXPECT_EQ(reports.Reports().size(), 1u);
}

TEST_F(TimerTest, AFirstDelayOfMoreThanTwoHoursIsTwoHours)
{
    Start();
    Set(10, 1, 0, 7200001);
    EXPECT_EQ(Report(), "false 1564");
    EXPECT_TRUE(ticks.turn(7199999));
    EXPECT_EQ(Fired().size(), 0u);
    EXPECT_TRUE(ticks.turn(1));
    EXPECT_EQ(Fired().size(), 1u);
}

TEST_F(TimerTest, TheResolutionIsBroughtIntoRange)
{
    Start();
    const auto resolution = [&](std::uint32_t asked, std::uint32_t period) {
        const std::uint32_t id = engine.setTimer(period, asked, &OnTimer, 0, 0, TIMER_FIRST_AFTER_PERIOD);
        const std::uint32_t minimum = engine.getMinResolution();
        engine.killTimer(id);
        return minimum;
    };
    EXPECT_EQ(resolution(60, 10), 55u);
    EXPECT_EQ(resolution(5, 3), 55u);
    EXPECT_EQ(resolution(0, 10), 1u);
    EXPECT_EQ(resolution(10, 10), 10u);
    EXPECT_EQ(resolution(54, 100), 54u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimerTest, TheSmallestResolutionInUseCounts)
{
    Start();
    const std::uint32_t twenty = engine.setTimer(100, 20, &OnTimer, 0, 0, TIMER_FIRST_AFTER_PERIOD);
    const std::uint32_t five = engine.setTimer(100, 5, &OnTimer, 0, 0, 10);
    EXPECT_EQ(engine.getMinResolution(), 5u);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(engine.getMinResolution(), 20u) << "the other has fired";
    engine.killTimer(twenty);
    EXPECT_EQ(engine.getMinResolution(), 55u);
    EXPECT_EQ(engine.killTimer(five), BSS::RC_NOT_FOUND);
}

TEST_F(TimerTest, TheSixtyFiveThousandFiveHundredAndThirtySixthOfOneResolutionIsRefused)
{
    Start();
    const BSS::HAL::PriorityBoostC
        boost; // raised once and not with every timer, which takes its turn each time
    std::vector<std::uint32_t> ids;
    for (int i = 0; i < 65535; ++i)
        ids.push_back(engine.setTimer(1000, 7, &OnTimer, 0, 0, TIMER_FIRST_AFTER_PERIOD));
    EXPECT_NE(ids.back(), 0u);
    EXPECT_EQ(engine.setTimer(1000, 7, &OnTimer, 0, 0, TIMER_FIRST_AFTER_PERIOD), 0u);
    EXPECT_EQ(Report(), "dwTimerId & (~0xf0000000) 1605");
    const std::uint32_t other = engine.setTimer(1000, 8, &OnTimer, 0, 0, TIMER_FIRST_AFTER_PERIOD);
    EXPECT_NE(other, 0u);
    engine.killTimer(other);
    for (const std::uint32_t id : ids)
        engine.killTimer(id);
    EXPECT_EQ(engine.getActiveCount(), 0u);
}

// Telling.

TEST_F(TimerTest, SetsItsEvent)
{
    EventC event;
    Start();
    engine.setTimer(10, 1, TimerTargetT(event.getHandle()), 0, TIMER_SET_EVENT, TIMER_FIRST_AFTER_PERIOD);
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(event.wait(0), BSS::RC_OK);
}

TEST_F(TimerTest, PulsesItsEvent)
{
    EventC event(BSS::HAL::ResetMode::Manual, true);
    Start();
    engine.setTimer(10, 1, TimerTargetT(event.getHandle()), 0, TIMER_PULSE_EVENT, TIMER_FIRST_AFTER_PERIOD);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT) << "a pulse leaves it reset";
}

TEST_F(TimerTest, APulseReleasesWhoeverWaitsAtThatMoment)
{
    EventC event;
    Start();
    const std::uint32_t id = engine.setTimer(10, 1, TimerTargetT(event.getHandle()), 0,
                                             TIMER_PULSE_EVENT | TIMER_PERIODIC, TIMER_FIRST_AFTER_PERIOD);
    std::atomic<bool> released{false};
    std::thread waiting([&] { released = event.wait(20000) == BSS::RC_OK; });
    // A pulse that comes before the thread has gone to sleep is none for it.
    EXPECT_TRUE(Support::Eventually([&] {
        EXPECT_TRUE(ticks.turn(10));
        return released.load();
    }));
    waiting.join();
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT);
    EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
}

TEST_F(TimerTest, AnyOtherKindIsReportedWhenItIsDue)
{
    Start();
    Set(10, 1, 0x030);
    EXPECT_EQ(Report(), "none");
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Report(), "0 820");
    EXPECT_EQ(Fired(), TimersT{});
}

// An engine whose map of ids can be spoiled.
class OpenEngineC final : public TimerEngineC
{
public:
    using TimerEngineC::getIdMap;
    using TimerEngineC::TimerEngineC;
};

class SpoiledMapTest : public TimerTest
{
protected:
    SpoiledMapTest()
    {
        EXPECT_EQ(open.start(1), 1);
        reports.Clear();
    }
    ~SpoiledMapTest() override { open.stop(); }

    OpenEngineC open{clock};
};

TEST_F(SpoiledMapTest, ATimerThatHasFiredAndIsNotInTheMapIsReported)
{
    s_inside = [&](std::uint32_t id, std::uint32_t) { open.getIdMap().erase(id); };
    open.setTimer(10, 1, &OnTimer, 7, TIMER_ONE_SHOT, TIMER_FIRST_AFTER_PERIOD);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Report(), "!\"ProcessTimer: iterator not found.\" 841");
    EXPECT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TimerEngine)");
    EXPECT_EQ(open.getActiveCount(), 0u);
}

TEST_F(SpoiledMapTest, ATimerThatHasFiredAndWhoseIdIsAnothersIsReported)
{
    TimerRecordT other;
    s_inside = [&](std::uint32_t id, std::uint32_t) {
        open.getIdMap().erase(id);
        open.getIdMap().insert(id, other);
    };
    open.setTimer(10, 1, &OnTimer, 7, TIMER_ONE_SHOT, TIMER_FIRST_AFTER_PERIOD);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Report(), "&m_Timers[ itID2Idx->second ] == lpTimer 836");
    EXPECT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(open.getActiveCount(), 0u);
}

TEST_F(TimerTest, CallsBackWithItsIdAndItsUserValue)
{
    std::uint32_t toldId = 0;
    std::uint32_t toldUser = 0;
    s_inside = [&](std::uint32_t id, std::uint32_t user) {
        toldId = id;
        toldUser = user;
    };
    Start();
    const std::uint32_t id = Set(10, 0xDEADBEEF);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(toldId, id);
    EXPECT_EQ(toldUser, 0xDEADBEEFu);
}

TEST_F(TimerTest, ACallbackMayKillItsOwnTimer)
{
    Start();
    BSS::ResultCodeT rc = BSS::RC_FAILED;
    s_inside = [&](std::uint32_t id, std::uint32_t) { rc = engine.killTimer(id); };
    Set(10, 1, TIMER_PERIODIC);
    EXPECT_TRUE(ticks.turn(50));
    EXPECT_EQ(Fired().size(), 1u);
    EXPECT_EQ(rc, BSS::RC_OK);
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimerTest, AOneShotMayKillItselfToo)
{
    Start();
    s_inside = [&](std::uint32_t id, std::uint32_t) { EXPECT_EQ(engine.killTimer(id), BSS::RC_OK); };
    Set(10, 1);
    EXPECT_TRUE(ticks.turn(50));
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimerTest, ACallbackMayKillTheTimerThatIsDueNext)
{
    Start();
    std::uint32_t second = 0;
    s_inside = [&](std::uint32_t, std::uint32_t) { engine.killTimer(second); };
    Set(10, 1);
    second = Set(10, 2);
    EXPECT_TRUE(ticks.turn(50));
    EXPECT_EQ(Fired(), TimersT{1});
}

TEST_F(TimerTest, ACallbackMaySetTimers)
{
    Start();
    s_inside = [&](std::uint32_t, std::uint32_t user) {
        if (user < 3) Set(5, user + 1, 0, user == 1 ? 0 : TIMER_FIRST_AFTER_PERIOD);
    };
    Set(10, 1);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Fired(), (TimersT{1, 2})) << "a first delay of zero fires in the same round";
    EXPECT_TRUE(ticks.turn(5));
    EXPECT_EQ(Fired(), (TimersT{1, 2, 3}));
}

TEST_F(TimerTest, AKilledTimersRecordIsNotReusedWhileItsCallbackRuns)
{
    Start();
    std::uint32_t other = 0;
    s_inside = [&](std::uint32_t id, std::uint32_t user) {
        if (user != 1) return;
        engine.killTimer(id);
        other = Set(10, 2, TIMER_PERIODIC);
    };
    Set(10, 1, TIMER_PERIODIC);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_TRUE(ticks.turnStepwise(20));
    EXPECT_EQ(Fired(), (TimersT{1, 2, 2}));
    EXPECT_EQ(engine.killTimer(other), BSS::RC_OK);
}

TEST_F(TimerTest, WhatACallbackThrowsIsLoggedAndTheNextTimerFires)
{
    Start();
    s_inside = [&](std::uint32_t, std::uint32_t user) {
        if (user == 1) throw std::runtime_error("upset");
        if (user == 2) throw 5;
    };
    Set(10, 1);
    Set(10, 2);
    Set(10, 3);
    EXPECT_TRUE(ticks.turn(10));
    EXPECT_EQ(Fired(), (TimersT{1, 2, 3}));
    EXPECT_NE(systemLog.Messages().find("exception in a timer callback: upset"), std::string::npos);
}

TEST_F(TimerTest, WhenKillReturnsTheCallbackIsOver)
{
    Start();
    EventC entered;
    EventC leave;
    std::atomic<bool> over{false};
    s_inside = [&](std::uint32_t, std::uint32_t) {
        entered.set();
        static_cast<void>(leave.wait(20000));
        over = true;
    };
    const std::uint32_t id = Set(10, 1, TIMER_PERIODIC, 0);
    EXPECT_EQ(entered.wait(20000), BSS::RC_OK);
    std::thread helper([&] { leave.set(); });
    engine.killTimer(id);
    EXPECT_TRUE(over.load());
    helper.join();
}

TEST_F(TimerTest, AnEngineThatNeverCatchesUpLetsOthersKillTheTimer)
{
    constexpr std::int64_t CALL_US = 1000;
    std::atomic<int> calls{0};
    s_inside = [&](std::uint32_t, std::uint32_t) {
        ticks.add(100); // more than a period
        const std::int64_t end = BSS::HAL::TickMicroseconds() + CALL_US;
        while (BSS::HAL::TickMicroseconds() < end) {
        }
        ++calls;
    };
    Start();
    int whileKilling = 0;
    for (int round = 0; round < 5; ++round) {
        const std::uint32_t id = Set(10, 1, TIMER_PERIODIC, 0);
        const int before = calls.load();
        EXPECT_TRUE(Support::Eventually([&] { return calls.load() > before + 5; }));
        const int seen = calls.load();
        EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
        whileKilling += calls.load() - seen;
    }
    // A dozen each time, more where this thread is kept off the processors; one that is left out waits for
    // thousands.
    EXPECT_LT(whileKilling, 600);
}

TEST_F(TimerTest, TimersMayBeSetAndKilledFromManyThreadsWhileTheyFire)
{
    Start();
    std::vector<std::thread> threads;
    for (std::uint32_t n = 0; n < 4; ++n) {
        threads.emplace_back([&, n] {
            std::uint32_t previous = 0;
            for (std::uint32_t i = 0; i < 500; ++i) {
                const std::uint32_t id =
                    Set(1 + i % 7, n, i % 3 == 0 ? TIMER_PERIODIC : TIMER_ONE_SHOT, i % 5);
                if (i % 3 == 0) {
                    EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
                }
                static_cast<void>(engine.killTimer(previous));
                previous = id;
            }
            static_cast<void>(engine.killTimer(previous));
        });
    }
    EXPECT_TRUE(ticks.turnStepwise(200));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_TRUE(reports.Reports().empty());
}

} // namespace
