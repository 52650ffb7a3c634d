// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What observers, hooks and handlers throw while a command task has called them.
#include "Bss/Bss_Tsk/BSS_TSK_SystemEvents.h"
#include "CommandTaskFixture.h"

#include <boost/thread/exceptions.hpp>
#include <functional>
#include <stdexcept>

using namespace BSS::TSK;
using TaskTests::CommandTaskTest;

namespace {

using CommandTaskThrowTest = CommandTaskTest;

void ThrowLost()
{
    throw std::runtime_error("lost");
}

class ThrowingObserverC final : public BSS::UTI::ObserverC
{
public:
    explicit ThrowingObserverC(std::function<void()> action = &ThrowLost) : m_action(std::move(action)) {}
    ~ThrowingObserverC() override { detachAll(); }
    void update(BSS::UTI::SubjectC&, std::uint32_t, const SharedObjectPtrT&) override
    {
        ++calls;
        m_action();
    }
    std::atomic<int> calls{0};

private:
    const std::function<void()> m_action;
};

TEST_F(CommandTaskThrowTest, AnObserverOfTheSystemEventsDoesNotComeBetweenAPostAndItsAnswer)
{
    ThrowingObserverC observer;
    GetSystemEventSubject().attach(observer);
    Make(1);
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    BSS::ResultCodeT rc = BSS::RC_OK;
    EXPECT_NO_THROW(rc = task->postCommand(Named("b")));
    EXPECT_EQ(rc, BSS::RC_FAILED);
    EXPECT_EQ(observer.calls.load(), 1);
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] exception in a system event observer: lost\n"));
}

TEST_F(CommandTaskThrowTest, AnObserverOfTheSystemEventsDoesNotComeBetweenAStopAndItsTask)
{
    ThrowingObserverC observer;
    GetSystemEventSubject().attach(observer);
    Make(1);
    task->setOverflowText(L"full");
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    EXPECT_NO_THROW(task->stop());
    EXPECT_EQ(observer.calls.load(), 1);
    EXPECT_EQ(task->getState(), ComponentState::Stopped);
    Go();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(Order(), "a");
}

TEST_F(CommandTaskThrowTest, WhatAnOverflowObserverThrowsIsLoggedAndTheLoopGoesOn)
{
    ThrowingObserverC observer;
    Make(1);
    task->getOverflowSubject().attach(observer);
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    EXPECT_EQ(task->postCommand(Named("b")), BSS::RC_FAILED);
    Go();
    EXPECT_TRUE(Support::Eventually(
        [&] { return log->Has("6 [BSS::TSK::CommandTaskC] exception in an overflow observer: lost\n"); }));
    EXPECT_TRUE(Idle());
    EXPECT_EQ(task->postCommand(Named("c")), BSS::RC_OK);
    EXPECT_TRUE(Ordered("ac"));
}

TEST_F(CommandTaskThrowTest, WhatATimeOutObserverThrowsIsLoggedAndTheLoopGoesOn)
{
    const auto subject = std::make_shared<BSS::UTI::SubjectC>();
    ThrowingObserverC observer;
    subject->attach(observer);
    Make(10);
    task->setTimeoutSubject(subject);
    task->setWaitTimeout(1);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return observer.calls.load() >= 2; }));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] exception in a time-out observer: lost\n"));
    task->setTimeoutSubject(nullptr);
    End();
}

TEST_F(CommandTaskThrowTest, WhatAMainEndedObserverThrowsIsLoggedAndTheTaskEndsAsEver)
{
    ThrowingObserverC observer;
    Make(10);
    task->getMainEndedSubject().attach(observer);
    task->start();
    task->stop();
    EXPECT_TRUE(task->waitForStop(-1));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] exception in a main-ended observer: lost\n"));
    EXPECT_NE(log->Beginning("4 TaskC::c_main() end: name='queue'"), "");
    EXPECT_EQ(log->Beginning("6 TaskC::c_main() "), "");
}

TEST_F(CommandTaskThrowTest, AnInterruptionOfAMainEndedObserverIsNothingMore)
{
    ThrowingObserverC observer([] { throw boost::thread_interrupted(); });
    Make(10);
    task->getMainEndedSubject().attach(observer);
    task->start();
    task->stop();
    EXPECT_TRUE(task->waitForStop(-1));
    EXPECT_EQ(observer.calls.load(), 1);
    EXPECT_EQ(log->Beginning("6 "), "");
}

// A task whose hook does what the test says.
class HookedTaskC final : public CommandTaskC
{
public:
    HookedTaskC(TaskSettingsT settings, std::function<void()> action)
        : CommandTaskC(std::move(settings), 10), m_action(std::move(action))
    {
        setWaitTimeout(1);
    }
    std::atomic<int> calls{0};

protected:
    void onTimeout() override
    {
        ++calls;
        m_action();
    }

private:
    const std::function<void()> m_action;
};

TEST_F(CommandTaskThrowTest, WhatTheTimeOutHookThrowsIsLoggedAndTheLoopGoesOn)
{
    HookedTaskC hooked(Settings("hooked"), &ThrowLost);
    hooked.start();
    EXPECT_TRUE(Support::Eventually([&] { return hooked.calls.load() >= 2; }));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] exception in the time-out hook: lost\n"));
    hooked.postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    hooked.stop();
    EXPECT_TRUE(hooked.waitForStop(20000));
}

TEST_F(CommandTaskThrowTest, AnInterruptionThatTheTimeOutHookPassesOnEndsTheTaskWhichCanBeStartedAgain)
{
    std::atomic<bool> throws{true};
    HookedTaskC hooked(Settings("hooked"), [&] {
        if (throws.load()) throw boost::thread_interrupted();
    });
    hooked.start();
    EXPECT_TRUE(Support::Eventually([&] { return !hooked.isRunning(); }));
    EXPECT_EQ(hooked.calls.load(), 1);
    throws = false;
    hooked.start();
    EXPECT_TRUE(Support::Eventually([&] { return hooked.calls.load() >= 3; }));
    hooked.stop();
    EXPECT_TRUE(hooked.waitForStop(20000));
}

TEST_F(CommandTaskThrowTest, AnInterruptionThatAHandlerPassesOnEndsTheTaskAndHoldsUpNobodyWhoDetachesIt)
{
    EventC event;
    std::atomic<bool> throws{true};
    std::atomic<int> calls{0};
    Make(10);
    EXPECT_EQ(task->attachEvent(event.getHandle(),
                                [&](BSS::HAL::WaitHandleT) {
                                    ++calls;
                                    if (throws.load()) throw boost::thread_interrupted();
                                }),
              BSS::RC_OK);
    task->start();
    event.set();
    EXPECT_TRUE(Support::Eventually([&] { return !task->isRunning(); }));
    EXPECT_EQ(calls.load(), 1);
    throws = false;
    task->start();
    event.set();
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 2; }));
    EXPECT_EQ(task->detachEvent(event.getHandle()), BSS::RC_OK);
    End();
}

} // namespace
