// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a priority that the system refuses leaves behind, on a thread of a child process that has given up its
// permissions.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "PriorityPermission.h"
#include "TaskFixture.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <sched.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

using namespace BSS::TSK;
using namespace BSS::HAL;
using TaskTests::OPTION;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

using ThreadPriorityTest = TaskTest;

constexpr int DONE = 0;

#define OR_EXIT(condition)                                                                                   \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "line %d: %s\n", __LINE__, #condition);                                     \
            std::_Exit(1);                                                                                   \
        }                                                                                                    \
    } while (false)

void GiveUpPermissions()
{
    const rlimit none = {0, 0};
    OR_EXIT(::setrlimit(RLIMIT_RTPRIO, &none) == 0);
    OR_EXIT(::setrlimit(RLIMIT_NICE, &none) == 0);
    OR_EXIT(::getuid() != 0 || ::setuid(65534) == 0);
}

bool Apply(int priority)
{
    return ApplyThreadPriority(CurrentThreadId(), priority);
}

[[noreturn]] void OnAThread(const std::function<int()>& body)
{
    int code = 1;
    std::thread([&] { code = body(); }).join();
    std::_Exit(code);
}

int RefusedInRealTime()
{
    OR_EXIT(Apply(-1) && Apply(PRIORITY_TIME_CRITICAL));
    GiveUpPermissions();
    OR_EXIT(!Apply(0)); // the nice value of before cannot go down any more
    OR_EXIT(::sched_getscheduler(0) == SCHED_RR);
    OR_EXIT(CurrentThreadPriority() == PRIORITY_TIME_CRITICAL);
    OR_EXIT(Apply(-2)); // going up can
    OR_EXIT(CurrentThreadPriority() == -2);
    return DONE;
}

TEST_F(ThreadPriorityTest, ARefusedPriorityLeavesARealTimeThreadInRealTime)
{
    if (!TaskTests::IsPermitted(PRIORITY_TIME_CRITICAL)) GTEST_SKIP() << "not permitted here";
    EXPECT_EXIT(OnAThread(&RefusedInRealTime), testing::ExitedWithCode(DONE), "");
}

int RefusedForAnIdleThread()
{
    const sched_param parameter = {0};
    OR_EXIT(::sched_setscheduler(0, SCHED_IDLE, &parameter) == 0);
    GiveUpPermissions();
    OR_EXIT(!Apply(1));
    OR_EXIT(::sched_getscheduler(0) == SCHED_IDLE);
    OR_EXIT(CurrentThreadPriority() == 0);
    return DONE;
}

TEST_F(ThreadPriorityTest, ARefusedPriorityLeavesAnIdleThreadInItsClass)
{
    EXPECT_EXIT(OnAThread(&RefusedForAnIdleThread), testing::ExitedWithCode(DONE), "");
}

int BackUpToNormal()
{
    GiveUpPermissions();
    OR_EXIT(Apply(-1));
    OR_EXIT(!Apply(0));
    OR_EXIT(CurrentThreadPriority() == -1);
    return DONE;
}

TEST_F(ThreadPriorityTest, GoingBackFromBelowNormalNeedsThePermissionToo)
{
    EXPECT_EXIT(OnAThread(&BackUpToNormal), testing::ExitedWithCode(DONE), "");
}

// As after `nice -n 10`, without the permission to undo it.
int PrioritiesOfANiceProcess(Support::ReportCapture& reports, const TaskSettingsT& settings)
{
    const int before = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
    const int nice = std::max(before, std::min(before + 10, 15));
    for (const pid_t thread : {::getpid(), 0})
        OR_EXIT(::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), nice) == 0);
    GiveUpPermissions();
    int seen = 99;
    WorkTaskC task(settings, [&] { seen = CurrentThreadPriority(); }); // of priority 0
    task.start();
    OR_EXIT(task.waitForStop(20000));
    OR_EXIT(seen == 0);
    OR_EXIT(reports.Reports().empty());
    for (const int priority : {0, -1, -2, -15}) {
        OR_EXIT(Apply(priority));
        OR_EXIT(CurrentThreadPriority() == priority);
    }
    return DONE;
}

TEST_F(ThreadPriorityTest, PrioritiesAreRelativeToTheNiceValueOfTheProcess)
{
    EXPECT_EXIT(OnAThread([&] { return PrioritiesOfANiceProcess(reports, Settings()); }),
                testing::ExitedWithCode(DONE), "");
}

int StartedFromBelowNormal(Support::ReportCapture& reports, const TaskSettingsT& settings)
{
    GiveUpPermissions();
    OR_EXIT(Apply(-1));
    int seen = 99;
    WorkTaskC task(settings, [&] { seen = CurrentThreadPriority(); }); // of priority 0
    task.start();
    OR_EXIT(task.waitForStop(20000));
    OR_EXIT(seen == -1);
    OR_EXIT(reports.Count("bOK") == 1);
    return DONE;
}

TEST_F(ThreadPriorityTest, ATaskThatIsStartedFromBelowNormalStaysThereAndIsReported)
{
    EXPECT_EXIT(OnAThread([&] { return StartedFromBelowNormal(reports, Settings()); }),
                testing::ExitedWithCode(DONE), "");
}

} // namespace
