// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Descriptors among what a command task waits for.
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "CommandTaskFixture.h"

#include <unistd.h>

using namespace BSS::HAL;
using TaskTests::CommandTaskTest;

namespace {

using ExtraDescriptorsTest = CommandTaskTest;

TEST_F(ExtraDescriptorsTest, ADescriptorThatIsClosedUnderItsHandleIsReportedOnceAndLeftOut)
{
    constexpr int ROUNDS = 50;
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const WaitHandleT handle = MakeNativeWaitable(ends[0]);
    std::atomic<int> calls{0};
    Make(10);
    task->start();
    EXPECT_EQ(task->attachEvent(handle,
                                [&](WaitHandleT) {
                                    char byte = 0;
                                    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
                                    ++calls;
                                }),
              BSS::RC_OK);
    // The task serves the descriptor, and has taken note of everything that came before.
    EXPECT_EQ(::write(ends[1], "x", 1), 1);
    ASSERT_TRUE(Support::Eventually([&] { return calls.load() == 1; }));
    ::close(ends[0]);
    std::string expected;
    for (int i = 0; i < ROUNDS; ++i) {
        EXPECT_EQ(task->postCommand(Named("x")), BSS::RC_OK);
        ASSERT_TRUE(Ordered(expected += "x"));
    }
    End();
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].line, 495);
    CloseWaitHandle(handle);
    ::close(ends[1]);
}

TEST_F(ExtraDescriptorsTest, WithoutADescriptorToWakeItByTheTaskReportsThatAndServesAgainAfterwards)
{
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const WaitHandleT handle = MakeNativeWaitable(ends[0]);
    std::atomic<int> calls{0};
    Make(10);
    EXPECT_EQ(task->attachEvent(handle,
                                [&](WaitHandleT) {
                                    char byte = 0;
                                    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
                                    ++calls;
                                }),
              BSS::RC_OK);
    OrderFault(FaultT::Descriptor, 1);
    task->start();
    EXPECT_TRUE(Support::Eventually(
        [&] { return log->Has("6 [BSS::TSK::CommandTaskC] Ln 511: WaitForMultipleObjects Failed (8)\n"); }));
    EXPECT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_TRUE(Support::Eventually([&] { return calls.load() == 1; }));
    EXPECT_EQ(task->detachEvent(handle), BSS::RC_OK);
    End();
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].line, 513);
    CloseWaitHandle(handle);
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace
