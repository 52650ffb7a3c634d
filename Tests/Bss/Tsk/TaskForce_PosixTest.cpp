// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The forced end of tasks that do not listen, each in a child process, which must come to a clean end
// afterwards.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "ForcedEnd.h"
#include "Support/ChildExpect.h"
#include "Support/Eventually.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sched.h>
#include <string>
#include <string_view>
#include <thread>

using namespace BSS::TSK;
using namespace TaskTests;

namespace {

using TaskForceTest = TaskTest;

void KillASpinningTask(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    DeafTaskC deaf(std::move(settings));
    deaf.StartCounting();
    deaf.KillByForce(*log);
    const std::uint64_t after = deaf.rounds.load();
    for (int i = 0; i < 1000; ++i)
        ::sched_yield();
    CHILD_EXPECT(deaf.rounds.load() == after);
    deaf.RunAgain();
    std::exit(0);
}

TEST_F(TaskForceTest, KillEndsATaskThatReachesNoInterruptionPointAndTheProcessGoesOn)
{
    EXPECT_EXIT(KillASpinningTask(log, Settings("deaf")), testing::ExitedWithCode(0), "");
}

// One thread is ended while it waits for an auto-reset event; the signal must go to the other.
void KillAWaitingTask(TaskSettingsT settings)
{
    EventC event;
    std::atomic<int> waiting{0};
    std::atomic<int> woken{0};
    const auto work = [&] {
        ++waiting;
        if (event.wait(-1) == BSS::RC_OK) ++woken;
    };
    WorkTaskC first(settings, work);
    WorkTaskC second(settings, work);
    first.start();
    CHILD_EXPECT(Support::Eventually([&] { return waiting.load() == 1; }));
    second.start();
    CHILD_EXPECT(Support::Eventually([&] { return waiting.load() == 2; }));
    first.kill();
    event.set();
    CHILD_EXPECT(second.waitForStop(20000));
    CHILD_EXPECT(woken.load() == 1);
    std::exit(0);
}

TEST_F(TaskForceTest, AThreadThatIsEndedWhileItWaitsTakesNoSignalWithIt)
{
    EXPECT_EXIT(KillAWaitingTask(Settings("waiting")), testing::ExitedWithCode(0), "");
}

// The thread is ended inside a command, and inside an event handler, whose turn it holds.
void KillACommandTask(TaskSettingsT settings)
{
    CommandTaskC task(std::move(settings), 10);
    KillInsideACommand(task);

    std::atomic<bool> inHandler{false};
    EventC event;
    task.start();
    CHILD_EXPECT(task.attachEvent(event.getHandle(),
                                  [&](BSS::HAL::WaitHandleT) { SpinForEver(inHandler); }) == BSS::RC_OK);
    event.set();
    AwaitEntry(inHandler);
    task.kill();
    CHILD_EXPECT(task.detachEvent(event.getHandle()) == BSS::RC_OK);

    ExpectToServeAgain(task);
    std::exit(0);
}

TEST_F(TaskForceTest, ACommandTaskThatWasEndedByForceServesAgainAfterAStart)
{
    EXPECT_EXIT(KillACommandTask(Settings("commands")), testing::ExitedWithCode(0), "");
}

// A thread that lets no signal through: it cannot be ended, and is not when it lets them through later.
void KillATaskThatCannotBeEnded(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    std::atomic<bool> entered{false};
    std::atomic<bool> quit{false};
    std::atomic<bool> ended{false};
    WorkTaskC task(std::move(settings), [&] {
        sigset_t all;
        sigset_t before;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, &before);
        entered = true;
        while (!quit.load())
            ::sched_yield();
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        ended = true;
    });
    task.start();
    CHILD_EXPECT(Support::Eventually([&] { return entered.load(); }));
    const std::uint32_t id = task.getTaskId();
    task.kill();
    CHILD_EXPECT(log->Has(
        BSS::UTI::Format("6 TaskC::kill() the system did not end task name='unreachable', id=%08x\r\n", id)));
    CHILD_EXPECT(task.isRunning());
    CHILD_EXPECT(task.getTaskId() == id);
    CHILD_EXPECT(task.getState() == ComponentState::Stopped);
    quit = true;
    CHILD_EXPECT(task.waitForStop(20000));
    CHILD_EXPECT(ended.load());
    std::exit(0);
}

