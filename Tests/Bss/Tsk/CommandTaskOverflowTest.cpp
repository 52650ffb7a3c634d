// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How full the queue of a command task is: its level, its overflow and the end of that, and what is logged
// and told.
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

TEST_F(CommandTaskTest, TheLevelIsLoggedWhenItCrossesFiftyPercent)
{
    Make(4);
    task->postCommand(Named("a"));
    EXPECT_EQ(log->Beginning("5 "), "");
    EXPECT_EQ(task->getLastLevel(), 25);
    task->postCommand(Named("b"));
    EXPECT_TRUE(log->Has("5 Task 'queue': Message queue level 50% (2/4)(old 25%)!\n"));
    log->Clear();
    task->postCommand(Named("c"));
    EXPECT_EQ(log->Beginning("5 "), "") << "it is above already";
    EXPECT_EQ(task->getLastLevel(), 75);
    task->start();
    EXPECT_TRUE(Ordered("abc"));
    task->postCommand(Named("d"));
    EXPECT_TRUE(log->Has("5 Task 'queue': Message queue level 25% (1/4)(old 75%)!\n"));
}

TEST_F(CommandTaskTest, TheFifthOfFourIsRefusedWithTheTextsOfAnOverflow)
{
    CountingObserverC observer;
    GetSystemEventSubject().attach(observer);
    Make(4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
    EXPECT_FALSE(task->isInOverflow());
    EXPECT_EQ(task->postCommand(Named("y")), BSS::RC_FAILED);
    EXPECT_TRUE(task->isInOverflow());
    EXPECT_EQ(task->getMsgCount(), 4);
    EXPECT_TRUE(log->Has("7 Message queue full. Task 'queue', size = 4, maxMsgCount = 4\n"));
    EXPECT_TRUE(log->Has("6 AddNewMsg DumpMessageQueue, task=queue\n"));
    EXPECT_EQ(observer.Codes(), std::vector<std::uint32_t>{8412});
    EXPECT_EQ(static_cast<SystemEventTextC&>(*observer.Last()).getText(),
              L"Message queue full. Task 'queue', size = 4, maxMsgCount = 4");
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(CommandTaskTest, FurtherPostsAreRefusedInSilenceUntilTheQueueHasDrained)
{
    Make(2);
    task->start();
    Hold();
    task->postCommand(Named("a"));
    task->postCommand(Named("b"));
    EXPECT_EQ(task->postCommand(Named("c")), BSS::RC_FAILED);
    log->Clear();
    EXPECT_EQ(task->postCommand(Named("c")), BSS::RC_FAILED);
    EXPECT_EQ(log->Beginning("7 "), "");
    Go();
    EXPECT_TRUE(Idle());
    EXPECT_EQ(task->postCommand(Named("d")), BSS::RC_OK);
    EXPECT_TRUE(Ordered("abd"));
}

TEST_F(CommandTaskTest, InOverflowPostsAreRefusedEvenAfterMessagesHaveBeenTaken)
{
    Make(2);
    task->start();
    Hold();
    std::atomic<std::uint32_t> inside{99};
    task->postCommand(MakeCommand("inside", [&] { inside = task->postCommand(Named("late")); }));
    task->postCommand(Named("b"));
    EXPECT_EQ(task->postCommand(Named("c")), BSS::RC_FAILED);
    Go();
    EXPECT_TRUE(Ordered("b"));
    EXPECT_EQ(inside.load(), BSS::RC_FAILED);
}

TEST_F(CommandTaskTest, TheOverflowSubjectIsNotifiedWhenTheOverflowIsOver)
{
    CountingObserverC observer;
    Make(1);
    task->getOverflowSubject().attach(observer);
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    EXPECT_EQ(task->postCommand(Named("b")), BSS::RC_FAILED);
    EXPECT_TRUE(observer.Codes().empty());
    Go();
    EXPECT_TRUE(Support::Eventually([&] { return !observer.Codes().empty(); }));
    EXPECT_EQ(observer.Codes(), std::vector<std::uint32_t>{COMMAND_TASK_OVERFLOW_ENDED});
    EXPECT_TRUE(log->Has("1 [BSS::TSK::CommandTaskC] timeout occurred\n"));
}

// The poster finds the queue full, and before he says so the loop drains it and goes to sleep without a
// limit.
TEST_F(CommandTaskTest, AnOverflowThatIsSetAfterTheQueueHasDrainedStillEnds)
{
    Make(1);
    task->start();
    EXPECT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > 1; }));
    task->getCore().bOverflow.store(true); // the poster's first step
    task->getCore().queueEvent.set();      // and what it must not forget
    EXPECT_TRUE(Support::Eventually([&] { return !task->isInOverflow(); }));
}

