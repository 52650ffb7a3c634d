// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The priorities of tasks and of those who set timers. What is above normal is tested where the system
// permits it.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"
#include "PriorityPermission.h"
#include "Support/ManualTicks.h"
#include "TaskFixture.h"

#include <atomic>
#include <thread>

using namespace BSS::TSK;
using namespace BSS::HAL;
using TaskTests::IsPermitted;
using TaskTests::OPTION;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

class PriorityTest : public TaskTest
{
protected:
    int PriorityOfATask(int priority)
    {
        TskMgr::instance().setTaskOptions(OPTION, {priority, 0});
        int seen = 99;
        WorkTaskC task(Settings(), [&] { seen = CurrentThreadPriority(); });
        task.start();
        EXPECT_TRUE(task.waitForStop(-1));
        return seen;
    }
};

TEST_F(PriorityTest, EveryPriorityBelowNormalIsTheOneThatTheTaskRunsAt)
{
    for (const int priority : {0, -1, -2, -15})
        EXPECT_EQ(PriorityOfATask(priority), priority);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(PriorityTest, EveryPriorityAboveNormalIsTheOneThatTheTaskRunsAt)
{
    if (!IsPermitted(1) || !IsPermitted(PRIORITY_TIME_CRITICAL)) GTEST_SKIP() << "not permitted here";
    for (const int priority : {1, 2, PRIORITY_TIME_CRITICAL})
        EXPECT_EQ(PriorityOfATask(priority), priority);
    EXPECT_TRUE(reports.Reports().empty());
}

// Keeps the priority at which a certain thread looks at the clock.
class WatchingTicksC final : public BSS::TIM::TickSourceI
{
public:
    std::uint32_t getTick() noexcept override
    {
        if (CurrentThreadId() == watched.load()) seen = CurrentThreadPriority();
        return m_ticks.getTick();
    }
    void waitUntil(WaitHandleT event, std::uint32_t dueTick) noexcept override
    {
        m_ticks.waitUntil(event, dueTick);
    }
    void wait(WaitHandleT event) noexcept override { m_ticks.wait(event); }

    std::atomic<std::uint32_t> watched{0};
    std::atomic<int> seen{99};

private:
    Support::ManualTicks m_ticks;
};

void Nothing(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}

TEST_F(PriorityTest, WhoSetsATimerIsTimeCriticalMeanwhileAndAfterwardsWhatHeWas)
{
    if (!IsPermitted(PRIORITY_TIME_CRITICAL)) GTEST_SKIP() << "not permitted here";
    for (const int priority : {0, -1, -15}) {
        WatchingTicksC ticks;
        BSS::TIM::TickClockC clock(ticks);
        Timer::TimerEngineC engine(clock);
        ASSERT_EQ(engine.start(1), 1);
        int after = 99;
        std::thread([&] {
            ApplyThreadPriority(CurrentThreadId(), priority);
            ticks.watched = CurrentThreadId();
            const std::uint32_t id =
                engine.setTimer(1000, 1, &Nothing, 0, 0, Timer::TIMER_FIRST_AFTER_PERIOD);
            ticks.watched = 0;
            after = CurrentThreadPriority();
            EXPECT_EQ(engine.killTimer(id), BSS::RC_OK);
        }).join();
        EXPECT_EQ(ticks.seen.load(), PRIORITY_TIME_CRITICAL);
        EXPECT_EQ(after, priority);
        EXPECT_EQ(engine.stop(), 1);
    }
    EXPECT_TRUE(reports.Reports().empty());
}

} // namespace
