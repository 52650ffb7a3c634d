// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Locks, semaphores and queues when the system has no more to give of what they need in the middle of a call.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_MsgQueue.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_Semaphore.h"
#include "CommandTaskFixture.h"

#include <gtest/gtest.h>
#include <new>
#include <thread>
#include <vector>

using namespace BSS::TSK;
using BSS::HAL::FaultT;
using BSS::HAL::OrderFault;
using TaskTests::CommandTaskTest;

namespace {

TEST(Exhaustion, AContendedMutexWithoutAnEventThrowsAndCanBeLockedLater)
{
    MutexC mutex;
    mutex.lock();
    std::uint32_t rc = BSS::RC_OK;
    OrderFault(FaultT::LockEvent, 1);
    std::thread([&] {
        try {
            mutex.lock();
        } catch (const BSS::SysServiceErrorC& error) {
            rc = error.GetResultCode();
        }
    }).join();
    EXPECT_EQ(rc, BSS::RC_SERVICE_FAILED);
    mutex.unlock();
    std::thread([&] { const GuardC guard(mutex); }).join();
}

TEST(Exhaustion, AFailedWaitForASemaphoreThrowsAndTakesNothing)
{
    SemaphoreC semaphore;
    const auto resultOf = [](const auto& wait) -> std::uint32_t {
        OrderFault(FaultT::SemaphoreWait, 1);
        try {
            wait();
        } catch (const BSS::ERR::ErrorBaseC& error) {
            return error.GetResultCode();
        }
        return BSS::RC_OK;
    };
    EXPECT_EQ(resultOf([&] { semaphore.wait(); }), 0x03101002u);
    EXPECT_EQ(resultOf([&] { static_cast<void>(semaphore.wait(1000)); }), 0x03101002u);
    semaphore.post();
    EXPECT_TRUE(semaphore.wait(0));
    EXPECT_FALSE(semaphore.wait(0));
}

TEST(Exhaustion, APostWithoutMemoryGivesItsPlaceInTheQueueBack)
{
    MsgQueueC queue(1000);
    TakenMsgsT taken;
    const MsgPtrT message = MakeCommand("command", [] {});
    std::int32_t pushed = 0;
    OrderFault(FaultT::PoolMemory, 1);
    const auto push = [&] {
        for (; pushed < 1000; ++pushed)
            queue.push(message, false);
    };
    EXPECT_THROW(push(), std::bad_alloc);
    EXPECT_EQ(queue.getCount(), pushed);
    EXPECT_NO_THROW(push());
    EXPECT_EQ(queue.getCount(), 1000);
    EXPECT_EQ(queue.push(message, false), 0u);
    while (queue.take(taken))
        --pushed;
    EXPECT_EQ(pushed, 0);
}

// Nothing is left of either size in the place that the calling thread begins at.
std::vector<void*> UseUpTheBlocks(std::size_t bytes)
{
    std::vector<void*> blocks;
    OrderFault(FaultT::PoolMemory, 1);
    try {
        for (;;)
            blocks.push_back(BlockPool::Allocate(bytes));
    } catch (const std::bad_alloc&) {
        return blocks;
    }
}

TEST_F(CommandTaskTest, AStopRequestThatIsTriedAgainWithoutMemoryDoesNotEndTheTaskBesidesTheLoop)
{
    Make(10);
    std::vector<void*> small;
    std::vector<void*> large;
    // Both are kept here, so that the task's thread gets no block back.
    const CommandPtrT usesUp = MakeCommand("uses up", [&] {
        small = UseUpTheBlocks(BlockPool::SMALL_BYTES);
        large = UseUpTheBlocks(BlockPool::LARGE_BYTES);
        task->getCore().bStopRequested = true; // as after a stop whose request was refused
        OrderFault(FaultT::PoolMemory, 1);
    });
    const CommandPtrT next = Named("x");
    task->postCommand(usesUp);
    task->postCommand(next);
    task->start();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(Order(), "x");
    EXPECT_NE(log->Beginning("6 [BSS::TSK::CommandTaskC] exception in a stop request: "), "");
    EXPECT_EQ(log->Beginning("6 TaskC::c_main() exception"), "");
    for (void* const block : small)
        BlockPool::Free(block, BlockPool::SMALL_BYTES);
    for (void* const block : large)
        BlockPool::Free(block, BlockPool::LARGE_BYTES);
}

} // namespace
