// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Debugger output where there is no debugger output: silent, unless a person asks for it. And the console.
#include "Bss/Bss_Hal/BSS_HAL_Console.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Support/Environment.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace BSS::HAL;

namespace {

TEST(DebugOutputDeathTest, IsSilentByDefault)
{
    const auto write = [] {
        Support::ClearEnvironment("SCANREADER_DEBUG_OUTPUT");
        DebugOutput(L"unheard");
        std::_Exit(0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "^$");
}

TEST(DebugOutputDeathTest, GoesToStandardErrorWhenAskedForAsUtf8)
{
    const auto write = [] {
        Support::SetEnvironment("SCANREADER_DEBUG_OUTPUT", "stderr");
        DebugOutput(L"caf\u00E9\n");
        std::_Exit(0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "^caf\xC3\xA9\n$");
}

TEST(DebugOutputDeathTest, NullIsNamed)
{
    const auto write = [] {
        Support::SetEnvironment("SCANREADER_DEBUG_OUTPUT", "stderr");
        DebugOutput(nullptr);
        std::_Exit(0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "^\\(null\\)$");
}

TEST(ConsoleDeathTest, FirstRequestToStopSetsTheFlagAndTheSecondEndsTheProcess)
{
    const auto interruptTwice = [] {
        InstallInterruptFlag();
        if (InterruptRequested()) std::_Exit(1);
        std::raise(SIGTERM);
        if (!InterruptRequested()) std::_Exit(2);
        std::raise(SIGTERM);
        std::_Exit(3);
    };
    EXPECT_EXIT(interruptTwice(), testing::KilledBySignal(SIGTERM), "");
}

TEST(ConsoleDeathTest, RequestsThatWereIgnoredStayIgnored)
{
    const auto interruptIgnored = [] {
        std::signal(SIGINT, SIG_IGN);
        InstallInterruptFlag();
        std::raise(SIGINT);
        std::_Exit(InterruptRequested() ? 1 : 0);
    };
    EXPECT_EXIT(interruptIgnored(), testing::ExitedWithCode(0), "");
}

TEST(ConsoleDeathTest, StandardErrorOfAChildWithAPipeIsNoTerminal)
{
    EXPECT_EXIT(std::_Exit(StderrIsTerminal() ? 1 : 0), testing::ExitedWithCode(0), "");
}

} // namespace
