// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run.
#include "Bench_Bss.h"
#include "Bench_Chooser.h"

#include <cstdio>

namespace {

constexpr Bench::CaseT s_aCases[] = {
    {"log", "logging to a file, one thread and two, against spdlog's basic file sink", &Bench::RunLogFile},
    {"flushed", "the same with every line handed over to the system", &Bench::RunLogFlushed},
    {"many", "8 threads logging a million lines each, none of them lost or torn", &Bench::RunLogMany},
    {"disabled", "calls below the level against an empty loop and against spdlog", &Bench::RunLogDisabled},
    {"strings", "copying a string against copying a std::shared_ptr", &Bench::RunStrings},
};

} // namespace

void Bench::PrintRatio(const char* pszWhat, const CandidateT& first, const CandidateT& second)
{
    const double dRatio = MedianOf(first.vecClockSeconds) / MedianOf(second.vecClockSeconds);
    std::printf("  %s: %.2f\n", pszWhat, dRatio);
    std::fflush(stdout);
}

int main(int argc, char** argv)
{
    const Bench::ArgumentT directory = {
        "--dir", "DIRECTORY",
        [](Bench::OptionsT& options, const char* pszValue) { options.strDirectory = pszValue; }};
    return Bench::RunCases(argc, argv, s_aCases, {&directory, 1});
}
