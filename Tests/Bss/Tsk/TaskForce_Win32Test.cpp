// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The forced end of tasks that do not listen, each in a child process, which must come to a clean end
// afterwards.
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "ForcedEnd.h"
#include "Support/ChildExpect.h"

#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

using namespace BSS::TSK;
using namespace TaskTests;

namespace {

using TaskForceTest = TaskTest;

constexpr DWORD FORCED = 0xFFFFFFFE;

// The thread is over for the system too, with the code that tells how.
void KillASpinningTask(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    DeafTaskC deaf(std::move(settings));
    deaf.StartCounting();
    const HANDLE thread = OpenThread(SYNCHRONIZE | THREAD_QUERY_INFORMATION, FALSE, deaf.task.getTaskId());
    CHILD_EXPECT(thread != nullptr);
    deaf.KillByForce(*log);
    DWORD code = 0;
    CHILD_EXPECT(WaitForSingleObject(thread, 0) == WAIT_OBJECT_0);
    CHILD_EXPECT(GetExitCodeThread(thread, &code) && code == FORCED);
    CloseHandle(thread);
    deaf.RunAgain();
    std::exit(0);
}

TEST_F(TaskForceTest, KillEndsATaskThatReachesNoInterruptionPointAndTheProcessGoesOn)
{
    EXPECT_EXIT(KillASpinningTask(log, Settings("deaf")), testing::ExitedWithCode(0), "");
}

void KillACommandTask(TaskSettingsT settings)
{
    CommandTaskC task(std::move(settings), 10);
    KillInsideACommand(task);
    ExpectToServeAgain(task);
    std::exit(0);
}

TEST_F(TaskForceTest, ACommandTaskThatWasEndedByForceServesAgainAfterAStart)
{
    EXPECT_EXIT(KillACommandTask(Settings("commands")), testing::ExitedWithCode(0), "");
}

TEST_F(TaskForceTest, WhoeverWaitsForATaskThatIsEndedByForceIsLetGo)
{
    EXPECT_EXIT(KillATaskThatIsWaitedFor(Settings("waited for")), testing::ExitedWithCode(0), "");
}

// Threads that start tasks come and go. What such a thread leaves to be done at its end must not reach for
// its thread-local memory, which has gone by then: it would spoil the heap.
TEST_F(TaskForceTest, TasksMayBeStartedByThreadsThatEndAndTheHeapStaysWhole)
{
    for (int i = 0; i < 200; ++i) {
        WorkTaskC task(Settings("short"), [] {});
        std::async(std::launch::async, [&] { task.start(); }).get();
        ASSERT_TRUE(task.waitForStop(20000));
        const std::vector<std::string> others(20, std::string(i % 200, 'x'));
    }
}

} // namespace
