// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run. With --unprivileged the process first gives up what lets it raise
// priorities, as most processes cannot anyway; setting a timer raises the caller's and restores it.
#include "Bench_Chooser.h"
#include "Bench_TaskCases.h"

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr Bench::CaseT s_aCases[] = {
    {"mutex", "lock and unlock, alone and contended, against std::recursive_mutex", &Bench::RunMutex},
    {"semaphore", "post and wait against a condition variable", &Bench::RunSemaphore},
    {"post", "post to execution against asio and a bounded queue of TBB", &Bench::RunPost},
    {"latency", "waking an idle task against a condition variable", &Bench::RunLatency},
    {"busy", "100000 posts to a busy task, for counting system calls with strace", &Bench::RunBusy},
    {"set", "setting and killing a timer among 100 and among 100000", &Bench::RunTimerSet},
    {"late", "how late timers fire against asio's steady_timer", &Bench::RunTimerLate},
};

void GiveUpPrivileges()
{
    const rlimit none = {0, 0};
    if (setrlimit(RLIMIT_RTPRIO, &none) != 0 || (getuid() == 0 && setuid(65534) != 0)) {
        std::perror("--unprivileged");
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const Bench::ArgumentT unprivileged = {"--unprivileged", nullptr,
                                           [](Bench::OptionsT&, const char*) { GiveUpPrivileges(); }};
    return Bench::RunCases(argc, argv, s_aCases, {&unprivileged, 1});
}
