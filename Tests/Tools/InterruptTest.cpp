// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What an interrupt leaves behind. In a process of its own, since a flag that is set stays set.
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_OutputFile.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

/// Begins to write a file and is interrupted. Returns the exit code, or another number when something is left
/// behind.
int WorkInterruptedBy(int iSignal)
{
    const Support::TemporaryDirectory directory;
    Tool::CatchInterrupts();
    int iExitCode = 0;
    try {
        const Tool::OutputFileC output(directory.Narrow("target"), false);
        Support::WriteAll(output.GetTemporaryPath(), "half");
        Tool::StopIfInterrupted();
        (void)std::raise(iSignal);
        Tool::StopIfInterrupted();
    } catch (const Tool::ToolErrorC& error) {
        iExitCode = error.GetExitCode();
    }
    return boost::filesystem::is_empty(directory.Path()) ? iExitCode : 99;
}

TEST(InterruptDeathTest, CtrlCAndTerminationEndTheWorkAndLeaveNoFile)
{
    EXPECT_EXIT(std::exit(WorkInterruptedBy(SIGINT)), testing::ExitedWithCode(Tool::s_iInterrupted), "");
    EXPECT_EXIT(std::exit(WorkInterruptedBy(SIGTERM)), testing::ExitedWithCode(Tool::s_iInterrupted), "");
}

} // namespace
