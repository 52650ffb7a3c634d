// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How tests of the forced end begin and what they expect on every system. For forked children, which end at
// once where something is wrong.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Support/ChildExpect.h"
#include "Support/Eventually.h"
#include "TaskFixture.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

namespace TaskTests {

inline constexpr int END_LIMIT_MS = 20000;

/// Tells that it is running, and does so for ever without an interruption point.
[[noreturn]] inline void SpinForEver(std::atomic<bool>& entered)
{
    entered = true;
    for (std::atomic<std::uint64_t> rounds{0};;)
        ++rounds; // something that other threads could see: else the loop may be taken not to be there
}

inline void AwaitEntry(const std::atomic<bool>& entered)
{
    CHILD_EXPECT(Support::Eventually([&] { return entered.load(); }));
}

/// A task that counts without an interruption point until it is told to quit.
class DeafTaskC
{
public:
    explicit DeafTaskC(BSS::TSK::TaskSettingsT settings)
        : task(std::move(settings), [this] {
              while (!m_quit.load())
                  ++rounds;
          })
    {}

    void StartCounting()
    {
        task.start();
        CHILD_EXPECT(Support::Eventually([&] { return rounds.load() > 1000; }));
    }

    void KillByForce(const Support::LogRecorder& log)
    {
        const std::uint64_t before = BSS::HAL::TickCount64();
        task.kill();
        const std::uint64_t took = BSS::HAL::TickCount64() - before;
        CHILD_EXPECT(took >= 42);
        CHILD_EXPECT(took < 42 + END_LIMIT_MS);
        CHILD_EXPECT(!task.isRunning());
        CHILD_EXPECT(task.getState() == BSS::TSK::ComponentState::Stopped);
        const std::string line = "6 TaskC::friendly kill failed! No interruption point found in task name='" +
                                 std::string(task.getComponentName()) + "', id=";
        CHILD_EXPECT(!log.Beginning(line).empty());
    }

    /// The process goes on, with the same object even.
    void RunAgain()
    {
        m_quit = true;
        task.start();
        CHILD_EXPECT(task.waitForStop(END_LIMIT_MS));
    }

    std::atomic<std::uint64_t> rounds{0};

private:
    std::atomic<bool> m_quit{false};

public:
    WorkTaskC task;
};

/// Ends a command task inside a command, with one more message taken off the queue behind it.
inline void KillInsideACommand(BSS::TSK::CommandTaskC& task)
{
    std::atomic<bool> entered{false};
    task.postCommand(BSS::TSK::MakeCommand("spin", [&] { SpinForEver(entered); }));
    task.postCommand(BSS::TSK::MakeCommand("lost", [] {}));
    task.start();
    AwaitEntry(entered);
    task.kill();
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(task.getMsgCount() == 0);
}

inline void ExpectToServeAgain(BSS::TSK::CommandTaskC& task)
{
    std::atomic<bool> ran{false};
    task.start();
    CHILD_EXPECT(task.postCommand(BSS::TSK::MakeCommand("next", [&] { ran = true; })) == BSS::RC_OK);
    AwaitEntry(ran);
    task.stop();
    CHILD_EXPECT(task.waitForStop(END_LIMIT_MS));
}

/// Others wait for the task, with a limit and without one, while it is ended. Ends the process with 0.
[[noreturn]] inline void KillATaskThatIsWaitedFor(BSS::TSK::TaskSettingsT settings)
{
    std::atomic<bool> entered{false};
    WorkTaskC task(std::move(settings), [&] { SpinForEver(entered); });
    task.start();
    AwaitEntry(entered);
    std::atomic<int> over{0};
    std::thread first([&] { over += task.waitForStop(-1) ? 1 : 0; });
    std::thread second([&] { over += task.waitForStop(END_LIMIT_MS) ? 1 : 0; });
    task.kill();
    first.join();
    second.join();
    CHILD_EXPECT(over.load() == 2);
    std::exit(0);
}

} // namespace TaskTests
