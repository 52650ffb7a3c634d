// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run.
#include "Bench_Bss.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    void (*run)(const Bench::OptionsT& options);
};

constexpr CaseT s_aCases[] = {
    {"log", "logging to a file, one thread and two, against spdlog's basic file sink", &Bench::RunLogFile},
    {"flushed", "the same with every line handed over to the system", &Bench::RunLogFlushed},
    {"many", "8 threads logging a million lines each, none of them lost or torn", &Bench::RunLogMany},
    {"disabled", "calls below the level against an empty loop and against spdlog", &Bench::RunLogDisabled},
    {"strings", "copying a string against copying a std::shared_ptr", &Bench::RunStrings},
};

int Help(int iExitCode)
{
    std::printf("usage: scanreader_bench_bss [--rounds N] [--dir DIRECTORY] [CASE...]\n\ncases, all without "
                "saying:\n");
    for (const CaseT& each : s_aCases)
        std::printf("  %-8s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

} // namespace

void Bench::PrintRatio(const char* pszWhat, const CandidateT& first, const CandidateT& second)
{
    const double dRatio = MedianOf(first.vecClockSeconds) / MedianOf(second.vecClockSeconds);
    std::printf("  %s: %.2f\n", pszWhat, dRatio);
    std::fflush(stdout);
}

int main(int argc, char** argv)
{
    Bench::OptionsT options;
    std::vector<const CaseT*> chosen;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) return Help(0);
        if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
            options.nRounds = std::atoi(argv[++i]);
            continue;
        }
        if (std::strcmp(argv[i], "--dir") == 0 && i + 1 < argc) {
            options.strDirectory = argv[++i];
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
