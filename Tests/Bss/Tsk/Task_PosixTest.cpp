// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Priorities without the permission to, each in a child process.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"
#include "Support/ChildExpect.h"
#include "TaskFixture.h"

#include <atomic>
#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

using namespace BSS::TSK;
using TaskTests::OPTION;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

using TaskPermissionTest = TaskTest;

void GiveUpPermissions()
{
    const rlimit none = {0, 0};
    CHILD_EXPECT(::setrlimit(RLIMIT_RTPRIO, &none) == 0);
    CHILD_EXPECT(::setrlimit(RLIMIT_NICE, &none) == 0);
    CHILD_EXPECT(::getuid() != 0 || ::setuid(65534) == 0);
}

void Nothing(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}

void TimersWithoutPermission(Support::ReportCapture& reports)
{
    GiveUpPermissions();
    Timer::TimerEngineC engine;
    CHILD_EXPECT(engine.start(1) == 1);
    CHILD_EXPECT(reports.Reports().size() == 1);
    CHILD_EXPECT(reports.Reports()[0].text == "0");
    CHILD_EXPECT(reports.Reports()[0].line == 1142);
    const std::uint32_t id = engine.setTimer(1000, 1, &Nothing, 0, 0, Timer::TIMER_FIRST_AFTER_PERIOD);
    CHILD_EXPECT(id != 0);
    CHILD_EXPECT(engine.killTimer(id) == BSS::RC_OK);
    CHILD_EXPECT(BSS::HAL::CurrentThreadPriority() == 0);
    CHILD_EXPECT(engine.stop() == 1);
    CHILD_EXPECT(reports.Reports().size() == 1);
    std::exit(0);
}

TEST_F(TaskPermissionTest, ARefusedPriorityIsReportedForTheEngineAndNotForThoseWhoSetTimers)
{
    EXPECT_EXIT(TimersWithoutPermission(reports), testing::ExitedWithCode(0), "");
}

void StartWithoutPermission(Support::ReportCapture& reports, TaskSettingsT settings)
{
    GiveUpPermissions();
    TskMgr::instance().setTaskOptions(OPTION, {15, 0});
    std::atomic<int> priority{99};
    WorkTaskC task(std::move(settings), [&] { priority = BSS::HAL::CurrentThreadPriority(); });
    task.start();
    CHILD_EXPECT(task.waitForStop(20000));
    CHILD_EXPECT(priority.load() == 0);
    CHILD_EXPECT(reports.Reports().size() == 1);
    CHILD_EXPECT(reports.Reports()[0].text == "bOK");
    CHILD_EXPECT(reports.Reports()[0].line == 543);
    std::exit(0);
}

TEST_F(TaskPermissionTest, ARefusedPriorityIsReportedAndTheTaskRunsAtNormalPriority)
{
    EXPECT_EXIT(StartWithoutPermission(reports, Settings()), testing::ExitedWithCode(0), "");
}

} // namespace
