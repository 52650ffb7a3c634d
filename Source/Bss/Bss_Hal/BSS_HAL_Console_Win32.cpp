// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The system calls the handler on a thread of its own.
#include "Bss/Bss_Hal/BSS_HAL_Console.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<bool> s_interrupted = false;

BOOL WINAPI OnInterrupt(DWORD)
{
    // The first request is taken; the second falls through to the system, which ends the process.
    return s_interrupted.exchange(true) ? FALSE : TRUE;
}

} // namespace

bool StderrIsTerminal() noexcept
{
    // The runtime's own question takes the null device for a terminal.
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void InstallInterruptFlag() noexcept
{
    SetConsoleCtrlHandler(&OnInterrupt, TRUE);
}

bool InterruptRequested() noexcept
{
    return s_interrupted.load(std::memory_order_relaxed);
}

} // namespace BSS::HAL
