// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Thread numbers, names and priorities; the wake event; debugger output; the clock.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_WakeEvent.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <thread>

using namespace BSS::HAL;

namespace {

template<typename FunctionT>
auto OnAnotherThread(FunctionT function)
{
    decltype(function()) result{};
    std::thread([&] { result = function(); }).join();
    return result;
}

TEST(Thread, IdIsNeverZeroAndStaysTheSame)
{
    EXPECT_NE(CurrentThreadId(), 0u);
    EXPECT_EQ(CurrentThreadId(), CurrentThreadId());
}

TEST(Thread, LivingThreadsHaveDifferentIds)
{
    EXPECT_NE(OnAnotherThread([] { return CurrentThreadId(); }), CurrentThreadId());
}

TEST(Thread, MainThreadHasItsName)
{
    EXPECT_STREQ(CurrentThreadName(), "Main Thread");
}

TEST(Thread, OtherThreadsAreUnknownUntilNamed)
{
    EXPECT_EQ(OnAnotherThread([] { return std::string(CurrentThreadName()); }), "UnknownThread");
    const auto named = [] {
        SetCurrentThreadName("Timer");
        return std::string(CurrentThreadName());
    };
    EXPECT_EQ(OnAnotherThread(named), "Timer");
}

TEST(Thread, NameBelongsToOneThreadAndCanBeTakenAway)
{
    SetCurrentThreadName("Mine");
    EXPECT_EQ(OnAnotherThread([] { return std::string(CurrentThreadName()); }), "UnknownThread");
    EXPECT_STREQ(CurrentThreadName(), "Mine");
    SetCurrentThreadName(nullptr);
    EXPECT_STREQ(CurrentThreadName(), "Main Thread");
}

TEST(Thread, LongNameIsCut)
{
    const auto named = [] {
        SetCurrentThreadName(std::string(100, 'n').c_str());
        return std::string(CurrentThreadName());
    };
    EXPECT_EQ(OnAnotherThread(named), std::string(63, 'n'));
}

TEST(Thread, UsualPriorityIsOnTheScale)
{
    EXPECT_GE(CurrentThreadPriority(), -15);
    EXPECT_LE(CurrentThreadPriority(), 15);
}

TEST(WakeEvent, RemembersOneSignal)
{
    WakeEvent* const event = OpenWakeEvent();
    ASSERT_NE(event, nullptr);
    SignalWakeEvent(event);
    SignalWakeEvent(event);
    AwaitWakeEvent(event);
    CloseWakeEvent(event);
}

TEST(WakeEvent, HandsWorkBackAndForth)
{
    WakeEvent* const ping = OpenWakeEvent();
    WakeEvent* const pong = OpenWakeEvent();
    int ball = 0; // guarded by the two events alone
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i) {
            AwaitWakeEvent(ping);
            ++ball;
            SignalWakeEvent(pong);
        }
    });
    for (int i = 0; i < 1000; ++i) {
        ++ball;
        SignalWakeEvent(ping);
        AwaitWakeEvent(pong);
    }
    other.join();
    EXPECT_EQ(ball, 2000);
    CloseWakeEvent(ping);
    CloseWakeEvent(pong);
}

TEST(WakeEvent, ClosingNothingIsAllowed)
{
    CloseWakeEvent(nullptr);
}

TEST(DebugOutput, GoesToTheSinkWhileThereIsOne)
{
    const Support::DebugOutputCapture capture;
    DebugOutput(L"one ");
    DebugOutput(L"two");
    EXPECT_EQ(capture.Text(), L"one two");
}

TEST(DebugOutput, SinkThatWritesDebugOutputDoesNotRecurse)
{
    int calls = 0;
    SetDebugOutputSink(
        [](const wchar_t*, void* context) {
            ++*static_cast<int*>(context);
            DebugOutput(L"again");
        },
        &calls);
    DebugOutput(L"x");
    SetDebugOutputSink(nullptr, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST(DebugOutput, SinkMayTakeItselfAway)
{
    int calls = 0;
    SetDebugOutputSink(
        [](const wchar_t*, void* context) {
            ++*static_cast<int*>(context);
            SetDebugOutputSink(nullptr, nullptr);
        },
        &calls);
    DebugOutput(L"x");
    DebugOutput(L"y");
    EXPECT_EQ(calls, 1);
}

TEST(DebugOutput, SinkIsOutOfUseOnceItHasBeenTakenAway)
{
    for (int round = 0; round < 200; ++round) {
        std::thread writer;
        {
            const Support::DebugOutputCapture capture;
            writer = std::thread([] {
                for (int i = 0; i < 20; ++i)
                    DebugOutput(L"x");
            });
        }
        writer.join();
    }
}

TEST(Clock, FieldsAreWithinTheirRanges)
{
    for (const CalendarTime& now : {LocalTimeNow(), UtcTimeNow()}) {
        EXPECT_GE(now.year, 2024);
        EXPECT_TRUE(now.month >= 1 && now.month <= 12);
        EXPECT_TRUE(now.day >= 1 && now.day <= 31);
        EXPECT_TRUE(now.hour >= 0 && now.hour <= 23);
        EXPECT_TRUE(now.minute >= 0 && now.minute <= 59);
        EXPECT_TRUE(now.second >= 0 && now.second <= 60);
        EXPECT_TRUE(now.millisecond >= 0 && now.millisecond <= 999);
    }
}

} // namespace
