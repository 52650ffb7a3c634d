// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Requests of command clients: in a cycle, after a while, at a GPS time. The client has no thread here unless
// a test starts it; what it was posted is looked at in its queue.
#include "Bss/Bss_Tim/BSS_TIM_GpsClock.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeRequest.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceContainer.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceRequest.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Support/Eventually.h"
#include "Support/LogRecorder.h"
#include "TaskFixture.h"
#include "TimeServiceFixture.h"

#include <functional>
#include <memory>
#include <thread>

using namespace BSS::TSK;
using namespace BSS::TIM;
using BSS::UTI::Format;

using TaskTests::TimeServiceTest;

namespace {

constexpr std::uint32_t TWO_HOURS = 7200000;

TEST_F(TimeServiceTest, ARelativeRequestCallsOnceWithItsParameter)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 50, Keep(), 77), BSS::RC_OK);
    EXPECT_TRUE(request.isRunning());
    EXPECT_TRUE(Pass(49));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls, std::vector<std::uint32_t>{77});
    EXPECT_FALSE(request.isRunning());
    EXPECT_TRUE(Pass(1000));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, ARelativeDelayOfZeroFiresAtOnce)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(0));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, ARelativeDelayBeyondTwoHoursIsWaitedForInPieces)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 2 * TWO_HOURS + 5, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(TWO_HOURS));
    EXPECT_TRUE(Pass(TWO_HOURS));
    EXPECT_TRUE(Pass(4));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimeServiceTest, TheLongestDelayCrossesTheWrapOfTheTickCounter)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 0xFFFFFFFF, Keep()), BSS::RC_OK);
    std::uint64_t left = 0xFFFFFFFF;
    while (left > TWO_HOURS) {
        ASSERT_TRUE(Pass(TWO_HOURS));
        left -= TWO_HOURS;
    }
    EXPECT_TRUE(Pass(static_cast<std::uint32_t>(left) - 1));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, AnAbsoluteRequestCallsAtItsGpsTime)
{
    EXPECT_EQ(request.addOneShotAbsoluteRequest(&client, GpsTimeT{2300, 3500}, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(2499));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, AnAbsoluteRequestOverTheEndOfTheWeekIsWaitedForInPieces)
{
    gps.set(GpsTimeT{2300, 604800000 - TWO_HOURS});
    EXPECT_EQ(request.addOneShotAbsoluteRequest(&client, GpsTimeT{2301, TWO_HOURS + 7}, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(TWO_HOURS));
    EXPECT_TRUE(Pass(TWO_HOURS));
    EXPECT_TRUE(Pass(6));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, AnAbsoluteTimeInThePastFiresAtOnce)
{
    EXPECT_EQ(request.addOneShotAbsoluteRequest(&client, GpsTimeT{1000, 0}, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(0));
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimeServiceTest, AnAbsoluteRequestFollowsAClockThatIsSet)
{
    EXPECT_EQ(request.addOneShotAbsoluteRequest(&client, GpsTimeT{2300, 100000}, Keep()), BSS::RC_OK);
    gps.set(GpsTimeT{2300, 99990});
    EXPECT_TRUE(Pass(9));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, AClockThatIsPutBackMakesAnAbsoluteRequestWaitLonger)
{
    EXPECT_EQ(request.addOneShotAbsoluteRequest(&client, GpsTimeT{2300, 2000}, Keep()), BSS::RC_OK);
    gps.set(GpsTimeT{2300, 0});
    EXPECT_TRUE(Pass(1999));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, ACycleFiresAtMultiplesOfItsLengthPlusItsOffset)
{
    EXPECT_EQ(request.addCycleRequest(&client, 100, 30, Keep()), BSS::RC_OK); // the clock shows 1000
    for (int i = 0; i < 35; ++i)
        EXPECT_TRUE(Pass(10));
    EXPECT_EQ(callTicks, (std::vector<std::uint32_t>{1030, 1130, 1230, 1330}));
}

TEST_F(TimeServiceTest, ACycleDoesNotDriftOverAYear)
{
    // An hour's cycle, with a clock that is looked at a little late each time.
    constexpr std::uint32_t HOUR = 3600000;
    EXPECT_EQ(request.addCycleRequest(&client, HOUR, 5, Keep()), BSS::RC_OK);
    const std::uint64_t begin = clock.now();
    std::uint64_t next = NextSlot(begin, HOUR, 5);
    for (int i = 0; i < 365 * 24; ++i) {
        const std::uint32_t late = static_cast<std::uint32_t>(i) % 7;
        ASSERT_TRUE(Pass(static_cast<std::uint32_t>(next - clock.now()) + late));
        ASSERT_EQ(calls.size(), static_cast<std::size_t>(i) + 1);
        next += HOUR;
    }
    EXPECT_EQ(request.getDroppedCount(), 0u);
    EXPECT_EQ((next - HOUR - 5) % HOUR, 0u);
}

TEST_F(TimeServiceTest, ACycleBeyondTwoHoursFiresOnItsSlots)
{
    constexpr std::uint32_t DAY = 24 * 3600000;
    EXPECT_EQ(request.addCycleRequest(&client, DAY, 1000, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(DAY - 1));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(1));
    EXPECT_EQ(calls.size(), 1u);
    for (int i = 0; i < 12; ++i)
        EXPECT_TRUE(Pass(TWO_HOURS));
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST_F(TimeServiceTest, AfterASleepTheSlotsThatArePastAreDropped)
{
    EXPECT_EQ(request.addCycleRequest(&client, 100, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(100));
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_TRUE(Pass(1050)); // ten slots, of which the last is not over
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_EQ(request.getDroppedCount(), 9u);
    EXPECT_TRUE(Pass(50));
    EXPECT_EQ(calls.size(), 3u) << "and it goes on with the next slot";
}

TEST_F(TimeServiceTest, AfterASleepALongCycleFiresForTheSlotThatIsNotOver)
{
    constexpr std::uint32_t HOUR = 3600000;
    EXPECT_EQ(request.addCycleRequest(&client, 3 * HOUR, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(10 * HOUR)); // three slots
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_EQ(request.getDroppedCount(), 2u);
    EXPECT_TRUE(Pass(2 * HOUR)); // and it goes on with the next slot
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_EQ(request.getDroppedCount(), 2u);
}

TEST_F(TimeServiceTest, AClientThatIsSlowHasOneMessageAndTheRestIsCounted)
{
    client.executesAtOnce = false;
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep()), BSS::RC_OK);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(Pass(10));
    EXPECT_EQ(client.waiting.size(), 1u);
    EXPECT_EQ(request.getSkippedCount(), 4u);
    EXPECT_NE(request.dump().find("Skipped  = 4\n"), std::string::npos);
    client.ExecuteAll();
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(client.waiting.size(), 1u);
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(TimeServiceTest, ARefusedMessageLetsTheNextOneThrough)
{
    client.refuses = true;
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(client.posts, 2u);
    EXPECT_EQ(request.getSkippedCount(), 0u);
}

TEST_F(TimeServiceTest, ADiscardedMessageLetsTheNextOneThrough)
{
    client.executesAtOnce = false;
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    client.waiting.clear();
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(client.posts, 2u);
}

TEST_F(TimeServiceTest, AfterAStopNothingFiresAndWhatWaitsDoesNothing)
{
    client.executesAtOnce = false;
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep()), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    request.stop();
    EXPECT_FALSE(request.isRunning());
    client.ExecuteAll();
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Pass(100));
    EXPECT_EQ(client.posts, 1u);
    EXPECT_EQ(engine.getActiveCount(), 0u);
}

TEST_F(TimeServiceTest, CanBeAddedAgainAfterItsEndAndAfterAStop)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 10, Keep(), 1), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep(), 2), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    request.stop();
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 10, Keep(), 3), BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(calls, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST_F(TimeServiceTest, AClientCanAddTheRequestAgainFromItsOwnCall)
{
    std::function<void(std::uint32_t)> again = [&](std::uint32_t n) {
        calls.push_back(n);
        if (n == 3) return;
        EXPECT_EQ(request.addOneShotRelativeRequest(&client, 10, again, n + 1), BSS::RC_OK);
    };
    client.executesAtOnce = false;
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 10, again, 1), BSS::RC_OK);
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(Pass(10));
        const auto messages = std::exchange(client.waiting, {});
        for (const TimerMsgPtrT& message : messages)
            message->execute();
    }
    EXPECT_EQ(calls, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST_F(TimeServiceTest, ARequestWithoutAClientIsReportedAndRefused)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(nullptr, 10, Keep()), BSS::RC_INVALID_ARGUMENT);
    EXPECT_EQ(reports.Count("pCmdClient"), 1u);
}

