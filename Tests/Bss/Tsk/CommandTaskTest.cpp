// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The queue of a command task, its loop, and every line that both log.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Tsk/BSS_TSK_SystemEvents.h"
#include "CommandTaskFixture.h"

#include <boost/thread/exceptions.hpp>
#include <stdexcept>
#include <thread>

using namespace BSS::TSK;
using BSS::UTI::Format;
using TaskTests::CommandTaskTest;
using TaskTests::CountingObserverC;

namespace {

TEST_F(CommandTaskTest, ExecutesCommandsOnItsOwnThreadInPostingOrder)
{
    Make(100);
    task->start();
    std::atomic<std::uint32_t> id{0};
    task->postCommand(MakeCommand("id", [&] { id = BSS::HAL::CurrentThreadId(); }));
    for (const char* name : {"a", "b", "c", "d"})
        EXPECT_EQ(task->postCommand(Named(name)), BSS::RC_OK);
    EXPECT_TRUE(Ordered("abcd"));
    EXPECT_EQ(id.load(), task->getTaskId());
}

TEST_F(CommandTaskTest, WhatIsPostedBeforeTheStartRunsAfterIt)
{
    Make(100);
    EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
    EXPECT_EQ(task->getMsgCount(), 1);
    task->start();
    EXPECT_TRUE(Ordered("x"));
}

TEST_F(CommandTaskTest, HighPriorityRunsFirstAndEachPriorityKeepsItsOrder)
{
    Make(100);
    task->start();
    Hold();
    task->AddNewMsg(Named("a"), false);
    task->AddNewMsg(Named("1"), true);
    task->AddNewMsg(Named("b"), false);
    task->AddNewMsg(Named("2"), true);
    Go();
    EXPECT_TRUE(Ordered("12ab"));
}

TEST_F(CommandTaskTest, HighPriorityOvertakesWhatHasBeenTakenOffTheStackAlready)
{
    Make(100);
    task->start();
    Hold();
    task->postCommand(MakeCommand("poster", [this] { task->AddNewMsg(Named("!"), true); }));
    task->postCommand(Named("a"));
    task->postCommand(Named("b"));
    Go();
    EXPECT_TRUE(Ordered("!ab"));
}

TEST_F(CommandTaskTest, ASmartCommandFindsThePayloadItWasPostedWith)
{
    struct PayloadT final : BSS::UTI::SharedObjectC
    {
        int value = 7;
    };
    struct ReaderC final : SmartCommandC
    {
        explicit ReaderC(std::atomic<int>& result) : SmartCommandC("reader"), seen(result) {}
        void execute() override { seen = static_cast<PayloadT&>(*getSmartObject()).value; }
        std::atomic<int>& seen;
    };
    Make(10);
    task->start();
    std::atomic<int> seen{0};
    EXPECT_EQ(task->postCommand(BSS::UTI::MakeShared<ReaderC>(seen), BSS::UTI::MakeShared<PayloadT>()),
              BSS::RC_OK);
    EXPECT_TRUE(Support::Eventually([&] { return seen.load() == 7; }));
}

TEST_F(CommandTaskTest, AnEventCanTravelInAMessage)
{
    const auto message = BSS::UTI::MakeShared<MsgObjectT<EventC>>("carrier");
    Make(10);
    task->start();
    task->postCommand(message);
    message->getPayload().set();
    EXPECT_EQ(message->getPayload().wait(0), BSS::RC_OK);
    EXPECT_TRUE(Idle());
}

TEST_F(CommandTaskTest, AMessageLivesUntilTheLastOfThoseWhoShareItHasLetGo)
{
    struct CountedC final : CommandC
    {
        explicit CountedC(std::atomic<int>& alive) : CommandC("counted"), m_alive(alive) { ++m_alive; }
        ~CountedC() override { --m_alive; }
        void execute() override {}
        std::atomic<int>& m_alive;
    };
    std::atomic<int> alive{0};
    Make(10);
    CommandPtrT shared = BSS::UTI::MakeShared<CountedC>(alive);
    task->postCommand(shared);
    task->postCommand(shared);
    task->postCommand(BSS::UTI::MakeShared<CountedC>(alive));
    EXPECT_EQ(alive.load(), 2);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return alive.load() == 1; }));
    shared = nullptr;
    EXPECT_TRUE(Support::Eventually([&] { return alive.load() == 0; }));
}

