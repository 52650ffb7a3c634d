// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Threads that are ended by force between two steps: after they have let go of something and before they have
// woken who waits for it, and after they have been woken and before they have returned. The linker leads the
// platform layer's bare system calls through here, where a thread can be held until the signal that ends it
// has been sent. Each in a child process.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_WaitSlot_Posix.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Support/ChildExpect.h"
#include "Support/Eventually.h"
#include "Support/SystemCall_Posix.h"
#include "TaskFixture.h"

#include <atomic>
#include <cstdarg>
#include <fstream>
#include <linux/futex.h>
#include <mutex>
#include <sched.h>
#include <sys/syscall.h>
#include <thread>

using namespace BSS::TSK;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

enum class HoldT
{
    Nowhere,
    BeforeWake, ///< the thread is about to wake another
    AfterSleep  ///< the thread has been woken
};

std::atomic<HoldT> s_hold{HoldT::Nowhere};
std::atomic<std::uint32_t> s_heldThread{0}; ///< which is held there, once
std::atomic<bool> s_bHeld{false};
std::atomic<bool> s_bSignalSent{false};
std::atomic<std::uint32_t> s_sleeper{0}; ///< a thread that is to go to sleep
std::atomic<bool> s_bGoesToSleep{false};

// On its way back from the second call the thread takes the signal.
void HoldUntilTheSignalIsSent(HoldT where)
{
    if (s_hold.load() != where || s_heldThread.load() != BSS::HAL::CurrentThreadId()) return;
    s_hold = HoldT::Nowhere;
    s_bHeld = true;
    while (!s_bSignalSent.load())
        ::sched_yield();
    ::sched_yield();
}

bool IsAsleep(std::uint32_t threadId)
{
    std::ifstream file("/proc/self/task/" + std::to_string(threadId) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t name = text.rfind(')');
    return name != std::string::npos && text.substr(name, 3) == ") S";
}

// Until the thread is in the kernel because of a wait of ours.
bool SleeperSleeps()
{
    return Support::Eventually([] { return s_bGoesToSleep.load() && IsAsleep(s_sleeper.load()); });
}

} // namespace

extern "C" long __wrap_syscall(long number, ...)
{
    std::va_list arguments;
    va_start(arguments, number);
    const Support::CallValuesT values = Support::CallValuesOf(arguments);
    va_end(arguments);
    const int operation = number == SYS_futex ? static_cast<int>(values[1]) & FUTEX_CMD_MASK : -1;
    const bool bSleeps = operation == FUTEX_WAIT || operation == FUTEX_WAIT_BITSET;
    if (operation == FUTEX_WAKE) HoldUntilTheSignalIsSent(HoldT::BeforeWake);
    if (bSleeps && s_sleeper.load() == BSS::HAL::CurrentThreadId()) s_bGoesToSleep = true;
    const long result = Support::MakeSystemCall(number, values);
    if (bSleeps) HoldUntilTheSignalIsSent(HoldT::AfterSleep);
    if (number == SYS_tgkill && values[2] != 0) s_bSignalSent = true;
    return result;
}

