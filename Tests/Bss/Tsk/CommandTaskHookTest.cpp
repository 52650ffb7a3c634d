// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The time-out hook of a command task whose object goes: it runs on the task's thread, and is not called any
// more once the object is on its way.
#include "CommandTaskFixture.h"

#include <memory>
#include <utility>

using namespace BSS::TSK;
using TaskTests::CommandTaskTest;

namespace {

// Its hook does not come back before it is told to, and touches nothing of the object then.
class BlockedHookC final : public CommandTaskC
{
public:
    struct SharedT
    {
        EventC entered;
        EventC leave;
    };

    BlockedHookC(TaskSettingsT settings, std::shared_ptr<SharedT> shared)
        : CommandTaskC(std::move(settings), 10), m_shared(std::move(shared))
    {
        setWaitTimeout(1);
    }

protected:
    void onTimeout() override
    {
        const std::shared_ptr<SharedT> shared = m_shared;
        shared->entered.set();
        static_cast<void>(shared->leave.wait(-1));
    }

private:
    const std::shared_ptr<SharedT> m_shared;
};

TEST_F(CommandTaskTest, OneWhoseHookDoesNotComeBackCanBeDestroyed)
{
    const auto shared = std::make_shared<BlockedHookC::SharedT>();
    {
        BlockedHookC blocked(Settings("blocked"), shared);
        blocked.start();
        EXPECT_EQ(shared->entered.wait(20000), BSS::RC_OK);
    }
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].line, 92);
    shared->leave.set();
    EXPECT_TRUE(Support::Eventually([&] { return !log->Beginning("4 TaskC::c_main() end:").empty(); }));
}

// Taking a turn only to find that there is no hook to call could keep the destructor from ever getting one.
TEST_F(CommandTaskTest, ALoopWhoseObjectGoesLeavesTheTurnsOfTheHookToTheDestructor)
{
    Make(10);
    CommandCoreC& core = task->getCore();
    SemaphoreC& turn = core.side.load()->hookGate;
    task->start();
    turn.lock();
    core.bObjectGone = true;
    task->setWaitTimeout(1);
    const std::uint64_t before = task->getStatistics().getWaitCount();
    EXPECT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > before + 10; }));
    turn.unlock();
    EXPECT_EQ(task->timeouts.load(), 0);
    EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
    EXPECT_TRUE(Ordered("x"));
}

} // namespace
