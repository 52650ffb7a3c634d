// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a command task waits for beside its queue, and waits that fail.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "CommandTaskFixture.h"

#include <stdexcept>

using namespace BSS::TSK;
using namespace BSS::HAL;
using TaskTests::CommandTaskTest;

namespace {

using ExtraEventsTest = CommandTaskTest;

TEST_F(ExtraEventsTest, TheHandlerRunsOnTheTasksThreadForEachSignal)
{
    EventC event;
    std::atomic<int> calls{0};
    std::atomic<WaitHandleT> told{0};
    Make(10);
    task->start();
    EXPECT_EQ(task->attachEvent(event.getHandle(),
                                [&](WaitHandleT handle) {
                                    told = handle;
                                    ++calls;
                                }),
              BSS::RC_OK);
    event.set();
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 1; }));
    EXPECT_EQ(told.load(), event.getHandle());
    event.set();
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 2; }));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] handle extra event\n"));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] reload event list\n"));
    EXPECT_EQ(task->detachEvent(event.getHandle()), BSS::RC_OK);
}

TEST_F(ExtraEventsTest, ADetachedEventIsNotServedAnyMore)
{
    EventC event;
    std::atomic<int> calls{0};
    Make(10);
    task->start();
    task->attachEvent(event.getHandle(), [&](WaitHandleT) { ++calls; });
    EXPECT_EQ(task->detachEvent(event.getHandle()), BSS::RC_OK);
    event.set();
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    task->postCommand(Named("y"));
    EXPECT_TRUE(Ordered("xy"));
    EXPECT_EQ(calls.load(), 0);
    EXPECT_EQ(task->detachEvent(event.getHandle()), BSS::RC_NOT_FOUND);
}

TEST_F(ExtraEventsTest, SixtyCanBeAttachedAndNoMore)
{
    std::vector<std::unique_ptr<EventC>> events;
    std::atomic<int> calls{0};
    Make(10);
    for (int i = 0; i < 60; ++i) {
        events.push_back(std::make_unique<EventC>());
        ASSERT_EQ(task->attachEvent(events.back()->getHandle(), [&](WaitHandleT) { ++calls; }), BSS::RC_OK);
    }
    EventC more;
    EXPECT_EQ(task->attachEvent(more.getHandle(), [](WaitHandleT) {}), BSS::RC_FAILED);
    EXPECT_EQ(task->attachEvent(events[0]->getHandle(), [&](WaitHandleT) { calls += 100; }), BSS::RC_OK)
        << "one that is there already gets another handler";
    task->start();
    events[59]->set();
    events[0]->set();
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 101; }));
    End();
}

TEST_F(ExtraEventsTest, AHandlerMayDetachItself)
{
    EventC event(ResetMode::Manual);
    std::atomic<int> calls{0};
    Make(10);
    task->start();
    task->attachEvent(event.getHandle(), [&](WaitHandleT handle) {
        ++calls;
        EXPECT_EQ(task->detachEvent(handle), BSS::RC_OK);
    });
    event.set();
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 1; }));
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    EXPECT_EQ(calls.load(), 1);
}

TEST_F(ExtraEventsTest, AHandlerThatIsAlwaysCalledAgainLetsOthersDetach)
{
    constexpr std::int64_t CALL_US = 1000;
    TskMgr::instance().setTaskOptions(TaskTests::OPTION, {15, 0}); // where it may, the task leaves others out
    EventC busy(ResetMode::Manual, true);
    EventC other;
    std::atomic<int> calls{0};
    std::atomic<int> leftOut{0}; // calls at whose end somebody waited to detach
    Make(10);
    task->start();
    reports.Clear(); // a refused priority
    task->attachEvent(busy.getHandle(), [&](WaitHandleT) {
        const std::int64_t end = TickMicroseconds() + CALL_US;
        while (TickMicroseconds() < end) {
        }
        ++calls;
        if (task->getCore().side.load()->handlerWay.isWanted()) ++leftOut;
    });
    for (int round = 0; round < 5; ++round) {
        task->attachEvent(other.getHandle(), [](WaitHandleT) {});
        const int before = calls.load();
        EXPECT_TRUE(Support::Eventually([&] { return calls.load() > before + 5; }));
        leftOut.store(0);
        EXPECT_EQ(task->detachEvent(other.getHandle()), BSS::RC_OK);
        // The call during which it came to wait; another one only where this thread did not get the processor
        // within the time that the task gives way.
        EXPECT_LT(leftOut.load(), 50);
    }
    busy.reset();
    End();
}

TEST_F(ExtraEventsTest, WhatAHandlerThrowsIsLoggedAndTheLoopGoesOn)
{
    EventC event;
    Make(10);
    task->start();
    task->attachEvent(event.getHandle(), [](WaitHandleT) { throw std::runtime_error("device lost"); });
    event.set();
    EXPECT_TRUE(Support::Eventually(
        [&] { return log->Has("6 [BSS::TSK::CommandTaskC] exception in an event handler: device lost\n"); }));
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    task->detachEvent(event.getHandle());
}

