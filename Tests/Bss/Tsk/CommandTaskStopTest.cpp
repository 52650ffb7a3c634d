// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where starting and stopping a command task meets what others do at the same moment.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "CommandTaskFixture.h"

#include <thread>

using namespace BSS::TSK;
using TaskTests::CommandTaskTest;

namespace {

TEST_F(CommandTaskTest, WhatIsPostedBehindAStopRequestTakesNoPlaceOfWhatWaitedWithIt)
{
    Make(100);
    task->start();
    Hold();
    task->stop();
    task->AddNewMsg(MakeCommand("poster",
                                [this] {
                                    task->AddNewMsg(Named("late"), true);
                                    const std::lock_guard<std::mutex> guard(orderLock);
                                    order += "1";
                                }),
                    true);
    task->postCommand(Named("a"));
    Go();
    EXPECT_TRUE(task->waitForStop(20000));
    EXPECT_EQ(Order(), "1a");
    task->start();
    EXPECT_TRUE(Ordered("1alate")) << "what came too late waits for the next start";
}

// Much waits in the queue, among which the start looks for stop requests of before: so it takes a while.
TEST_F(CommandTaskTest, OfTwoThatStartItAtOnceOneIsRefusedAndTakesNothingFromTheOther)
{
    constexpr int ROUNDS = 100;
    constexpr int WAITING = 2000;
    CommandTaskC quiet({"quiet", TaskTests::OPTION, TaskTests::OPTION, true, false, {}}, 2 * WAITING);
    const CommandPtrT command = MakeCommand("command", [] {});
    std::atomic<int> together{0};
    std::atomic<int> started{0};
    std::atomic<int> unended{0};
    const auto run = [&] {
        for (int round = 0; round < ROUNDS; ++round) {
            ++together;
            while (together.load() < 2 * (round + 1)) // at once indeed: nobody has to be woken
                std::this_thread::yield();
            try {
                quiet.start();
            } catch (const BSS::SysServiceErrorC&) {
                continue; // the other one was before
            }
            ++started;
            quiet.stop();
            if (!quiet.waitForStop(20000)) ++unended;
            for (int i = 0; i < WAITING; ++i)
                quiet.postCommand(command);
            quiet.stop(); // stays in the queue
        }
    };
    std::thread one(run);
    std::thread two(run);
    one.join();
    two.join();
    EXPECT_EQ(unended.load(), 0);
    EXPECT_GE(started.load(), ROUNDS);
    quiet.start();
    quiet.stop();
    EXPECT_TRUE(quiet.waitForStop(20000));
    EXPECT_EQ(quiet.getMsgCount(), 0);
}

} // namespace