TEST_F(CommandTaskTest, MessagesThatNobodyTakesGoWithTheTask)
{
    const auto message =
        BSS::UTI::MakeShared<MsgObjectT<std::shared_ptr<int>>>("payload", std::make_shared<int>(1));
    const std::weak_ptr<int> watched = message->getPayload();
    {
        const CommandTaskC idle(Settings(), 10);
        const_cast<CommandTaskC&>(idle).postCommand(message);
    }
    message->getPayload().reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(CommandTaskTest, LogsWhatIsPostedAndWhatIsExecuted)
{
    Make(10);
    task->start();
    ASSERT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > 0; }));
    const CommandPtrT command = MakeCommand("unit", [] {});
    command->setCmdReqId(4242);
    task->postCommand(command);
    EXPECT_TRUE(Support::Eventually([&] {
        return !log->Beginning(
                       "3 [BSS::TSK::CommandTaskC] execute   (CmdReqId:4242) exit:  CmdClientType=unit, ")
                    .empty();
    }));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] start entry\n"));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] Adding commandMsg (CmdReqId:4242)\n"));
    EXPECT_TRUE(log->Has("1 [BSS::TSK::CommandTaskC] AddNewMsg entry\n"));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] pop queue (CmdReqId:4242), 0 messages used\n"));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] execute   (CmdReqId:4242) entry: CmdClientType=unit\n"));
    const std::string exit =
        log->Beginning("3 [BSS::TSK::CommandTaskC] execute   (CmdReqId:4242) exit:  CmdClientType=unit, ");
    EXPECT_TRUE(exit.ends_with(" ms\n")) << exit;
}

TEST_F(CommandTaskTest, LogsSmartCommandsAndTimerMessagesAsSuch)
{
    struct SmartC final : SmartCommandC
    {
        SmartC() : SmartCommandC("smart") {}
        void execute() override {}
    };
    struct TimerC final : TimerMsgC
    {
        TimerC() : TimerMsgC("timer") {}
        void execute() override {}
    };
    Make(10);
    const SmartCommandPtrT smart = BSS::UTI::MakeShared<SmartC>();
    const TimerMsgPtrT timer = BSS::UTI::MakeShared<TimerC>();
    task->postCommand(smart, {});
    task->postTimerMsg(timer, true);
    task->postTimerMsg(timer, false);
    const int smartId = smart->getCmdReqId();
    const int timerId = timer->getCmdReqId();
    EXPECT_TRUE(log->Has(
        Format("3 [BSS::TSK::CommandTaskC] Adding commandMsg (CmdReqId:%d) with SmartObject\n", smartId)));
    EXPECT_TRUE(
        log->Has(Format("3 [BSS::TSK::CommandTaskC] Adding TimerMsg (CmdReqId:%d /high prio)\n", timerId)));
    EXPECT_TRUE(
        log->Has(Format("3 [BSS::TSK::CommandTaskC] Adding TimerMsg (CmdReqId:%d /low prio)\n", timerId)));
}

TEST_F(CommandTaskTest, ANullMessageIsReportedAndRefused)
{
    Make(10);
    EXPECT_EQ(task->postCommand(CommandPtrT()), BSS::RC_INVALID_ARGUMENT);
    EXPECT_EQ(reports.Count("command"), 1u);
}

TEST_F(CommandTaskTest, RequestIdsDiffer)
{
    const CommandPtrT one = MakeCommand("a", [] {});
    const CommandPtrT two = MakeCommand("a", [] {});
    EXPECT_NE(one->getCmdReqId(), two->getCmdReqId());
}

// Stopping.

TEST_F(CommandTaskTest, StopLogsItsStepsAndEndsTheLoopByAMessage)
{
    Make(10);
    task->start();
    const std::uint32_t id = task->getTaskId();
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_TRUE(log->Has("3 [BSS::TSK::CommandTaskC] stop entry\n"));
    const std::string adding = log->Beginning("3 [BSS::TSK::CommandTaskC] Adding stop request (CmdReqId:");
    int reqId = 0;
    ASSERT_EQ(
        std::sscanf(adding.c_str(), "3 [BSS::TSK::CommandTaskC] Adding stop request (CmdReqId:%d)", &reqId),
        1);
    EXPECT_TRUE(log->Has(
        Format("3 [BSS::TSK::CommandTaskC] execute (CmdReqId:%d) stop command, leaving loop\n", reqId)));
    EXPECT_TRUE(log->Has(Format("4 TaskC::stop() name='queue', id=%08x\r\n", id)) ||
                log->Has("3 TaskC::stop() was already stopped or has never been started: name='queue'\r\n"));
    EXPECT_EQ(task->getState(), ComponentState::Stopped);
}

