// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Events of the platform layer and the wait for several of them.
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

using namespace BSS::HAL;
using KindT = WaitAnswerT::Kind;

namespace {

class WaitEventC
{
public:
    explicit WaitEventC(ResetMode mode, bool signalled = false) : m_handle(MakeWaitEvent(mode, signalled)) {}
    ~WaitEventC() { CloseWaitHandle(m_handle); }
    WaitEventC(const WaitEventC&) = delete;
    WaitEventC& operator=(const WaitEventC&) = delete;
    operator WaitHandleT() const { return m_handle; }

private:
    WaitHandleT m_handle;
};

constexpr std::uint32_t LONG_MS = 20000;

TEST(Waitable, AutoResetEventReleasesOneWaitPerSignal)
{
    const WaitEventC event(ResetMode::Auto);
    EXPECT_TRUE(SetWaitEvent(event));
    EXPECT_TRUE(SetWaitEvent(event));
    EXPECT_TRUE(WaitForOne(event, 0));
    EXPECT_FALSE(WaitForOne(event, 0));
}

TEST(Waitable, ManualResetEventStaysSignalledUntilItIsReset)
{
    const WaitEventC event(ResetMode::Manual);
    SetWaitEvent(event);
    EXPECT_TRUE(WaitForOne(event, 0));
    EXPECT_TRUE(WaitForOne(event, 0));
    EXPECT_TRUE(ResetWaitEvent(event));
    EXPECT_FALSE(WaitForOne(event, 0));
}

TEST(Waitable, AnEventCanBeMadeSignalled)
{
    const WaitEventC event(ResetMode::Auto, true);
    EXPECT_TRUE(WaitForOne(event, 0));
}

TEST(Waitable, TheFirstOfSeveralSignalledHandlesIsTheAnswer)
{
    const WaitEventC events[] = {WaitEventC(ResetMode::Auto), WaitEventC(ResetMode::Manual, true),
                                 WaitEventC(ResetMode::Auto, true)};
    const WaitHandleT handles[] = {events[0], events[1], events[2]};
    const WaitAnswerT answer = WaitForAny(handles, 3, 0);
    EXPECT_EQ(answer.kind, KindT::Signalled);
    EXPECT_EQ(answer.index, 1u);
    EXPECT_TRUE(WaitForOne(handles[2], 0)) << "the others keep their signal";
}

TEST(Waitable, ALimitThatPassesIsATimeOut)
{
    const WaitEventC event(ResetMode::Auto);
    const WaitHandleT handle = event;
    const std::uint64_t before = TickCount64();
    EXPECT_EQ(WaitForAny(&handle, 1, 2).kind, KindT::TimedOut);
    EXPECT_GE(TickCount64() - before, 1u);
}

TEST(Waitable, AWaitUntilATickEndsWhenTheClockHasReachedIt)
{
    const WaitEventC event(ResetMode::Auto);
    const WaitHandleT handle = event;
    const std::uint64_t due = TickCount64() + 3;
    EXPECT_EQ(WaitForAnyUntil(&handle, 1, due).kind, KindT::TimedOut);
    EXPECT_GE(TickCount64(), due);
    EXPECT_EQ(WaitForAnyUntil(&handle, 1, due).kind, KindT::TimedOut) << "a tick that is past";
}

TEST(Waitable, SixtyTwoHandlesCanBeWaitedForAndNoMoreAndNoneIsRefused)
{
    std::vector<std::unique_ptr<WaitEventC>> events;
    std::vector<WaitHandleT> handles;
    for (std::size_t i = 0; i < MAX_WAIT_HANDLES + 1; ++i) {
        events.push_back(std::make_unique<WaitEventC>(ResetMode::Auto));
        handles.push_back(*events.back());
    }
    SetWaitEvent(handles[61]);
    EXPECT_EQ(WaitForAny(handles.data(), 62, 0).index, 61u);
    EXPECT_EQ(WaitForAny(handles.data(), 63, 0).error, WAIT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(WaitForAny(handles.data(), 0, 0).error, WAIT_ERROR_INVALID_PARAMETER);
}

TEST(Waitable, AClosedHandleIsFoundOutAndNamed)
{
    const WaitEventC open(ResetMode::Auto);
    const WaitHandleT closed = MakeWaitEvent(ResetMode::Auto, true);
    EXPECT_TRUE(IsWaitHandleOpen(closed));
    EXPECT_TRUE(CloseWaitHandle(closed));
    const WaitHandleT handles[] = {open, closed};
    const WaitAnswerT answer = WaitForAny(handles, 2, LONG_MS);
    EXPECT_EQ(answer.kind, KindT::Failed);
    EXPECT_EQ(answer.error, WAIT_ERROR_INVALID_HANDLE);
    EXPECT_FALSE(IsWaitHandleOpen(closed));
    EXPECT_FALSE(SetWaitEvent(closed));
    EXPECT_FALSE(ResetWaitEvent(closed));
    EXPECT_FALSE(PulseWaitEvent(closed));
    EXPECT_FALSE(CloseWaitHandle(closed));
    EXPECT_FALSE(CloseWaitHandle(NO_WAIT_HANDLE));
}

TEST(Waitable, ARefusedEventIsNoHandle)
{
    OrderFault(FaultT::Event, 2);
    const WaitHandleT first = MakeWaitEvent(ResetMode::Auto, false);
    EXPECT_NE(first, NO_WAIT_HANDLE);
    EXPECT_EQ(MakeWaitEvent(ResetMode::Auto, false), NO_WAIT_HANDLE);
    const WaitHandleT third = MakeWaitEvent(ResetMode::Auto, false);
    EXPECT_NE(third, NO_WAIT_HANDLE);
    CloseWaitHandle(first);
    CloseWaitHandle(third);
}

TEST(Waitable, SettingWakesTheThreadThatWaitsForSeveral)
{
    const WaitEventC first(ResetMode::Auto);
    const WaitEventC second(ResetMode::Auto);
    for (int round = 0; round < 500; ++round) {
        std::thread setter([&] { SetWaitEvent(second); });
        const WaitHandleT handles[] = {first, second};
        const WaitAnswerT answer = WaitForAny(handles, 2, LONG_MS);
        setter.join();
        ASSERT_EQ(answer.kind, KindT::Signalled);
        ASSERT_EQ(answer.index, 1u);
    }
}

TEST(Waitable, WhatWasDoneBeforeTheSignalIsSeenAfterTheWait)
{
    const WaitEventC there(ResetMode::Auto);
    const WaitEventC back(ResetMode::Auto);
    int value = 0; // guarded by the events alone
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            ASSERT_TRUE(WaitForOne(there, LONG_MS));
            ++value;
            SetWaitEvent(back);
        }
    });
    for (int i = 0; i < 2000; ++i) {
        ++value;
        SetWaitEvent(there);
        ASSERT_TRUE(WaitForOne(back, LONG_MS));
    }
    other.join();
    EXPECT_EQ(value, 4000);
}

