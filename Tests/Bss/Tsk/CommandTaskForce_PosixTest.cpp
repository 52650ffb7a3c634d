// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the thread of a command task is not ended by force: inside what no later run of the task replaces. In
// a child process, as a forced end that came after all would leave it in no good state.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "CommandTaskFixture.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace BSS::TSK;
using TaskTests::CommandTaskTest;
using TaskTests::CountingObserverC;

namespace {

class CommandTaskForceTest : public CommandTaskTest
{
public:
    // The task's thread waits for the lock of the settings while it is killed. It must get it and go its own
    // way out, where it tells that its loop has ended.
    [[noreturn]] void KillWhereItLooksAtItsSettings()
    {
        CountingObserverC ended;
        Make(10);
        task->getMainEndedSubject().attach(ended);
        task->setWaitTimeout(1);
        {
            const GuardC held(task->getCore().settingsLock);
            task->start();
            bool bThere = Support::Eventually([&] { return task->timeouts.load() > 0; });
            // From there to the lock; a yield takes its time where others want the processor.
            const std::int64_t end = BSS::HAL::TickMicroseconds() + 500'000;
            for (int i = 0; i < 10000 && BSS::HAL::TickMicroseconds() < end; ++i)
                std::this_thread::yield();
            bThere = bThere && task->timeouts.load() == 1;
            task->kill();
            Expect(bThere, "the thread waits for the lock");
            Expect(ended.Codes().empty(), "its loop has not ended");
        }
        Expect(task->waitForStop(20000), "it ends");
        Expect(ended.Codes().size() == 1, "it has told so");
        task->setOverflowText(L"takes the lock");
        std::_Exit(0);
    }

private:
    static void Expect(bool bHolds, const char* pszWhat)
    {
        if (bHolds) return;
        std::fprintf(stderr, "not so: %s\n", pszWhat);
        std::_Exit(1);
    }
};

TEST_F(CommandTaskForceTest, IsNotEndedByForceWhereItLooksAtItsSettings)
{
    EXPECT_EXIT(KillWhereItLooksAtItsSettings(), testing::ExitedWithCode(0), "");
}

} // namespace
