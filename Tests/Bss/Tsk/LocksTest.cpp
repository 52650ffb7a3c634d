// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Events, semaphores and the locks for readers and writers.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_ReadWriteLocks.h"
#include "Bss/Bss_Tsk/BSS_TSK_ReaderWriterLock.h"
#include "Bss/Bss_Tsk/BSS_TSK_Semaphore.h"
#include "Support/Eventually.h"

#include <atomic>
#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

using namespace BSS::TSK;

namespace {

TEST(Event, AWaitWithALimitAnswersOkOrTimedOut)
{
    EventC event;
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT);
    event.set();
    EXPECT_EQ(event.wait(1000), BSS::RC_OK);
    EXPECT_EQ(event.wait(1), BSS::RC_TIMED_OUT);
}

TEST(Event, AFailedWaitIsTimedOutWithALimitAndFailedWithoutOne)
{
    EventC event;
    BSS::HAL::CloseWaitHandle(event.getHandle());
    EXPECT_EQ(event.wait(1000), BSS::RC_TIMED_OUT);
    EXPECT_EQ(event.wait(-1), BSS::RC_WAIT_FAILED);
}

TEST(Event, ResetAndPulseLeaveNoSignal)
{
    EventC event(BSS::HAL::ResetMode::Manual, true);
    EXPECT_EQ(event.wait(0), BSS::RC_OK);
    event.reset();
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT);
    event.set();
    event.pulse();
    EXPECT_EQ(event.wait(0), BSS::RC_TIMED_OUT);
}

TEST(Event, WaitingIsNoInterruptionPoint)
{
    EventC event;
    std::atomic<bool> entered{false};
    std::atomic<bool> interrupted{false};
    boost::thread waiting([&] {
        entered = true;
        EXPECT_EQ(event.wait(20000), BSS::RC_OK);
        EXPECT_EQ(event.wait(1), BSS::RC_TIMED_OUT);
        interrupted = boost::this_thread::interruption_requested();
    });
    EXPECT_TRUE(Support::Eventually([&] { return entered.load(); }));
    waiting.interrupt();
    event.set();
    waiting.join();
    EXPECT_TRUE(interrupted.load()) << "it stays asked for";
}

TEST(Event, ThrowsWhenTheSystemHasNone)
{
    BSS::HAL::OrderFault(BSS::HAL::FaultT::Event, 1);
    try {
        const EventC event;
        FAIL();
    } catch (const BSS::SysServiceErrorC& error) {
        EXPECT_EQ(error.GetResultCode(), BSS::RC_SERVICE_FAILED);
    }
}

TEST(Semaphore, GivesAsOftenAsItsCount)
{
    SemaphoreC semaphore(2);
    EXPECT_TRUE(semaphore.tryLock());
    EXPECT_TRUE(semaphore.wait(0));
    EXPECT_FALSE(semaphore.tryLock());
    EXPECT_FALSE(semaphore.wait(0));
    semaphore.post();
    EXPECT_TRUE(semaphore.wait(-1));
}

TEST(Semaphore, ATimedWaitEndsWithoutAPost)
{
    SemaphoreC semaphore;
    const std::int64_t before = BSS::HAL::TickMicroseconds();
    EXPECT_FALSE(semaphore.wait(3));
    EXPECT_GE(BSS::HAL::TickMicroseconds() - before, 3000);
}

TEST(Semaphore, APostWakesAWaitingThread)
{
    SemaphoreC there;
    SemaphoreC back;
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            there.wait();
            back.post();
        }
    });
    for (int i = 0; i < 2000; ++i) {
        there.post();
        ASSERT_TRUE(back.wait(20000));
    }
    other.join();
}

