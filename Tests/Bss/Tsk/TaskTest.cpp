// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The life of a task, and every line it logs on the way.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_LoggingLockDecorator.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Eventually.h"
#include "TaskFixture.h"

#include <atomic>
#include <boost/thread/thread_only.hpp>
#include <stdexcept>
#include <thread>

using namespace BSS::TSK;
using BSS::UTI::Format;
using TaskTests::OPTION;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

void UntilInterrupted()
{
    for (;;)
        boost::this_thread::sleep_for(boost::chrono::hours(1));
}

TEST_F(TaskTest, RunsMainOnAThreadOfItsOwnUnderItsName)
{
    std::uint32_t id = 0;
    std::string name;
    WorkTaskC task(Settings("of its own"), [&] {
        id = BSS::HAL::CurrentThreadId();
        name = BSS::HAL::CurrentThreadName();
    });
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, BSS::HAL::CurrentThreadId());
    EXPECT_EQ(name, "of its own");
}

TEST_F(TaskTest, StateIsStartedAfterStartAndStoppedAfterStop)
{
    WorkTaskC task(Settings(), &UntilInterrupted);
    EXPECT_EQ(task.getState(), ComponentState::Initial);
    task.start();
    EXPECT_EQ(static_cast<int>(task.getState()), 2);
    task.stop();
    EXPECT_EQ(static_cast<int>(task.getState()), 1);
    EXPECT_TRUE(task.waitForStop(-1));
}

TEST_F(TaskTest, StopInterruptsAtTheNextInterruptionPoint)
{
    WorkTaskC task(Settings(), &UntilInterrupted);
    task.start();
    EXPECT_TRUE(task.isRunning());
    EXPECT_FALSE(task.waitForStop(0));
    task.stop();
    EXPECT_TRUE(task.waitForStop(20000));
    EXPECT_FALSE(task.isRunning());
}

TEST_F(TaskTest, StartingARunningTaskThrows)
{
    WorkTaskC task(Settings(), &UntilInterrupted);
    task.start();
    try {
        task.start();
        ADD_FAILURE();
    } catch (const BSS::ERR::ErrorBaseC& error) {
        EXPECT_EQ(error.GetResultCode(), BSS::RC_SERVICE_FAILED);
    }
    task.stop();
    EXPECT_TRUE(task.waitForStop(-1));
}

TEST_F(TaskTest, CanBeStartedAgainAfterItHasEnded)
{
    std::atomic<int> runs{0};
    WorkTaskC task(Settings(), [&] { ++runs; });
    for (int i = 0; i < 20; ++i) {
        task.start();
        if (i % 2 == 0) {
            EXPECT_TRUE(task.waitForStop(-1));
        }
        EXPECT_TRUE(Support::Eventually([&] { return !task.isRunning(); }));
    }
    EXPECT_EQ(runs.load(), 20);
}

TEST_F(TaskTest, ThreadThatCannotBeMadeIsAnExceptionAndTheNextStartWorks)
{
    std::atomic<bool> ran{false};
    WorkTaskC task(Settings(), [&] { ran = true; });
    BSS::HAL::OrderFault(BSS::HAL::FaultT::Thread, 1);
    EXPECT_THROW(task.start(), BSS::SysServiceErrorC);
    EXPECT_FALSE(task.isRunning());
    EXPECT_TRUE(task.waitForStop(-1));
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(ran.load());
}

TEST_F(TaskTest, EventsThatCannotBeMadeAreAnExceptionAndTheNextStartWorks)
{
    std::atomic<bool> ran{false};
    WorkTaskC task(Settings(), [&] { ran = true; });
    for (const std::uint32_t nth : {1u, 2u}) {
        BSS::HAL::OrderFault(BSS::HAL::FaultT::Event, nth);
        EXPECT_THROW(task.start(), BSS::SysServiceErrorC);
        EXPECT_FALSE(task.isRunning());
    }
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(ran.load());
}

TEST_F(TaskTest, TheStackIsAsLargeAsTheOptionSays)
{
    TskMgr::instance().setTaskOptions(OPTION, {0, 8u << 20});
    std::atomic<bool> ran{false};
    WorkTaskC task(Settings(), [&] {
        volatile char large[6 << 20];
        for (std::size_t i = 0; i < sizeof large; i += 4096)
            large[i] = 1;
        ran = true;
    });
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(ran.load());
}

TEST_F(TaskTest, IdIsTheThreadsAndZeroOnceItHasStopped)
{
    std::atomic<std::uint32_t> own{0};
    WorkTaskC task(Settings(), [&] {
        own = BSS::HAL::CurrentThreadId();
        UntilInterrupted();
    });
    EXPECT_EQ(task.getTaskId(), 0u);
    task.start();
    EXPECT_TRUE(Support::Eventually([&] { return own.load() != 0; }));
    EXPECT_EQ(task.getTaskId(), own.load());
    task.stop();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_EQ(task.getTaskId(), 0u);
}