// A turnstile: as many waits end as signals were taken, whatever the threads do to each other.
TEST(Waitable, NoSignalIsLostAmongManyThreads)
{
    constexpr int THREADS = 4;
    constexpr int ROUNDS = 3000;
    const WaitEventC turnstile(ResetMode::Auto, true);
    const WaitEventC other(ResetMode::Manual);
    long passed = 0; // guarded by the turnstile: it is an event that starts signalled, so a lock
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < ROUNDS; ++round) {
                // Some wait with others beside it and some with limits that pass.
                const WaitHandleT handles[] = {other, turnstile};
                WaitAnswerT answer;
                do {
                    answer =
                        i % 2 == 0 ? WaitForAny(handles, 2, LONG_MS) : WaitForAny(handles + 1, 1, round % 3);
                } while (answer.kind == KindT::TimedOut);
                ASSERT_EQ(answer.kind, KindT::Signalled);
                ++passed;
                SetWaitEvent(turnstile);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(passed, THREADS * ROUNDS);
    EXPECT_TRUE(WaitForOne(turnstile, 0));
    EXPECT_FALSE(WaitForOne(turnstile, 0));
}

// The pattern of a queue: change, then set unless it is signalled; reset, then look.
TEST(Waitable, SettingIfClearLosesNothingForThoseWhoResetBeforeTheyLook)
{
    constexpr int POSTS = 20000;
    const WaitEventC event(ResetMode::Manual);
    std::atomic<int> waiting{0};
    std::thread poster([&] {
        for (int i = 0; i < POSTS; ++i) {
            waiting.fetch_add(1);
            ASSERT_TRUE(SetWaitEventIfClear(event));
        }
    });
    int taken = 0;
    while (taken < POSTS) {
        ASSERT_TRUE(WaitForOne(event, LONG_MS));
        ResetWaitEvent(event);
        taken += waiting.exchange(0);
    }
    poster.join();
    EXPECT_EQ(taken, POSTS);
}

TEST(Waitable, PulseWithNobodyWaitingLeavesTheEventReset)
{
    const WaitEventC manual(ResetMode::Manual, true);
    const WaitEventC single(ResetMode::Auto, true);
    EXPECT_TRUE(PulseWaitEvent(manual));
    EXPECT_TRUE(PulseWaitEvent(single));
    EXPECT_FALSE(WaitForOne(manual, 0));
    EXPECT_FALSE(WaitForOne(single, 0));
}

// Nobody can see from outside that a thread has begun to wait, so the pulse is repeated until all have gone
// on.
int PulsesUntilGone(ResetMode mode, int threadCount)
{
    const WaitEventC event(mode);
    std::atomic<int> gone{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            EXPECT_TRUE(WaitForOne(event, LONG_MS));
            gone.fetch_add(1);
        });
    }
    int pulses = 0;
    while (gone.load() < threadCount) {
        PulseWaitEvent(event);
        ++pulses;
        std::this_thread::yield();
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(WaitForOne(event, 0)) << "a pulse leaves nothing behind";
    return pulses;
}

TEST(Waitable, APulseReleasesOneOfThoseWhoWaitForAnAutoResetEvent)
{
    EXPECT_GE(PulsesUntilGone(ResetMode::Auto, 3), 3);
}

TEST(Waitable, APulseReleasesThoseWhoWaitForAManualResetEvent)
{
    EXPECT_GE(PulsesUntilGone(ResetMode::Manual, 3), 1);
}

} // namespace
