// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The handler touches one lock-free flag, which is all that is safe inside a signal.
#include "Bss/Bss_Hal/BSS_HAL_Console.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constinit std::atomic<bool> s_interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void ScanReaderOnInterrupt(int)
{
    s_interrupted.store(true, std::memory_order_relaxed);
}

void CatchOnce(int signal) noexcept
{
    struct sigaction before = {};
    if (::sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) return;
    struct sigaction action = {};
    action.sa_handler = &ScanReaderOnInterrupt;
    // Reset after the first: a person who asks twice is obeyed at once. Restart: reads do not fail half-way.
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    static_cast<void>(::sigaction(signal, &action, nullptr));
}

} // namespace

std::vector<std::string> ProgramArguments(int count, char** arguments)
{
    return {arguments, arguments + count};
}

bool StderrIsTerminal() noexcept
{
    return ::isatty(STDERR_FILENO) == 1;
}

void InstallInterruptFlag() noexcept
{
    CatchOnce(SIGINT);
    CatchOnce(SIGTERM);
}

bool InterruptRequested() noexcept
{
    return s_interrupted.load(std::memory_order_relaxed);
}

} // namespace BSS::HAL
