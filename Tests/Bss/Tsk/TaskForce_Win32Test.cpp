// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The forced end of tasks that do not listen, each in a child process, which must come to a clean end
// afterwards.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Support/ChildExpect.h"
#include "Support/Eventually.h"
#include "TaskFixture.h"

#include <atomic>
#include <cstdlib>
#include <thread>
#include <windows.h>

using namespace BSS::TSK;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

using TaskForceTest = TaskTest;

constexpr DWORD FORCED = 0xFFFFFFFE;
constexpr DWORD LIMIT_MS = 20000;

void KillASpinningTask(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    std::atomic<std::uint64_t> rounds{0};
    std::atomic<bool> quit{false};
    WorkTaskC task(std::move(settings), [&] {
        while (!quit.load())
            ++rounds;
    });
    task.start();
    CHILD_EXPECT(Support::Eventually([&] { return rounds.load() > 1000; }));
    const HANDLE thread = OpenThread(SYNCHRONIZE | THREAD_QUERY_INFORMATION, FALSE, task.getTaskId());
    CHILD_EXPECT(thread != nullptr);
    const std::uint64_t before = BSS::HAL::TickCount64();
    task.kill();
    const std::uint64_t took = BSS::HAL::TickCount64() - before;
    CHILD_EXPECT(took >= 42);
    CHILD_EXPECT(took < 42 + LIMIT_MS);
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(task.getState() == ComponentState::Stopped);
    CHILD_EXPECT(
        !log->Beginning("6 TaskC::friendly kill failed! No interruption point found in task name='deaf', id=")
             .empty());
    // The thread is over for the system too, with the code that tells how.
    DWORD code = 0;
    CHILD_EXPECT(WaitForSingleObject(thread, 0) == WAIT_OBJECT_0);
    CHILD_EXPECT(GetExitCodeThread(thread, &code) && code == FORCED);
    CloseHandle(thread);
    // The process goes on, with the same object even.
    quit = true;
    task.start();
    CHILD_EXPECT(task.waitForStop(LIMIT_MS));
    std::exit(0);
}

TEST_F(TaskForceTest, KillEndsATaskThatReachesNoInterruptionPointAndTheProcessGoesOn)
{
    EXPECT_EXIT(KillASpinningTask(log, Settings("deaf")), testing::ExitedWithCode(0), "");
}

// The thread is ended inside a command, with more messages taken off the queue behind it.
void KillACommandTask(TaskSettingsT settings)
{
    CommandTaskC task(std::move(settings), 10);
    std::atomic<bool> inCommand{false};
    task.postCommand(MakeCommand("spin", [&] {
        inCommand = true;
        for (;;) {
        }
    }));
    task.postCommand(MakeCommand("lost", [] {}));
    task.start();
    CHILD_EXPECT(Support::Eventually([&] { return inCommand.load(); }));
    task.kill();
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(task.getMsgCount() == 0);
    std::atomic<bool> ran{false};
    task.start();
    CHILD_EXPECT(task.postCommand(MakeCommand("next", [&] { ran = true; })) == BSS::RC_OK);
    CHILD_EXPECT(Support::Eventually([&] { return ran.load(); }));
    task.stop();
    CHILD_EXPECT(task.waitForStop(LIMIT_MS));
    std::exit(0);
}

TEST_F(TaskForceTest, ACommandTaskThatWasEndedByForceServesAgainAfterAStart)
{
    EXPECT_EXIT(KillACommandTask(Settings("commands")), testing::ExitedWithCode(0), "");
}

// Others wait for the task without limit while it is ended.
void KillATaskThatIsWaitedFor(TaskSettingsT settings)
{
    std::atomic<bool> entered{false};
    WorkTaskC task(std::move(settings), [&] {
        entered = true;
        for (;;) {
        }
    });
    task.start();
    CHILD_EXPECT(Support::Eventually([&] { return entered.load(); }));
    std::atomic<int> over{0};
    std::thread first([&] { over += task.waitForStop(-1) ? 1 : 0; });
    std::thread second([&] { over += task.waitForStop(LIMIT_MS) ? 1 : 0; });
    task.kill();
    first.join();
    second.join();
    CHILD_EXPECT(over.load() == 2);
    std::exit(0);
}

TEST_F(TaskForceTest, WhoeverWaitsForATaskThatIsEndedByForceIsLetGo)
{
    EXPECT_EXIT(KillATaskThatIsWaitedFor(Settings("waited for")), testing::ExitedWithCode(0), "");
}

} // namespace