TEST_F(TaskForceTest, AKillThatTheSystemDoesNotCarryOutIsLoggedAndTheTaskGoesOn)
{
    EXPECT_EXIT(KillATaskThatCannotBeEnded(log, Settings("unreachable")), testing::ExitedWithCode(0), "");
}

TEST_F(TaskForceTest, WhoeverWaitsForATaskThatIsEndedByForceIsLetGo)
{
    EXPECT_EXIT(KillATaskThatIsWaitedFor(Settings("waited for")), testing::ExitedWithCode(0), "");
}

// Is in the middle of its line until it may leave, and a while longer.
class SlowConsumerC final : public BSS::DBG::DbgLogConsumerC
{
public:
    SlowConsumerC() : DbgLogConsumerC("slow", BSS::DBG::PrefixKind::None) {}
    std::atomic<bool> entered{false};
    std::atomic<bool> leave{false};
    std::string text;

protected:
    bool write(std::string_view lines) override
    {
        text += lines.front();
        entered = true;
        while (!leave.load())
            ::sched_yield();
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
        while (std::chrono::steady_clock::now() < end)
            ::sched_yield();
        text += lines.substr(1);
        return true;
    }
};

void KillATaskThatLogs(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    SlowConsumerC consumer;
    WorkTaskC task(std::move(settings), [&] {
        for (;;)
            consumer.Log(4, "line");
    });
    task.start();
    AwaitEntry(consumer.entered);
    std::thread other([&] {
        CHILD_EXPECT(
            Support::Eventually([&] { return !log->Beginning("6 TaskC::friendly kill failed!").empty(); }));
        consumer.leave = true;
    });
    task.kill();
    other.join();
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(consumer.text.ends_with("line\n"));
    consumer.Log(4, "next"); // waits for nobody
    CHILD_EXPECT(consumer.text.ends_with("line\nnext\n"));
    std::exit(0);
}

TEST_F(TaskForceTest, ATaskThatLogsEndsBehindItsLineAndLeavesNoLockBehind)
{
    EXPECT_EXIT(KillATaskThatLogs(log, Settings("logs")), testing::ExitedWithCode(0), "");
}

class SpinningHookC final : public CommandTaskC
{
public:
    explicit SpinningHookC(TaskSettingsT settings) : CommandTaskC(std::move(settings), 10)
    {
        setWaitTimeout(1);
    }
    std::atomic<bool> spins{true};
    std::atomic<int> entered{0};

protected:
    void onTimeout() override
    {
        ++entered;
        while (spins.load()) {
        }
    }
};

void KillInsideTheTimeoutHook(const TaskSettingsT& settings)
{
    {
        SpinningHookC task(settings);
        task.start();
        CHILD_EXPECT(Support::Eventually([&] { return task.entered.load() == 1; }));
        task.kill();
        task.spins = false;
        task.start();
        CHILD_EXPECT(Support::Eventually([&] { return task.entered.load() > 2; }));
        task.stop();
        CHILD_EXPECT(task.waitForStop(20000));
    }
    {
        SpinningHookC task(settings);
        task.start();
        CHILD_EXPECT(Support::Eventually([&] { return task.entered.load() == 1; }));
        task.kill();
    }
    std::exit(0);
}

TEST_F(TaskForceTest, ACommandTaskThatWasEndedInsideItsHookRunsAgainAndCanBeDestroyed)
{
    EXPECT_EXIT(KillInsideTheTimeoutHook(Settings("hook")), testing::ExitedWithCode(0), "");
}

// A handler runs for ever and another thread waits in detachEvent for it.
void KillInsideAHandlerThatIsBeingDetached(TaskSettingsT settings)
{
    CommandTaskC task(std::move(settings), 10);
    EventC event;
    std::atomic<bool> entered{false};
    task.start();
    task.attachEvent(event.getHandle(), [&](BSS::HAL::WaitHandleT) { SpinForEver(entered); });
    event.set();
    AwaitEntry(entered);
    std::thread detaching([&] { CHILD_EXPECT(task.detachEvent(event.getHandle()) == BSS::RC_OK); });
    task.kill();
    detaching.join();
    std::exit(0);
}

TEST_F(TaskForceTest, WhoeverWaitsForAHandlerThatIsEndedByForceIsLetGo)
{
    EXPECT_EXIT(KillInsideAHandlerThatIsBeingDetached(Settings("handler")), testing::ExitedWithCode(0), "");
}

} // namespace