TEST_F(ExtraEventsTest, AHandleThatWasClosedIsReportedOnceAndLeftOut)
{
    Make(10);
    auto event = std::make_unique<EventC>();
    task->attachEvent(event->getHandle(), [](WaitHandleT) {});
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > 2; }));
    event.reset();
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    EXPECT_TRUE(Support::Eventually([&] { return !reports.Reports().empty(); }));
    task->postCommand(Named("y"));
    EXPECT_TRUE(Ordered("xy"));
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(
        reports.Reports()[0].text,
        "!\"WAIT_FAILED occurred in BSS::TSK::CommandTaskC::main because of an invalid handle! This could be "
        "caused by not calling detachEvent() before the event handle is closed.\"");
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_CommandTask)");
    EXPECT_EQ(reports.Reports()[0].line, 495);
}

// Answers of the system that no test can bring about: given in its place.
std::atomic<int> s_given{0};
WaitAnswerT s_answer;

WaitAnswerT GiveOnce(const WaitHandleT* handles, std::size_t count, std::uint32_t limitMs) noexcept
{
    if (s_given.exchange(0) == 1) return s_answer;
    return WaitForAny(handles, count, limitMs);
}

TEST_F(ExtraEventsTest, AHandleThatWasDetachedAndClosedMeanwhileIsNoReason)
{
    Make(10);
    task->getCore().wait = &GiveOnce;
    s_answer = {WaitAnswerT::Kind::Failed, 0, WAIT_ERROR_INVALID_HANDLE};
    task->getCore().reloadEvent.set();
    s_given = 1;
    task->start();
    EXPECT_TRUE(
        Support::Eventually([&] { return log->Has("3 [BSS::TSK::CommandTaskC] reload event list\n"); }));
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(ExtraEventsTest, AnyOtherFailureIsLoggedAndReportedAndTheLoopGoesOn)
{
    Make(10);
    task->getCore().wait = &GiveOnce;
    s_answer = {WaitAnswerT::Kind::Failed, 0, 87};
    s_given = 1;
    task->start();
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] Ln 511: WaitForMultipleObjects Failed (87)\n"));
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "false");
    EXPECT_EQ(reports.Reports()[0].line, 513);
}

// The system is out of memory for good.
std::atomic<int> s_failures{0};

WaitAnswerT FailAlways(const WaitHandleT*, std::size_t, std::uint32_t) noexcept
{
    ++s_failures;
    return {WaitAnswerT::Kind::Failed, 0, WAIT_ERROR_NO_MEMORY};
}

class FailingWaitTest : public ExtraEventsTest
{
protected:
    void MakeFailing(std::uint32_t maximum)
    {
        s_failures = 0;
        Make(maximum);
        task->getCore().wait = &FailAlways;
    }
};

TEST_F(FailingWaitTest, MessagesAreServedAndAStopIsHeardThoughEveryWaitFails)
{
    MakeFailing(10);
    task->start();
    std::string expected;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
        ASSERT_TRUE(Ordered(expected += "x"));
    }
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
}

TEST_F(FailingWaitTest, AnOverflowEndsThoughEveryWaitFails)
{
    MakeFailing(1);
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    EXPECT_EQ(task->postCommand(Named("b")), BSS::RC_FAILED);
    Go();
    EXPECT_TRUE(Idle());
    EXPECT_EQ(task->postCommand(Named("c")), BSS::RC_OK);
    EXPECT_TRUE(Ordered("ac"));
}

TEST_F(FailingWaitTest, TheTimeOutHookIsCalledThoughEveryWaitFails)
{
    MakeFailing(10);
    task->setWaitTimeout(1);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return task->timeouts.load() >= 3; }));
}

TEST_F(FailingWaitTest, ThereIsAPauseBetweenWaitsThatFail)
{
    MakeFailing(10);
    task->start();
    ASSERT_TRUE(Support::Eventually([&] { return s_failures.load() >= 1; }));
    const int before = s_failures.load();
    const std::uint64_t begin = TickCount64();
    EXPECT_TRUE(Support::Eventually([&] { return s_failures.load() >= before + 3; }));
    EXPECT_GE(TickCount64() - begin, 150u) << "the first pause has begun before";
}

TEST_F(ExtraEventsTest, AnyOtherAnswerIsReportedAndTheLoopGoesOn)
{
    for (const WaitAnswerT answer :
         {WaitAnswerT{WaitAnswerT::Kind::Other, 0x80, 0}, WaitAnswerT{WaitAnswerT::Kind::Signalled, 62, 0}}) {
        reports.Clear();
        order.clear();
        Make(10);
        task->getCore().wait = &GiveOnce;
        s_answer = answer;
        s_given = 1;
        task->start();
        task->postCommand(Named("x"));
        EXPECT_TRUE(Ordered("x"));
        ASSERT_EQ(reports.Reports().size(), 1u);
        EXPECT_EQ(reports.Reports()[0].text, "false");
        EXPECT_EQ(reports.Reports()[0].line, 543);
        End();
    }
}

} // namespace