TEST_F(TimeServiceTest, ARequestThatIsAttachedIsReportedAndRefused)
{
    EXPECT_EQ(request.addOneShotRelativeRequest(&client, 10, Keep(), 1), BSS::RC_OK);
    EXPECT_EQ(request.addCycleRequest(&client, 10, 0, Keep(), 2), BSS::RC_INVALID_ARGUMENT);
    EXPECT_EQ(reports.Count("m_pAttachedAt == 0 && m_TimerId == 0"), 1u);
    EXPECT_EQ(reports.Count("m_iRequestType == static_cast<uint8_t>(TIME_UNKNOWN)"), 1u);
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(calls, std::vector<std::uint32_t>{1});
}

TEST_F(TimeServiceTest, ACycleOfZeroIsReportedAndRefused)
{
    EXPECT_EQ(request.addCycleRequest(&client, 0, 0, Keep()), BSS::RC_FAILED);
    EXPECT_EQ(Report(), "m_iCycle>0 593");
    EXPECT_FALSE(request.isRunning());
}

TEST_F(TimeServiceTest, DeletingARequestThatWasNotStoppedIsReportedAndStopsIt)
{
    {
        TimeServiceRequestC doomed(engine, gps);
        EXPECT_EQ(doomed.addCycleRequest(&client, 10, 0, Keep()), BSS::RC_OK);
    }
    EXPECT_EQ(reports.Count("!\"Time service request not stopped before deleting the object!\""), 1u);
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_TRUE(Pass(100));
    EXPECT_TRUE(calls.empty());
}

