// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The examples of the page on tasks are code that runs.
#include "Bss/Bss_Tsk/BSS_TSK_TimerService.h"
#include "ExampleCommand.h"
#include "ExampleTask.h"
#include "ExampleTimer.h"
#include "Support/Files.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// Every block of code on the page stands, word for word, in one of the three files.
TEST(TasksPage, EveryBlockOfCodeIsCompiledHere)
{
    const std::string page = Support::ReadAll(std::string(SCANREADER_DOCS) + "/tasks.md");
    std::string sources;
    for (const char* name : {"ExampleTask.h", "ExampleCommand.h", "ExampleTimer.h"})
        sources += Support::ReadAll(std::string(SCANREADER_EXAMPLES_OF_TASKS) + "/" + name);
    const std::string begin = "\n```cpp\n";
    int blocks = 0;
    for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at + 1)) {
        const std::size_t first = at + begin.size();
        const std::string block = page.substr(first, page.find("```", first) - first);
        EXPECT_NE(sources.find(block), std::string::npos) << block;
        ++blocks;
    }
    EXPECT_EQ(blocks, 3);
}

TEST(TasksPage, TheTaskBeatsUntilItIsStopped)
{
    EXPECT_GE(Examples::Heartbeats(3), 3);
}

TEST(TasksPage, TheCommandsRunInOrder)
{
    EXPECT_EQ(Examples::PostedInOrder(), "abc.");
}

TEST(TasksPage, TheRequestCallsItsClient)
{
    const Support::LogCapture log; // a refused priority of the engine's thread is no matter here
    const Support::ReportCapture reports;
    EXPECT_GE(Examples::CountedTicks(), 5);
    BSS::TSK::Timer::StopProcessTimerEngine();
}

} // namespace