TEST_F(CommandTaskTest, AnOverflowWhoseQueueDrainsBeforeItIsSetStillEnds)
{
    Make(1);
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    task->getCore().onRefused = [&] { DrainAndSleep("a"); };
    EXPECT_EQ(task->postCommand(Named("b")), BSS::RC_FAILED);
    EXPECT_TRUE(Support::Eventually([&] { return !task->isInOverflow(); }));
    EXPECT_EQ(Order(), "a");
}

TEST_F(CommandTaskTest, AStopThatIsRefusedWhileTheLoopDrainsItsLastMessageStillEndsIt)
{
    Make(1);
    task->start();
    Hold();
    EXPECT_EQ(task->postCommand(Named("a")), BSS::RC_OK);
    task->getCore().onRefused = [&] { DrainAndSleep("a"); };
    task->stop();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(Order(), "a");
}

TEST_F(CommandTaskTest, AnOwnOverflowTextReplacesTheUsualOneInTheNotification)
{
    CountingObserverC observer;
    GetSystemEventSubject().attach(observer);
    Make(1);
    task->setOverflowText(L"the recorder cannot follow");
    task->postCommand(Named("a"));
    task->postCommand(Named("b"));
    EXPECT_EQ(observer.Codes(), std::vector<std::uint32_t>{8473});
    EXPECT_EQ(static_cast<SystemEventTextC&>(*observer.Last()).getText(), L"the recorder cannot follow");
    EXPECT_TRUE(log->Has("7 Message queue full. Task 'queue', size = 1, maxMsgCount = 1\n"));
}

TEST_F(CommandTaskTest, AnOverflowIsAssertedWhenTheConfigurationSaysSo)
{
    ASSERT_EQ(BSS::OS::PlatformConfigStore().Write(L"Configuration", L"AssertOnQueueOverflow", 1),
              BSS::RC_OK);
    Make(1);
    task->start();
    Hold();
    task->postCommand(Named("a"));
    task->postCommand(Named("b"));
    Go();
    ASSERT_EQ(BSS::OS::PlatformConfigStore().Write(L"Configuration", L"AssertOnQueueOverflow", 0),
              BSS::RC_OK);
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].text, "!\"Message queue overflow!\"");
    EXPECT_EQ(reports.Reports()[0].file, R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_CommandTask)");
    EXPECT_EQ(reports.Reports()[0].line, 765);
}

TEST_F(CommandTaskTest, AnOverflowBeforeTheFirstStartIsAssertedTooWhenTheConfigurationSaysSo)
{
    Make(1);
    task->postCommand(Named("a"));
    ASSERT_EQ(BSS::OS::PlatformConfigStore().Write(L"Configuration", L"AssertOnQueueOverflow", 1),
              BSS::RC_OK);
    task->postCommand(Named("b"));
    ASSERT_EQ(BSS::OS::PlatformConfigStore().Write(L"Configuration", L"AssertOnQueueOverflow", 0),
              BSS::RC_OK);
    EXPECT_EQ(reports.Count("!\"Message queue overflow!\""), 1u);
}

TEST_F(CommandTaskTest, AMaximumOfNothingIsReportedAndMeansOne)
{
    Make(0);
    EXPECT_EQ(reports.Count("maxMsgCount > 0"), 1u);
    EXPECT_EQ(task->getMaxMsgCount(), 1u);
}

TEST_F(CommandTaskTest, PercentagesOfLargeQueuesDoNotOverflow)
{
    Make(2000000000);
    EXPECT_EQ(task->getCore().Percent(1900000000), 95);
}

} // namespace