TEST_F(CommandTaskTest, StopOfATaskThatNeverRanSaysSo)
{
    Make(10);
    task->stop();
    EXPECT_TRUE(log->Has("3 TaskC::stop() was already stopped or has never been started: name='queue'\r\n"));
    EXPECT_EQ(task->getState(), ComponentState::Stopped);
}

TEST_F(CommandTaskTest, AllMessagesThatWaitRunBeforeTheLoopEnds)
{
    for (const bool bInOrder : {false, true}) {
        order.clear();
        Make(100);
        task->setStopInOrder(bInOrder);
        task->start();
        Hold();
        task->postCommand(Named("a"));
        task->stop();
        task->postCommand(Named("b"));
        Go();
        EXPECT_TRUE(task->waitForStop(20000));
        EXPECT_EQ(Order(), "ab");
    }
}

TEST_F(CommandTaskTest, AStopRequestGoesAheadOfNormalMessagesUnlessItKeepsItsPlace)
{
    for (const bool bInOrder : {false, true}) {
        log->Clear();
        Make(100);
        task->setStopInOrder(bInOrder);
        task->start();
        Hold();
        const CommandPtrT before = Named("a");
        task->postCommand(before);
        task->stop();
        Go();
        EXPECT_TRUE(task->waitForStop(20000));
        std::size_t stopAt = 0;
        std::size_t commandAt = 0;
        const std::vector<std::string> lines = log->Messages();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].find("leaving loop") != std::string::npos) stopAt = i;
            if (lines[i] ==
                Format("3 [BSS::TSK::CommandTaskC] execute   (CmdReqId:%d) entry: CmdClientType=named\n",
                       before->getCmdReqId()))
                commandAt = i;
        }
        EXPECT_EQ(bInOrder, commandAt < stopAt);
    }
}

TEST_F(CommandTaskTest, AClientThatNeverCeasesToPostCannotKeepAStoppedLoop)
{
    struct EndlessC final : CommandC
    {
        explicit EndlessC(CommandTaskC& owner) : CommandC("endless"), m_owner(owner) {}
        void execute() override { m_owner.AddNewMsg(MsgPtrT(this), false); }
        CommandTaskC& m_owner;
    };
    Make(100);
    task->start();
    task->postCommand(BSS::UTI::MakeShared<EndlessC>(*task));
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
}

TEST_F(CommandTaskTest, AStopRequestOfAnEarlierRunDoesNotEndTheNextOne)
{
    Make(10);
    task->stop(); // stays in the queue
    task->stop();
    task->postCommand(Named("x"));
    task->start();
    EXPECT_TRUE(Ordered("x"));
    EXPECT_FALSE(task->isStopRequested());
    task->postCommand(Named("y"));
    EXPECT_TRUE(Ordered("xy"));
    EXPECT_TRUE(task->isRunning());
}

TEST_F(CommandTaskTest, CanBeStoppedAndStartedManyTimes)
{
    Make(10);
    std::string expected;
    for (int i = 0; i < 50; ++i) {
        task->start();
        EXPECT_EQ(task->getCore().lastStopPost.load(), BSS::RC_FAILED)
            << "no stop has been posted in this run";
        task->postCommand(Named("x"));
        expected += "x";
        task->stop();
        ASSERT_TRUE(task->waitForStop(20000));
        ASSERT_EQ(Order(), expected);
    }
}

TEST_F(CommandTaskTest, ARefusedStopRequestIsTriedAgainWithTheNextMessage)
{
    Make(3);
    task->start();
    Hold();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
    EXPECT_EQ(task->postCommand(Named("y")), BSS::RC_FAILED);
    task->stop(); // refused
    EXPECT_TRUE(task->getCore().lastStopPost.load() == BSS::RC_FAILED);
    Go();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(Order(), "xxx");
}

TEST_F(CommandTaskTest, TheMainEndedSubjectIsNotifiedWhenTheLoopHasEnded)
{
    CountingObserverC observer;
    Make(10);
    task->getMainEndedSubject().attach(observer);
    task->start();
    EXPECT_TRUE(observer.Codes().empty());
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(observer.Codes(), std::vector<std::uint32_t>{COMMAND_TASK_MAIN_ENDED});
}

// Time-outs.

TEST_F(CommandTaskTest, TheHookAndTheSubjectAreToldOfEveryTimeOut)
{
    const auto subject = std::make_shared<BSS::UTI::SubjectC>();
    CountingObserverC observer;
    subject->attach(observer);
    Make(10);
    task->setTimeoutSubject(subject);
    task->setWaitTimeout(1);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return observer.Codes().size() >= 2; }));
    EXPECT_EQ(observer.Codes()[0], COMMAND_TASK_TIMEOUT);
    EXPECT_GE(task->timeouts.load(), 2);
    task->setTimeoutSubject(nullptr);
}