TEST_F(TimeServiceTest, LogsWhatIsAddedUnderTheNumberOfItsMessages)
{
    request.addCycleRequest(&client, 100, 0, Keep());
    EXPECT_TRUE(Pass(100));
    EXPECT_TRUE(
        log->Has(Format("3 [BSS::TSK::TimeServiceRequestC] Added Cycle (%d ms) request (CmdReqId:%d)\n", 100,
                        client.lastReqId)));
    request.stop();
    request.addOneShotRelativeRequest(&client, 40, Keep());
    EXPECT_TRUE(Pass(40));
    EXPECT_TRUE(log->Has(
        Format("3 [BSS::TSK::TimeServiceRequestC] Added one-shot relative (%d ms) request (CmdReqId:%d)\n",
               40, client.lastReqId)));
    request.addOneShotAbsoluteRequest(&client, GpsTimeT{2300, 0}, Keep());
    EXPECT_TRUE(Pass(0));
    EXPECT_TRUE(
        log->Has(Format("3 [BSS::TSK::TimeServiceRequestC] Added one-shot absolute request (CmdReqId:%d)\n",
                        client.lastReqId)));
}

TEST_F(TimeServiceTest, MessagesHaveHighPriorityUnlessTheRequestSaysOtherwise)
{
    request.addCycleRequest(&client, 10, 0, Keep());
    EXPECT_TRUE(Pass(10));
    EXPECT_TRUE(client.lastHigh);
    request.setHighPriority(false);
    EXPECT_TRUE(Pass(10));
    EXPECT_FALSE(client.lastHigh);
}

