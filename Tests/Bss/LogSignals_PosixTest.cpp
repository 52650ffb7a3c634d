// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Output to where nobody reads any more: the system answers by a signal that ends a process which does not
// expect it. Nobody expects it of a log.
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogPrintfConsumer.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

using namespace BSS;

namespace {

void PutAPipeWithoutReaderInPlaceOf(int descriptor)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0 || ::dup2(ends[1], descriptor) != descriptor) std::_Exit(99);
    ::close(ends[0]);
    ::close(ends[1]);
}

bool IsPending(int signal)
{
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, signal) == 1;
}

TEST(LogSignalsDeathTest, StandardOutputThatNobodyReadsEndsNoProcess)
{
    const auto log = [] {
        std::signal(SIGPIPE, SIG_DFL);
        PutAPipeWithoutReaderInPlaceOf(STDOUT_FILENO);
        DBG::DbgLogPrintfConsumerC consumer("printf");
        consumer.Log(DBG::LEVEL_INFO, "unread");
        std::_Exit(IsPending(SIGPIPE) ? 1 : 0);
    };
    EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

// What could not be written must not be tried again when the program ends, where nobody holds the signal
// back.
TEST(LogSignalsDeathTest, StandardOutputThatNobodyReadsEndsNoProcessBeforeItsTime)
{
    const auto log = [] {
        std::signal(SIGPIPE, SIG_DFL);
        PutAPipeWithoutReaderInPlaceOf(STDOUT_FILENO);
        DBG::DbgLogPrintfConsumerC consumer("printf");
        consumer.Log(DBG::LEVEL_INFO, "unread");
        std::exit(0);
    };
    EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

TEST(LogSignalsDeathTest, StandardOutputThatMayNotGrowEndsNoProcess)
{
    const auto log = [] {
        std::signal(SIGXFSZ, SIG_DFL);
        std::FILE* const file = std::tmpfile();
        if (file == nullptr || ::dup2(::fileno(file), STDOUT_FILENO) != STDOUT_FILENO) std::_Exit(99);
        const rlimit limit = {10, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const Support::DebugOutputCapture debug;
        DBG::DbgLogPrintfConsumerC consumer("printf");
        consumer.Log(DBG::LEVEL_INFO, "more than that");
        consumer.Log(DBG::LEVEL_INFO, "and nothing at all of this");
        if (IsPending(SIGXFSZ) || debug.Text().empty()) std::_Exit(1);
        std::exit(0);
    };
    EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

TEST(LogSignalsDeathTest, LinesStandInTheirPlaceBetweenWhatTheProgramPrints)
{
    const auto log = [] {
        std::FILE* const file = std::tmpfile();
        if (file == nullptr || ::dup2(::fileno(file), STDOUT_FILENO) != STDOUT_FILENO) std::_Exit(99);
        DBG::DbgLogPrintfConsumerC consumer("printf");
        consumer.setPrefixKind(DBG::PrefixKind::None);
        std::printf("printed\n");
        consumer.Log(DBG::LEVEL_INFO, "logged");
        std::printf("printed again\n");
        std::fflush(stdout);
        char text[64] = {};
        const ssize_t length = ::pread(STDOUT_FILENO, text, sizeof text - 1, 0);
        std::_Exit(length > 0 && std::string(text) == "printed\nlogged\nprinted again\n" ? 0 : 1);
    };
    EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

TEST(LogSignalsDeathTest, StandardErrorThatNobodyReadsEndsNoProcess)
{
    const auto log = [] {
        std::signal(SIGPIPE, SIG_DFL);
        Support::SetEnvironment("SCANREADER_DEBUG_OUTPUT", "stderr");
        PutAPipeWithoutReaderInPlaceOf(STDERR_FILENO);
        HAL::DebugOutput(L"unread");
        std::_Exit(IsPending(SIGPIPE) ? 1 : 0);
    };
    EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

TEST(LogSignalsDeathTest, SignalThatWasWaitingBeforeIsLeftWaiting)
{
    const auto write = [] {
        sigset_t set;
        ::sigemptyset(&set);
        ::sigaddset(&set, SIGPIPE);
        ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
        ::raise(SIGPIPE);
        HAL::WithoutWriteSignals([] {});
        std::_Exit(IsPending(SIGPIPE) ? 0 : 1);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "");
}

} // namespace