TEST_F(TaskTest, CodeOnItsThreadFindsTheTask)
{
    TaskC* found = nullptr;
    WorkTaskC task(Settings(), [&] { found = TaskC::getCurrent(); });
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_EQ(found, &task);
    EXPECT_EQ(TaskC::getCurrent(), nullptr);
}

TEST_F(TaskTest, LogsItsStartAndItsEnd)
{
    WorkTaskC task(Settings("lines"), [] {});
    task.start();
    EXPECT_TRUE(Support::Eventually([&] { return !task.isRunning(); }));
    EXPECT_TRUE(task.waitForStop(-1));
    const std::vector<std::string> lines = log->Messages();
    ASSERT_EQ(lines.size(), 3u) << "a task that has stopped is not waited for";
    unsigned id = 0;
    int decimal = 0;
    unsigned mark = 0;
    EXPECT_TRUE(lines[0].starts_with("4 TaskC::start() Starting task: name='lines', handle="));
    EXPECT_EQ(lines[0].size(),
              std::string("4 TaskC::start() Starting task: name='lines', handle=12345678\r\n").size());
    ASSERT_EQ(std::sscanf(lines[1].c_str(),
                          "4 TaskC::c_main() begin: name='lines', id=0x%8x/%d, stack=0x%8x\r\n", &id,
                          &decimal, &mark),
              3);
    EXPECT_EQ(lines[1], Format("4 TaskC::c_main() begin: name='lines', id=0x%08x/%d, stack=0x%08x\r\n", id,
                               decimal, mark));
    EXPECT_EQ(static_cast<int>(id), decimal);
    EXPECT_EQ(lines[2], Format("4 TaskC::c_main() end: name='lines', id=0x%08x/%d\r\n", id, decimal));
}

TEST_F(TaskTest, StartAndStopAreTracedOnTheDebuggerOutputAndInTheTrace)
{
    const Support::DebugOutputCapture debug;
    std::uint32_t id = 0;
    WorkTaskC task(Settings("traced"), [&] { id = BSS::HAL::CurrentThreadId(); });
    const std::uint32_t before = TskMgr::instance().getStartCount();
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    const std::string started = Format("Started[0x%8.8x/%09d] traced\r\n", id, id);
    const std::string stopped = Format("Stopped[0x%8.8x/%09d] traced\r\n", id, id);
    EXPECT_NE(debug.Text().find(std::wstring(started.begin(), started.end())), std::wstring::npos);
    EXPECT_NE(debug.Text().find(std::wstring(stopped.begin(), stopped.end())), std::wstring::npos);
    const std::vector<std::string> trace = TskMgr::instance().getTrace().getLines();
    ASSERT_GE(trace.size(), 2u);
    EXPECT_EQ(trace[trace.size() - 2], started);
    EXPECT_EQ(trace[trace.size() - 1], stopped);
    EXPECT_EQ(TskMgr::instance().getStartCount(), before + 1);
}

TEST_F(TaskTest, StopOfATaskThatNeverRanSaysSoAndSetsTheState)
{
    WorkTaskC task(Settings("idle"), [] {});
    task.stop();
    EXPECT_EQ(log->Messages(),
              std::vector<std::string>{
                  "3 TaskC::stop() was already stopped or has never been started: name='idle'\r\n"});
    EXPECT_EQ(task.getState(), ComponentState::Stopped);
}

TEST_F(TaskTest, StopOfARunningTaskIsLogged)
{
    WorkTaskC task(Settings("busy"), &UntilInterrupted);
    task.start();
    const std::uint32_t id = task.getTaskId();
    task.stop();
    EXPECT_TRUE(log->Has(Format("4 TaskC::stop() name='busy', id=%08x\r\n", id)));
    EXPECT_TRUE(task.waitForStop(-1));
}

TEST_F(TaskTest, WaitingForARunningTaskIsLoggedUnderItsOldLine)
{
    WorkTaskC task(Settings("awaited"), &UntilInterrupted);
    task.start();
    const std::uint32_t id = task.getTaskId();
    EXPECT_FALSE(task.waitForStop(1));
    EXPECT_TRUE(
        log->Has(Format("4  371 TaskC::waitForStop() join: name='awaited', id=%08x, timeout=1\r\n", id)));
    task.stop();
    EXPECT_TRUE(task.waitForStop(-1));
}

TEST_F(TaskTest, WaitingForATaskThatIsNotRunningIsOverAtOnce)
{
    WorkTaskC task(Settings(), [] {});
    EXPECT_TRUE(task.waitForStop(0));
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(log->Messages().empty());
}

