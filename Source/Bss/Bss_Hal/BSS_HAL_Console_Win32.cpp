// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The C runtime turns Ctrl-C and Ctrl-Break into signals, on a thread of its own; like elsewhere it goes
// back to the usual end of the process after the first.
#include "Bss/Bss_Hal/BSS_HAL_Console.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>
#include <csignal>
#include <shellapi.h>

namespace BSS::HAL {

namespace {

constinit std::atomic<bool> s_interrupted = false;

extern "C" void ScanReaderOnInterrupt(int)
{
    s_interrupted.store(true, std::memory_order_relaxed);
}

void CatchOnce(int signal) noexcept
{
    if (std::signal(signal, &ScanReaderOnInterrupt) == SIG_IGN) std::signal(signal, SIG_IGN);
}

} // namespace

std::vector<std::string> ProgramArguments(int count, char** arguments)
{
    // What main is given has passed through the code page and lost what that does not know.
    int wideCount = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    if (wide == nullptr) return {arguments, arguments + count};
    std::vector<std::string> narrow;
    for (int i = 0; i < wideCount; ++i)
        narrow.push_back(NarrowPath(wide[i]));
    LocalFree(wide);
    return narrow;
}

bool StderrIsTerminal() noexcept
{
    // The runtime's own question takes the null device for a terminal.
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void InstallInterruptFlag() noexcept
{
    CatchOnce(SIGINT);
    CatchOnce(SIGTERM);
    CatchOnce(SIGBREAK);
}

bool InterruptRequested() noexcept
{
    return s_interrupted.load(std::memory_order_relaxed);
}

} // namespace BSS::HAL