TEST(Semaphore, NoCountIsLostAmongManyThreads)
{
    constexpr int EACH = 5000;
    SemaphoreC semaphore;
    std::atomic<int> taken{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < EACH; ++round)
                semaphore.post();
        });
        threads.emplace_back([&] {
            for (int round = 0; round < EACH; ++round) {
                if (!semaphore.wait(20000)) return;
                taken.fetch_add(1);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(taken.load(), 2 * EACH);
    EXPECT_FALSE(semaphore.tryLock());
}

TEST(Semaphore, IsALockForAGuard)
{
    SemaphoreC semaphore(1);
    {
        const GuardC guard(semaphore);
        EXPECT_FALSE(semaphore.tryLock());
    }
    EXPECT_TRUE(semaphore.tryLock());
}

TEST(Semaphore, WaitingIsNoInterruptionPoint)
{
    SemaphoreC semaphore;
    std::atomic<bool> taken{false};
    boost::thread waiting([&] {
        semaphore.wait();
        taken = true;
    });
    waiting.interrupt();
    semaphore.post();
    waiting.join();
    EXPECT_TRUE(taken.load());
}

TEST(SemaphoreDeadline, IsTheClockPlusTheTimeOutInMicroseconds)
{
    EXPECT_EQ(SemaphoreDeadlineUs(1000000, 42), 1042000);
    EXPECT_EQ(SemaphoreDeadlineUs(5, std::numeric_limits<std::int32_t>::max()), 5 + 2147483647000);
    EXPECT_EQ(SemaphoreDeadlineUs(7, 0), 7);
}

TEST(SemaphoreDeadline, IsNoneForEveryNegativeTimeOut)
{
    EXPECT_EQ(SemaphoreDeadlineUs(1000, -1), -1);
    EXPECT_EQ(SemaphoreDeadlineUs(1000, -7), -1);
    EXPECT_EQ(SemaphoreDeadlineUs(1000, std::numeric_limits<std::int32_t>::min()), -1);
}

TEST(SemaphoreDeadline, KeepsTheClocksSpecialValues)
{
    using LimitsT = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(SemaphoreDeadlineUs(LimitsT::max(), 5), LimitsT::max());
    EXPECT_EQ(SemaphoreDeadlineUs(LimitsT::max() - 1, 5), LimitsT::max() - 1);
    EXPECT_EQ(SemaphoreDeadlineUs(LimitsT::min(), 5), LimitsT::min());
}

TEST(ReaderWriterLock, ReadersShareItAndAWriterDoesNot)
{
    ReaderWriterLockC lock;
    ReadLockC reader(lock);
    std::thread([&] {
        TryReadLockC second(lock);
        EXPECT_TRUE(second.tryLock());
        TryWriteLockC writer(lock);
        EXPECT_FALSE(writer.tryLock());
    }).join();
    reader.unlock();
    const WriteLockC writer(lock);
    std::thread([&] {
        TryReadLockC second(lock);
        EXPECT_FALSE(second.tryLock());
    }).join();
}

TEST(ReaderWriterLock, WhatIsHeldIsReleasedWhenTheHolderGoes)
{
    ReaderWriterLockC lock;
    {
        TryWriteLockC writer(lock);
        EXPECT_TRUE(writer.tryLock());
    }
    {
        const ReadLockC reader(lock);
    }
    {
        TryReadLockC reader(lock);
        EXPECT_TRUE(reader.tryLock());
    }
    const WriteLockC writer(lock);
}

TEST(ReaderWriterLock, LockingAndUnlockingTwiceDoesNothingMore)
{
    ReaderWriterLockC lock;
    WriteLockC writer(lock);
    writer.lock();
    writer.unlock();
    writer.unlock();
    ReadLockC reader(lock);
    reader.lock();
    reader.unlock();
    reader.unlock();
    writer.lock();
}

TEST(ReaderWriterLock, KeepsWritersApart)
{
    ReaderWriterLockC lock;
    int value = 0; // guarded by the lock alone
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 3000; ++round) {
                const WriteLockC writer(lock);
                ++value;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const ReadLockC reader(lock);
    EXPECT_EQ(value, 9000);
}

} // namespace
