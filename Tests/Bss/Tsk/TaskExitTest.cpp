// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tasks while the process ends, each in a child process. Where exit() keeps a lock while it runs what has
// been registered for it, a task that is waited for there must not have to register anything.
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"
#include "Support/EndProcess.h"
#include "TaskFixture.h"

#include <cstdlib>
#include <utility>

using namespace BSS::TSK;
using TaskTests::TaskTest;
using TaskTests::WorkTaskC;

namespace {

using TaskExitTest = TaskTest;

void UseWhatTasksUse()
{
    constexpr std::size_t BYTES = 64;
    BlockPool::Free(BlockPool::Allocate(BYTES), BYTES);
    BSS::HAL::DebugOutput(L"last words\n");
    static_cast<void>(BSS::HAL::TickCount64());
}

struct LastTaskC
{
    explicit LastTaskC(TaskSettingsT settings) : task(std::move(settings), &UseWhatTasksUse) {}
    ~LastTaskC()
    {
        task.start();
        if (!task.waitForStop(20000)) Support::EndProcess(1);
    }
    WorkTaskC task;
};

void EndWithATask(TaskSettingsT settings)
{
    static const LastTaskC last(std::move(settings));
    std::exit(0);
}

TEST_F(TaskExitTest, ATaskThatBeginsWhileTheProcessEndsComesToItsEnd)
{
    EXPECT_EXIT(EndWithATask(Settings()), testing::ExitedWithCode(0), "");
}

} // namespace