// What others throw.

TEST_F(CommandTaskTest, WhatACommandThrowsIsLoggedAndTheNextOneRuns)
{
    Make(10);
    task->start();
    task->postCommand(MakeCommand("thrower", [] { throw std::runtime_error("broken"); }));
    task->postCommand(MakeCommand("thrower", [] { throw 5; }));
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] exception in thrower: broken\n"));
    EXPECT_TRUE(log->Has("6 [BSS::TSK::CommandTaskC] unknown exception in thrower\n"));
}

TEST_F(CommandTaskTest, AnInterruptionThatACommandPassesOnEndsTheTask)
{
    CountingObserverC observer;
    Make(10);
    task->getMainEndedSubject().attach(observer);
    task->start();
    task->postCommand(MakeCommand("interrupted", [] { throw boost::thread_interrupted(); }));
    EXPECT_TRUE(Support::Eventually([&] { return !task->isRunning(); }));
    EXPECT_EQ(observer.Codes(), std::vector<std::uint32_t>{COMMAND_TASK_MAIN_ENDED});
}

// Killing.

TEST_F(CommandTaskTest, AMessageThatEndsTheTaskByAnInterruptionIsNotTheCurrentOneAnyMore)
{
    Make(10);
    task->start();
    task->postCommand(MakeCommand("interrupted", [] { throw boost::thread_interrupted(); }));
    EXPECT_TRUE(Support::Eventually([&] { return !task->isRunning(); }));
    EXPECT_FALSE(task->getCurrentMsg());
}

TEST_F(CommandTaskTest, KillOfAnIdleTaskIsFriendly)
{
    Make(10);
    task->setFriendlyKillLimit(20000);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > 0; }));
    task->kill();
    EXPECT_FALSE(task->isRunning());
    EXPECT_EQ(log->Beginning("6 TaskC::friendly kill failed!"), "");
    task->start();
    task->postCommand(Named("x"));
    EXPECT_TRUE(Ordered("x"));
}

// The object.

TEST_F(CommandTaskTest, DestroyedWhileItRunsItWarnsAndTheLoopLeaves)
{
    CountingObserverC observer;
    auto doomed = std::make_unique<CommandTaskC>(Settings("doomed"), 10);
    doomed->start();
    const auto held = std::make_shared<HoldT>();
    doomed->postCommand(MakeCommand("hold", [held] {
        held->entered.set();
        static_cast<void>(held->leave.wait(20000));
    }));
    EXPECT_EQ(held->entered.wait(20000), BSS::RC_OK);
    doomed.reset();
    EXPECT_EQ(reports.Count("W: ~TaskC(this = 0x%lx): not stopped before destructor call\r\n"), 1u);
    held->leave.set();
    EXPECT_TRUE(
        Support::Eventually([&] { return !log->Beginning("4 TaskC::c_main() end: name='doomed'").empty(); }));
}

TEST_F(CommandTaskTest, RefusedEventsMakeNoTaskAndLeakNothing)
{
    for (std::uint32_t nth = 1;; ++nth) {
        BSS::HAL::OrderFault(BSS::HAL::FaultT::Event, nth);
        try {
            const CommandTaskC made(Settings(), 10);
            EXPECT_GT(nth, 2u);
            break;
        } catch (const BSS::SysServiceErrorC& error) {
            EXPECT_EQ(error.GetResultCode(), BSS::RC_SERVICE_FAILED);
        }
    }
    BSS::HAL::OrderFault(BSS::HAL::FaultT::Event, 0);
}

TEST_F(CommandTaskTest, ARefusedThreadLeavesATaskThatCanBeStarted)
{
    Make(10);
    task->postCommand(Named("x"));
    BSS::HAL::OrderFault(BSS::HAL::FaultT::Thread, 1);
    EXPECT_THROW(task->start(), BSS::SysServiceErrorC);
    task->start();
    EXPECT_TRUE(Ordered("x"));
}

TEST_F(CommandTaskTest, StatisticsCountPostsAndExecutions)
{
    Make(10);
    task->postCommand(Named("a"));
    task->postCommand(Named("b"));
    EXPECT_EQ(task->getPostCount(), 2u);
    task->start();
    EXPECT_TRUE(Ordered("ab"));
    EXPECT_TRUE(Support::Eventually([&] { return !task->getStatistics().isBusy(); }));
    EXPECT_EQ(task->getStatistics().getExecutedCount(), 2u);
}

} // namespace
