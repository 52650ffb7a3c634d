// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Short moments in the life of a task, held for as long as a test needs: between the start and main(), and
// between the end of main() and that of the thread.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "HoldingLog.h"
#include "Support/Eventually.h"
#include "TaskFixture.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace BSS::TSK;
using TaskTests::HoldingLogC;
using TaskTests::OPTION;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

using TaskMomentsTest = TaskTest;

TaskSettingsT SettingsWith(const std::shared_ptr<HoldingLogC>& log)
{
    return {"held", OPTION, OPTION, true, false, log};
}

TEST_F(TaskMomentsTest, AWaitWithALimitDoesNotWaitBeyondItForTheLastLinesOfATaskThatHasStopped)
{
    const auto held = std::make_shared<HoldingLogC>("TaskC::c_main() end");
    WorkTaskC task(SettingsWith(held), [] {});
    task.start();
    EXPECT_EQ(held->entered.wait(20000), BSS::RC_OK);
    EXPECT_FALSE(task.isRunning());
    std::atomic<int> over{0};
    std::thread waiting([&] {
        over += task.waitForStop(0) ? 1 : 0;
        over += task.waitForStop(1) ? 1 : 0;
    });
    EXPECT_TRUE(Support::Eventually([&] { return over.load() == 2; }));
    held->leave.set();
    waiting.join();
    EXPECT_TRUE(task.waitForStop(-1));
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
}

// The start fails after the thread has been made.
TEST_F(TaskMomentsTest, AStartThatFailsAfterAllRunsNothingAndTheNextStartWorks)
{
    class RefusingC final : public TaskC
    {
    public:
        explicit RefusingC(TaskSettingsT settings) : TaskC(std::move(settings)) {}
        void setPriority() override
        {
            if (refuses) throw std::runtime_error("no priority");
        }
        bool refuses = true;
        std::atomic<int> runs{0};

    protected:
        void main() override { ++runs; }
    };
    RefusingC task(Settings("refusing"));
    EXPECT_THROW(task.start(), std::runtime_error);
    EXPECT_FALSE(task.isRunning());
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_EQ(task.runs.load(), 0);
    EXPECT_EQ(log->Beginning("4 TaskC::c_main() begin"), "");
    task.refuses = false;
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_EQ(task.runs.load(), 1);
}

TEST_F(TaskMomentsTest, AThreadWhoseObjectHasGoneBeforeMainNeverEntersIt)
{
    const auto held = std::make_shared<HoldingLogC>("TaskC::c_main() begin");
    const auto ran = std::make_shared<std::atomic<bool>>(false);
    {
        WorkTaskC task(SettingsWith(held), [ran] { *ran = true; });
        task.start();
        EXPECT_EQ(held->entered.wait(20000), BSS::RC_OK);
    }
    EXPECT_EQ(reports.Count("W: ~TaskC(this = 0x%lx): not stopped before destructor call\r\n"), 1u);
    held->leave.set();
    EXPECT_TRUE(
        Support::Eventually([&] { return !held->Beginning("4 TaskC::c_main() end: name='held'").empty(); }));
    EXPECT_FALSE(ran->load());
}

} // namespace