TEST_F(TaskTest, WaitingForItselfThrows)
{
    std::string text;
    WorkTaskC* self = nullptr;
    WorkTaskC task(Settings(), [&] {
        try {
            self->waitForStop(-1);
        } catch (const boost::thread_resource_error& error) {
            text = error.what();
        }
    });
    self = &task;
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(text.starts_with("boost thread: trying joining itself")) << text;
}

TEST_F(TaskTest, KillOfATaskThatListensIsFriendly)
{
    WorkTaskC task(Settings("friendly"), &UntilInterrupted);
    task.setFriendlyKillLimit(20000);
    task.start();
    const std::uint32_t id = task.getTaskId();
    task.kill();
    EXPECT_TRUE(log->Has(Format("6 TaskC::kill() name='friendly', id=%08x\r\n", id)));
    EXPECT_EQ(log->Beginning("6 TaskC::friendly kill failed!"), "");
    EXPECT_FALSE(task.isRunning());
    EXPECT_EQ(task.getState(), ComponentState::Stopped);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TaskTest, KillOfATaskThatNeverRanOnlySetsTheState)
{
    WorkTaskC task(Settings(), [] {});
    task.kill();
    EXPECT_EQ(task.getState(), ComponentState::Stopped);
    EXPECT_TRUE(log->Messages().empty());
}

TEST_F(TaskTest, KillIsAssertedWhenTheTaskSaysSo)
{
    TaskSettingsT settings = Settings();
    settings.assertOnKill = true;
    WorkTaskC task(settings, &UntilInterrupted);
    task.setFriendlyKillLimit(20000);
    task.start();
    task.kill();
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "!\"Task killed!\"");
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_Task)");
    EXPECT_EQ(reports.Reports()[0].line, 406);
}

TEST_F(TaskTest, AMissingOptionIsReportedAndStandsForZeros)
{
    TskMgr::instance().removeTaskOptions(OPTION);
    WorkTaskC task(Settings(), [] {});
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    ASSERT_EQ(reports.Reports().size(), 1u) << "the first report has made the entry";
    EXPECT_EQ(reports.Reports()[0].text, "m_mTaskOptions.find( taskIdx ) != m_mTaskOptions.end()");
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TskMgr)");
    EXPECT_EQ(reports.Reports()[0].line, 100);
    TskMgr::instance().removeTaskOptions(OPTION);
    EXPECT_EQ(TskMgr::instance().getPriority(OPTION), 0);
    EXPECT_EQ(reports.Reports()[1].line, 89);
}

TEST_F(TaskTest, ATaskThatMayNotRunBelowNormalIsReportedWhateverItsPriority)
{
    TaskSettingsT settings = Settings();
    settings.allowPriorityBelowNormal = false;
    WorkTaskC task(settings, [] {});
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "m_bAllowPriorityBelowNormal");
    EXPECT_EQ(reports.Reports()[0].line, 531);
}

int PriorityWith(TaskSettingsT settings, std::int32_t priority)
{
    TskMgr::instance().setTaskOptions(OPTION, {priority, 0});
    int seen = 99;
    WorkTaskC task(std::move(settings), [&] { seen = BSS::HAL::CurrentThreadPriority(); });
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    return seen;
}

TEST_F(TaskTest, ANegativePriorityIsNormalUnlessItIsAllowed)
{
    TaskSettingsT settings = Settings();
    EXPECT_EQ(PriorityWith(settings, -2), -2);
    settings.allowPriorityBelowNormal = false;
    EXPECT_EQ(PriorityWith(settings, -2), 0);
}

TEST_F(TaskTest, APriorityThatTheSystemRefusesIsReported)
{
    EXPECT_EQ(PriorityWith(Settings(), 77), 0);
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "bOK");
    EXPECT_EQ(reports.Reports()[0].line, 543);
}

TEST_F(TaskTest, SetPriorityOfATaskThatIsNotRunningDoesNothing)
{
    TaskSettingsT settings = Settings();
    settings.allowPriorityBelowNormal = false;
    WorkTaskC task(settings, [] {});
    task.setPriority();
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TaskTest, WhatMainThrowsIsLoggedAndEndsTheTask)
{
    WorkTaskC task(Settings("thrower"), [] { throw std::runtime_error("no more"); });
    task.start();
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(log->Has("6 TaskC::c_main() exception: name='thrower', no more\r\n"));
    EXPECT_NE(log->Beginning("4 TaskC::c_main() end:"), "");
}

