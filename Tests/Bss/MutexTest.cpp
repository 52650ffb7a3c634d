// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The recursive mutex and its guard, alone and between threads.
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using BSS::TSK::GuardC;
using BSS::TSK::LockC;
using BSS::TSK::MutexC;

namespace {

void OnThreads(int count, const std::function<void()>& body)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Mutex, OwnerMayLockAgain)
{
    MutexC mutex;
    mutex.lock();
    mutex.lock();
    mutex.unlock();
    mutex.unlock();
    OnThreads(1, [&] { const GuardC guard(mutex); });
}

TEST(Mutex, IsHeldUntilTheLastUnlock)
{
    MutexC mutex;
    std::atomic<bool> entered = false;
    mutex.lock();
    mutex.lock();
    std::thread other([&] {
        const GuardC guard(mutex);
        entered = true;
    });
    mutex.unlock();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_FALSE(entered);
    mutex.unlock();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(Mutex, KeepsThreadsApart)
{
    MutexC mutex;
    int counter = 0; // guarded by nothing else
    OnThreads(4, [&] {
        for (int i = 0; i < 20000; ++i) {
            const GuardC guard(mutex);
            ++counter;
        }
    });
    EXPECT_EQ(counter, 80000);
}

TEST(Mutex, KeepsThreadsApartWhenHeldRecursivelyAndForLonger)
{
    MutexC mutex;
    std::vector<int> values;
    OnThreads(3, [&] {
        for (int i = 0; i < 500; ++i) {
            const GuardC outer(mutex);
            const std::size_t before = values.size();
            std::this_thread::yield();
            const GuardC inner(mutex);
            values.push_back(i);
            ASSERT_EQ(values.size(), before + 1);
        }
    });
    EXPECT_EQ(values.size(), 1500u);
}

TEST(Mutex, MayBeDestroyedRightAfterTheLastUnlock)
{
    struct Shared
    {
        MutexC mutex;
        int users = 2;
    };
    const auto leave = [](Shared* shared) {
        shared->mutex.lock();
        const bool last = --shared->users == 0;
        shared->mutex.unlock();
        if (last) delete shared;
    };
    for (int round = 0; round < 2000; ++round) {
        auto* const shared = new Shared;
        std::thread other(leave, shared);
        leave(shared);
        other.join();
    }
}

TEST(Mutex, UnlockByAThreadThatDoesNotOwnItIsReportedAndChangesNothing)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    MutexC mutex;
    mutex.unlock();
    mutex.lock();
    OnThreads(1, [&] { mutex.unlock(); });
    EXPECT_EQ(reports.Count("!\"Mutex unlocked by a thread that does not own it!\""), 2u);
    mutex.unlock();
    EXPECT_EQ(reports.Reports().size(), 2u);
}

TEST(Guard, ReleasesTheLockWhenAnExceptionPasses)
{
    MutexC mutex;
    EXPECT_THROW(
        {
            const GuardC guard(mutex);
            throw std::runtime_error("x");
        },
        std::runtime_error);
    OnThreads(1, [&] { const GuardC guard(mutex); });
}

TEST(Guard, LocksAndUnlocksAnyLockOnce)
{
    struct CountingLock final : LockC
    {
        void lock() override { ++locked; }
        void unlock() override { ++unlocked; }
        int locked = 0;
        int unlocked = 0;
    } lock;
    {
        const GuardC guard(lock);
        EXPECT_EQ(lock.locked, 1);
        EXPECT_EQ(lock.unlocked, 0);
    }
    EXPECT_EQ(lock.locked, 1);
    EXPECT_EQ(lock.unlocked, 1);
}

} // namespace
