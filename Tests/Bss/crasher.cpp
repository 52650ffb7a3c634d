// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A process that asks for crash dumps and then crashes, for the tests that look at what it leaves:
//
//   bss_crasher DIRECTORY HOW
//       none        does not crash; ends with 0
//       access      uses an address where nothing is
//       abort       calls abort()
//       terminate   throws what nobody catches
//       overflow    uses up its stack
//       restored    as access, after the handler was given back
//       threads     as access, on eight threads at once
//       NUMBER      raises that signal
//   A third argument, a NUMBER, names a signal whose handler was installed before ours and ends the process
//   with 42.
#include "Bss/Bss_Os/BSS_OS_CrashDump.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/QuietCrash.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

volatile std::uintptr_t s_nowhere = 64;

void UseNowhere()
{
    *reinterpret_cast<volatile int*>(s_nowhere) = 1;
}

// What is called behind keeps the call from being the last thing that is done.
int UseUpTheStack(volatile char* before) // NOLINT(misc-no-recursion)
{
    volatile char here[4096];
    here[0] = before == nullptr ? '\0' : before[0];
    const int deeper = s_nowhere == 64 ? UseUpTheStack(here) : 0;
    return deeper + here[0];
}

void EndWith42(int)
{
    std::_Exit(42);
}

int Crash(const std::string& how, BSS::OS::CrashDumpC& dump)
{
    if (how == "none") return 0;
    if (how == "access") UseNowhere();
    if (how == "abort") std::abort();
    if (how == "terminate") throw std::runtime_error("nobody");
    if (how == "overflow") return UseUpTheStack(nullptr);
    if (how == "restored") {
        dump.restore();
        UseNowhere();
    }
    if (how == "threads") {
        std::vector<std::thread> threads;
        for (int n = 0; n < 8; ++n)
            threads.emplace_back(&UseNowhere);
        for (std::thread& thread : threads)
            thread.join();
    }
    std::raise(std::stoi(how));
    return 3;
}

} // namespace

int main(int count, char** arguments)
{
    Support::CrashQuietly();
    if (count < 3) return 2;
    if (count > 3) std::signal(std::atoi(arguments[3]), &EndWith42);
    BSS::OS::CrashDumpC dump;
    if (dump.install({L"crasher", BSS::HAL::WidePath(arguments[1])}) != BSS::RC_OK) return 1;
    return Crash(arguments[2], dump);
}