namespace {

using ForcedEndSteps = TaskTest;

void Hold(HoldT where, std::uint32_t threadId)
{
    s_heldThread = threadId;
    s_hold = where;
}

// A thread that counts how often it has got through.
class PassingC
{
public:
    template<typename StepT>
    explicit PassingC(StepT step)
        : m_thread([this, step] {
              s_sleeper = BSS::HAL::CurrentThreadId();
              while (!m_bOver.load()) {
                  step();
                  ++m_nPassed;
              }
          })
    {}
    int Passed() const { return m_nPassed.load(); }
    void End()
    {
        m_bOver = true;
        m_thread.join();
    }

private:
    std::atomic<int> m_nPassed{0};
    std::atomic<bool> m_bOver{false};
    std::thread m_thread;
};

// The task holds the lock of its table of events, in which another thread wants to attach one.
void EndAfterALockIsFree(const std::shared_ptr<Support::LogRecorder>& log, TaskSettingsT settings)
{
    CommandTaskC task(std::move(settings), 10);
    EventC event;
    std::atomic<bool> entered{false};
    std::atomic<bool> go{false};
    task.start();
    task.postCommand(MakeCommand("hold", [&] {
        entered = true;
        while (!go.load())
            ::sched_yield();
    }));
    CHILD_EXPECT(Support::Eventually([&] { return entered.load(); }));
    const auto attach = [&] {
        CHILD_EXPECT(task.attachEvent(event.getHandle(), [](BSS::HAL::WaitHandleT) {}) == BSS::RC_OK);
    };
    attach(); // for which the task will look into its table
    std::unique_lock<std::mutex> waits(BSS::HAL::WaitLock());
    go = true;
    // The task has the table and does not get any further, as it asks whether the event is open.
    PassingC attaching(attach);
    CHILD_EXPECT(SleeperSleeps());
    Hold(HoldT::BeforeWake, task.getTaskId());
    waits.unlock();
    CHILD_EXPECT(Support::Eventually([] { return s_bHeld.load(); }));
    const int before = attaching.Passed();
    task.kill();
    CHILD_EXPECT(s_bSignalSent.load());
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(log->Beginning("6 TaskC::kill() the system did not end").empty());
    CHILD_EXPECT(Support::Eventually([&] { return attaching.Passed() > before; }));
    attaching.End();
    std::exit(0);
}

TEST_F(ForcedEndSteps, AThreadThatIsEndedAfterItHasFreedALockStillWakesWhoWaitsForIt)
{
    EXPECT_EXIT(EndAfterALockIsFree(log, Settings("lock")), testing::ExitedWithCode(0), "");
}

// The task has taken another thread out of the list of an event, and has yet to wake it.
void EndAfterAnEventIsSet(TaskSettingsT settings)
{
    EventC event;
    std::atomic<bool> go{false};
    PassingC waiting([&] { CHILD_EXPECT(event.wait(-1) == BSS::RC_OK); });
    WorkTaskC task(std::move(settings), [&] {
        while (!go.load())
            ::sched_yield();
        event.set();
        for (;;)
            ::sched_yield();
    });
    task.start();
    CHILD_EXPECT(SleeperSleeps());
    Hold(HoldT::BeforeWake, task.getTaskId());
    go = true;
    CHILD_EXPECT(Support::Eventually([] { return s_bHeld.load(); }));
    CHILD_EXPECT(waiting.Passed() == 0);
    task.kill();
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(Support::Eventually([&] { return waiting.Passed() == 1; }));
    std::_Exit(0); // the other waits again
}

TEST_F(ForcedEndSteps, AThreadThatIsEndedAfterItHasSetAnEventStillWakesWhoWaitsForIt)
{
    EXPECT_EXIT(EndAfterAnEventIsSet(Settings("event")), testing::ExitedWithCode(0), "");
}

// The task has been woken by the one signal there is, and has not returned with it.
void EndAfterASignalHasCome(TaskSettingsT settings)
{
    EventC event;
    std::atomic<bool> returned{false};
    WorkTaskC task(std::move(settings), [&] {
        s_sleeper = BSS::HAL::CurrentThreadId();
        static_cast<void>(event.wait(-1));
        returned = true;
        for (;;)
            ::sched_yield();
    });
    task.start();
    CHILD_EXPECT(Support::Eventually([&] { return s_sleeper.load() == task.getTaskId(); }));
    CHILD_EXPECT(SleeperSleeps()); // it is the first in the list
    Hold(HoldT::AfterSleep, task.getTaskId());
    s_bGoesToSleep = false;
    PassingC waiting([&] { CHILD_EXPECT(event.wait(-1) == BSS::RC_OK); });
    CHILD_EXPECT(SleeperSleeps());
    event.set();
    CHILD_EXPECT(Support::Eventually([] { return s_bHeld.load(); }));
    CHILD_EXPECT(waiting.Passed() == 0);
    task.kill();
    CHILD_EXPECT(!task.isRunning());
    CHILD_EXPECT(!returned.load());
    CHILD_EXPECT(Support::Eventually([&] { return waiting.Passed() == 1; }));
    std::_Exit(0); // the other waits again
}

TEST_F(ForcedEndSteps, ASignalThatHasWokenAThreadWhichIsEndedGoesToTheNext)
{
    EXPECT_EXIT(EndAfterASignalHasCome(Settings("signal")), testing::ExitedWithCode(0), "");
}

} // namespace