TEST_F(TimeServiceTest, TheDumpHasALineForEachMember)
{
    request.addCycleRequest(&client, 100, 30, Keep(), 0xAB);
    EXPECT_TRUE(Pass(30));
    const std::string dump = request.dump();
    const auto has = [&](const std::string& line) { return dump.find(line) != std::string::npos; };
    EXPECT_TRUE(dump.starts_with("\nRequestType = 1\nTime-service-request at 0x")) << dump;
    EXPECT_TRUE(has("\nAttachedAt  = 0x"));
    EXPECT_TRUE(has("\nCmdClient = 0x"));
    EXPECT_TRUE(has("\nTimerId   = 0x10000001\n"));
    EXPECT_TRUE(has("\nParam0    = 0xab\nCycle    = 100\nOffset   = 30\nGPS time = 0, 0\nLastTick = "
                    "1030\nSlotTime = 1130\n"));
    EXPECT_NE(TimeServiceContainerC::instance().dump().find(dump), std::string::npos);
    EXPECT_EQ(TimeServiceContainerC::instance().getCount(), 1u);
    request.stop();
    EXPECT_EQ(TimeServiceContainerC::instance().getCount(), 0u);
}

TEST_F(TimeServiceTest, AnAbsoluteRequestShowsItsTargetInTheDump)
{
    request.addOneShotAbsoluteRequest(&client, GpsTimeT{2301, 5}, Keep());
    EXPECT_NE(request.dump().find("GPS time = 2301, 5\n"), std::string::npos);
    EXPECT_TRUE(request.dump().starts_with("\nRequestType = 3\n"));
}

TEST_F(TimeServiceTest, ACommandTaskIsCalledOnItsOwnThread)
{
    TskMgr::instance().setTaskOptions(TaskTests::OPTION, {0, 0});
    CommandTaskC task({"client", TaskTests::OPTION, TaskTests::OPTION, true, false, {}}, 10);
    task.start();
    EventC called;
    std::uint32_t id = 0;
    EXPECT_EQ(request.addOneShotRelativeRequest(&task, 10,
                                                [&](std::uint32_t) {
                                                    id = TaskC::getCurrent()->getTaskId();
                                                    called.set();
                                                }),
              BSS::RC_OK);
    EXPECT_TRUE(Pass(10));
    EXPECT_EQ(called.wait(20000), BSS::RC_OK);
    EXPECT_EQ(id, task.getTaskId());
    task.stop();
    EXPECT_TRUE(task.waitForStop(-1));
    TskMgr::instance().removeTaskOptions(TaskTests::OPTION);
}

TEST(TimeRequestDelay, IsWeeksAndMillisecondsBetweenZeroAndTheLargestNumber)
{
    EXPECT_EQ(TimeRequestDelayMs({1, 500}, {1, 0}), 500u);
    EXPECT_EQ(TimeRequestDelayMs({2, 0}, {1, 604799999}), 1u);
    EXPECT_EQ(TimeRequestDelayMs({3, 1}, {1, 0}), 1209600001u);
    EXPECT_EQ(TimeRequestDelayMs({1, 0}, {1, 1}), 0u);
    EXPECT_EQ(TimeRequestDelayMs({8, 61367295}, {1, 0}), 4294967295u);
    EXPECT_EQ(TimeRequestDelayMs({8, 61367296}, {1, 0}), 0xFFFFFFFFu);
    EXPECT_EQ(TimeRequestDelayMs({4000, 0}, {1, 0}), 0xFFFFFFFFu);
}

TEST(NextSlot, IsTheNextMultiplePlusTheOffset)
{
    EXPECT_EQ(NextSlot(1000, 100, 0), 1100u);
    EXPECT_EQ(NextSlot(1001, 100, 0), 1100u);
    EXPECT_EQ(NextSlot(1000, 100, 30), 1030u);
    EXPECT_EQ(NextSlot(1030, 100, 30), 1130u);
    EXPECT_EQ(NextSlot(1000, 100, 230), 1030u);
    EXPECT_EQ(NextSlot(5, 100, 99), 99u);
}

TEST_F(TimeServiceTest, ARequestThatIsGoneIsNoObserverOfItsClock)
{
    const std::size_t before = gps.getSubject().getObserverCount();
    {
        const TimeServiceRequestC other(engine, gps, log);
        EXPECT_EQ(gps.getSubject().getObserverCount(), before + 1);
    }
    EXPECT_EQ(gps.getSubject().getObserverCount(), before);
}

} // namespace
