// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run. With --unprivileged the process first gives up what lets it raise
// priorities, as most processes cannot anyway; setting a timer raises the caller's and restores it.
#include "Bench_TaskCases.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

namespace {

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    void (*run)(const Bench::OptionsT& options);
};

constexpr CaseT s_aCases[] = {
    {"mutex", "lock and unlock, alone and contended, against std::recursive_mutex", &Bench::RunMutex},
    {"semaphore", "post and wait against a condition variable", &Bench::RunSemaphore},
    {"post", "post to execution against asio and a bounded queue of TBB", &Bench::RunPost},
    {"latency", "waking an idle task against a condition variable", &Bench::RunLatency},
    {"busy", "100000 posts to a busy task, for counting system calls with strace", &Bench::RunBusy},
    {"set", "setting and killing a timer among 100 and among 100000", &Bench::RunTimerSet},
    {"late", "how late timers fire against asio's steady_timer", &Bench::RunTimerLate},
};

int Help(int iExitCode)
{
    std::printf("usage: task_bench [--rounds N] [--unprivileged] [CASE...]\n\ncases, all without saying:\n");
    for (const CaseT& each : s_aCases)
        std::printf("  %-10s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

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
    Bench::OptionsT options;
    std::vector<const CaseT*> chosen;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) return Help(0);
        if (std::strcmp(argv[i], "--unprivileged") == 0) {
            GiveUpPrivileges();
            continue;
        }
        if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
            options.nRounds = std::atoi(argv[++i]);
            continue;
        }
        const CaseT* found = nullptr;
        for (const CaseT& each : s_aCases)
            if (std::strcmp(each.pszName, argv[i]) == 0) found = &each;
        if (found == nullptr) return Help(2);
        chosen.push_back(found);
    }
    if (options.nRounds < 1) return Help(2);
    if (chosen.empty())
        for (const CaseT& each : s_aCases)
            chosen.push_back(&each);
    for (const CaseT* const each : chosen) {
        std::printf("== %s: %s\n", each->pszName, each->pszWhat);
        each->run(options);
        std::printf("\n");
    }
    return 0;
}
