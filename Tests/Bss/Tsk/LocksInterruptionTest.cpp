// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Locks that are waited for are no interruption points: whoever is interrupted there gets his lock, and stays
// interrupted.
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_ReadWriteLocks.h"
#include "Bss/Bss_Tsk/BSS_TSK_ReaderWriterLock.h"
#include "Support/Eventually.h"

#include <atomic>
#include <boost/thread/thread.hpp>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

using namespace BSS::TSK;

namespace {

struct OutcomeT
{
    bool bTaken = false;
    bool bInterruptedAfterwards = false;
};

// Interrupts a thread that waits in `take`, and lets it have what it waits for.
OutcomeT InterruptWhileItWaits(const std::function<void()>& take, const std::function<void()>& release)
{
    OutcomeT outcome;
    std::atomic<bool> bBegun{false};
    boost::thread waiting([&] {
        bBegun = true;
        take();
        outcome.bTaken = true;
        outcome.bInterruptedAfterwards = boost::this_thread::interruption_requested();
    });
    EXPECT_TRUE(Support::Eventually([&] { return bBegun.load(); }));
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    waiting.interrupt();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    release();
    waiting.join();
    return outcome;
}

TEST(LocksInterruption, AContendedMutexIsNoInterruptionPoint)
{
    MutexC mutex;
    mutex.lock();
    const OutcomeT outcome =
        InterruptWhileItWaits([&] { const GuardC guard(mutex); }, [&] { mutex.unlock(); });
    EXPECT_TRUE(outcome.bTaken);
    EXPECT_TRUE(outcome.bInterruptedAfterwards);
}

TEST(LocksInterruption, WaitingToReadIsNoInterruptionPoint)
{
    ReaderWriterLockC lock;
    WriteLockC writer(lock);
    const OutcomeT outcome =
        InterruptWhileItWaits([&] { const ReadLockC reader(lock); }, [&] { writer.unlock(); });
    EXPECT_TRUE(outcome.bTaken);
    EXPECT_TRUE(outcome.bInterruptedAfterwards);
}

TEST(LocksInterruption, WaitingToWriteIsNoInterruptionPoint)
{
    ReaderWriterLockC lock;
    ReadLockC reader(lock);
    const OutcomeT outcome =
        InterruptWhileItWaits([&] { const WriteLockC writer(lock); }, [&] { reader.unlock(); });
    EXPECT_TRUE(outcome.bTaken);
    EXPECT_TRUE(outcome.bInterruptedAfterwards);
}

} // namespace
