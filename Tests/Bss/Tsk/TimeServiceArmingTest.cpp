// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Between a request and its timer: values that do not go together, and what happens while the timer is set.
#include "Bss/Bss_Tsk/BSS_TSK_TimeRequest.h"
#include "Support/Eventually.h"
#include "TimeServiceFixture.h"

#include <functional>
#include <string>
#include <thread>

using namespace BSS::TSK;
using namespace BSS::TIM;
using TaskTests::TimeServiceTest;

namespace {

// What no request does by itself: one of its parts with values that do not go together.
class ArmedPartTest : public TimeServiceTest
{
protected:
    std::string ReportOf(TimeRequestType type, std::uint32_t cycleMs, std::uint32_t offsetMs)
    {
        reports.Clear();
        part->pCmdClient = &client;
        part->slotTime = engine.getClock().now() + 1000; // it does not come to that
        part->target = GpsTimeT{2301, 0};
        part->type = type;
        part->cycleMs = cycleMs;
        part->offsetMs = offsetMs;
        armed = part->Arm(0);
        static_cast<void>(engine.killTimer(armed));
        return Report();
    }

    const std::shared_ptr<TimeRequestT> part = TimeRequestT::Make(engine, gps, log);
    std::uint32_t armed = 0;
};

TEST_F(ArmedPartTest, ACycleInARelativeRequestIsReported)
{
    EXPECT_EQ(ReportOf(TIME_ONE_SHOT_RELATIVE, 0, 5), "none");
    EXPECT_EQ(ReportOf(TIME_ONE_SHOT_RELATIVE, 1, 0), "m_iCycle == 0 638");
    EXPECT_NE(armed, 0u) << "it is told of, and set all the same";
}

TEST_F(ArmedPartTest, ACycleOrAnOffsetInAnAbsoluteRequestIsReported)
{
    EXPECT_EQ(ReportOf(TIME_ONE_SHOT_ABSOLUTE, 0, 0), "none");
    EXPECT_EQ(ReportOf(TIME_ONE_SHOT_ABSOLUTE, 1, 0), "m_iCycle == 0 && m_iOffset == 0 663");
    EXPECT_EQ(ReportOf(TIME_ONE_SHOT_ABSOLUTE, 0, 1), "m_iCycle == 0 && m_iOffset == 0 663");
    EXPECT_NE(armed, 0u);
}

TEST_F(ArmedPartTest, AnyOtherTypeIsReportedAndSetsNoTimer)
{
    EXPECT_EQ(ReportOf(TIME_UNKNOWN, 0, 0), "false 669");
    EXPECT_EQ(armed, 0u);
    EXPECT_EQ(ReportOf(static_cast<TimeRequestType>(4), 0, 0), "false 669");
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TimeServiceRequest)");
}

// A counter that does something when it is asked for the nth time: what happens between a request's look at
// the clock and its timer.
class HookedTicksC final : public TickSourceI
{
public:
    explicit HookedTicksC(TickSourceI& ticks) : m_ticks(ticks) {}
    std::uint32_t getTick() noexcept override
    {
        if (std::this_thread::get_id() == m_asking && m_nLeft > 0 && --m_nLeft == 0) m_hook();
        return m_ticks.getTick();
    }
    void waitUntil(BSS::HAL::WaitHandleT event, std::uint32_t dueTick) noexcept override
    {
        m_ticks.waitUntil(event, dueTick);
    }
    void wait(BSS::HAL::WaitHandleT event) noexcept override { m_ticks.wait(event); }
    void HookAt(int nth, std::function<void()> hook)
    {
        m_hook = std::move(hook);
        m_nLeft = nth;
    }

private:
    TickSourceI& m_ticks;
    const std::thread::id m_asking = std::this_thread::get_id(); // the test's; the engine's asks too
    int m_nLeft = 0;
    std::function<void()> m_hook;
};

class ArmingTest : public TimeServiceTest
{
protected:
    ArmingTest()
    {
        EXPECT_EQ(hookedEngine.start(2), 1);
        reports.Clear();
    }
    ~ArmingTest() override
    {
        hookedRequest.stop();
        hookedEngine.stop();
    }

    HookedTicksC hookedTicks{ticks};
    TickClockC hookedClock{hookedTicks};
    Timer::TimerEngineC hookedEngine{hookedClock};
    TimeServiceRequestC hookedRequest{hookedEngine, gps, log};
};

TEST_F(ArmingTest, ARequestThatIsStoppedWhileItArmsLeavesNoTimerBehind)
{
    bool bStopped = false;
    hookedTicks.HookAt(3, [&] {
        hookedRequest.stop();
        bStopped = true;
    });
    EXPECT_EQ(hookedRequest.addOneShotRelativeRequest(&client, 50, Keep(), 1), BSS::RC_OK);
    EXPECT_TRUE(bStopped);
    EXPECT_FALSE(hookedRequest.isRunning());
    EXPECT_EQ(hookedEngine.getActiveCount(), 0u);
}

TEST_F(ArmingTest, AClockThatIsSetWhileARequestArmsCounts)
{
    bool bSet = false;
    hookedTicks.HookAt(2, [&] {
        gps.set(GpsTimeT{2300, 60950});
        bSet = true;
    });
    EXPECT_EQ(hookedRequest.addOneShotAbsoluteRequest(&client, GpsTimeT{2300, 61000}, Keep(), 5), BSS::RC_OK);
    EXPECT_TRUE(bSet);
    gps.pass(50);
    ticks.add(50);
    // Whoever sets a timer wakes the engine, which looks at the clock.
    hookedEngine.setTimerAt(1, 1, &TaskTests::OnTimer, 0, 0, 0);
    EXPECT_TRUE(Support::Eventually([&] { return !hookedRequest.isRunning(); }));
    hookedEngine.stop();
    EXPECT_EQ(calls, std::vector<std::uint32_t>{5});
}

} // namespace