TEST_F(TaskTest, DestroyingARunningTaskWarnsAndDoesNotCrash)
{
    struct SharedT
    {
        std::atomic<bool> entered{false};
        EventC leave;
        EventC left;
    };
    const auto shared = std::make_shared<SharedT>();
    std::uint32_t id = 0;
    {
        WorkTaskC task(Settings("left alone"), [shared] {
            shared->entered = true;
            static_cast<void>(shared->leave.wait(-1));
            shared->left.set();
        });
        task.start();
        id = task.getTaskId();
        EXPECT_TRUE(Support::Eventually([&] { return shared->entered.load(); }));
    }
    EXPECT_TRUE(
        log->Has(Format("4  371 TaskC::waitForStop() join: name='left alone', id=%08x, timeout=0\r\n", id)));
    EXPECT_TRUE(
        log->Has(Format("6 Task (name='left alone', id=%08x) not stopped before destructor call\r\n", id)));
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].kind, Support::ReportT::Kind::Panic);
    EXPECT_EQ(reports.Reports()[0].text, "W: ~TaskC(this = 0x%lx): not stopped before destructor call\r\n");
    EXPECT_EQ(reports.Reports()[0].line, 92);
    shared->leave.set();
    EXPECT_EQ(shared->left.wait(20000), BSS::RC_OK);
    EXPECT_TRUE(Support::Eventually([&] { return !log->Beginning("4 TaskC::c_main() end:").empty(); }));
}

TEST_F(TaskTest, DestroyingATaskThatHasStoppedSaysNothing)
{
    {
        WorkTaskC task(Settings(), [] {});
        task.start();
        EXPECT_TRUE(Support::Eventually([&] { return !task.isRunning(); }));
    }
    EXPECT_TRUE(reports.Reports().empty());
    EXPECT_EQ(log->Beginning("6 "), "");
}

TEST_F(TaskTest, StartedStoppedAndWaitedForFromManyThreadsItEndsInOrder)
{
    WorkTaskC task(Settings(), &UntilInterrupted);
    for (int round = 0; round < 30; ++round) {
        task.start();
        std::thread one([&] {
            task.stop();
            EXPECT_TRUE(task.waitForStop(20000));
        });
        std::thread two([&] { EXPECT_TRUE(task.waitForStop(20000)); });
        one.join();
        two.join();
        ASSERT_FALSE(task.isRunning());
    }
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TaskTest, AskedStoppedKilledAndWaitedForFromManyThreadsAtOnceItEnds)
{
    WorkTaskC task(Settings(), &UntilInterrupted);
    task.setFriendlyKillLimit(20000);
    for (int round = 0; round < 50; ++round) {
        task.start();
        std::thread waiting([&] { EXPECT_TRUE(task.waitForStop(-1)); });
        std::thread asking([&] {
            while (task.isRunning() && task.getTaskId() != 0)
                std::this_thread::yield();
        });
        std::thread killing([&] { task.kill(); });
        task.stop();
        EXPECT_TRUE(task.waitForStop(20000));
        waiting.join();
        asking.join();
        killing.join();
        ASSERT_EQ(task.getTaskId(), 0u);
    }
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(TaskTrace, KeepsTheLastThousandLines)
{
    TaskTraceC trace;
    for (int i = 0; i < 1003; ++i)
        trace.add(std::to_string(i));
    const std::vector<std::string> lines = trace.getLines();
    ASSERT_EQ(lines.size(), 1000u);
    EXPECT_EQ(lines.front(), "3");
    EXPECT_EQ(lines.back(), "1002");
}

TEST(LoggingLock, LogsEachStepAroundTheLockItWraps)
{
    MutexC mutex;
    Support::LogRecorder recorder;
    LoggingLockDecoratorC lock(mutex, &recorder, "gate");
    lock.lock();
    EXPECT_EQ(recorder.Messages(), (std::vector<std::string>{"2 acquiring gate\n", "3 gate acquired\n"}));
    recorder.Clear();
    lock.unlock();
    EXPECT_EQ(recorder.Messages(), (std::vector<std::string>{"2 releasing gate\n", "3 gate released\n"}));
    std::thread([&] {
        mutex.lock();
        mutex.unlock();
    }).join();
}

TEST_F(TaskTest, AnInterruptionDoesNotLeaveWhatMustNotBeLeftInTheMiddleAndStaysAskedFor)
{
    std::atomic<bool> bAsked = false;
    bool bDone = false;
    bool bInterrupted = false;
    WorkTaskC task(Settings("logs on"), [&] {
        BSS::HAL::Undisturbed([&] {
            EXPECT_TRUE(Support::Eventually([&] { return bAsked.load(); }));
            boost::this_thread::interruption_point();
            bDone = true;
        });
        try {
            boost::this_thread::interruption_point();
        } catch (const boost::thread_interrupted&) {
            bInterrupted = true;
            throw;
        }
    });
    task.start();
    task.stop();
    bAsked = true;
    EXPECT_TRUE(task.waitForStop(-1));
    EXPECT_TRUE(bDone);
    EXPECT_TRUE(bInterrupted);
}

} // namespace
