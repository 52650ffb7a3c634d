// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Clocks and tables.
#include "Bench_Harness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>

namespace Bench {

namespace {

volatile double s_dSink;

struct ExpectationT
{
    std::string strWhat;
    RatioT ratio;
    double dWanted;
    bool bAtLeast;
};

std::vector<ExpectationT> s_vecExpectations;

double SmallestOf(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

double LargestOf(const std::vector<double>& values)
{
    return *std::max_element(values.begin(), values.end());
}

} // namespace

double MedianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t nHalf = values.size() / 2;
    return values.size() % 2 != 0 ? values[nHalf] : (values[nHalf - 1] + values[nHalf]) / 2;
}

double ClockSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double ThreadSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    rusage children = {};
    getrusage(RUSAGE_CHILDREN, &children);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9 +
           seconds(children.ru_utime) + seconds(children.ru_stime);
}

void RunInterleaved(std::vector<CandidateT>& candidates, int nRounds)
{
    for (int iRound = -1; iRound < nRounds; ++iRound) {
        for (CandidateT& candidate : candidates) {
            const double dClock = ClockSeconds();
            const double dThread = ThreadSeconds();
            candidate.run();
            const double dThreadEnd = ThreadSeconds();
            const double dClockEnd = ClockSeconds();
            if (candidate.after) candidate.after();
            if (iRound < 0) continue;
            candidate.vecClockSeconds.push_back(dClockEnd - dClock);
            candidate.vecThreadSeconds.push_back(dThreadEnd - dThread);
        }
    }
}

void PrintRates(const std::vector<CandidateT>& candidates, double dAmount, const char* pszUnit,
                const std::vector<std::size_t>& references)
{
    std::printf("  %-26s %9s %19s %9s", "", pszUnit, "[slowest, fastest]", "thread");
    for (const std::size_t n : references)
        std::printf("  of %-16.16s", candidates[n].strName.c_str());
    std::printf("\n");
    for (const CandidateT& candidate : candidates) {
        const double dClock = MedianOf(candidate.vecClockSeconds);
        const double dThread = MedianOf(candidate.vecThreadSeconds);
        std::printf("  %-26s %9.1f [%8.1f,%8.1f] %9.1f", candidate.strName.c_str(), dAmount / dClock,
                    dAmount / LargestOf(candidate.vecClockSeconds),
                    dAmount / SmallestOf(candidate.vecClockSeconds), dAmount / dThread);
        for (const std::size_t n : references) {
            std::printf("  %5.2f (thread %5.2f)", MedianOf(candidates[n].vecClockSeconds) / dClock,
                        MedianOf(candidates[n].vecThreadSeconds) / dThread);
        }
        std::printf("\n");
    }
    std::fflush(stdout);
}

void PrintTimes(const std::vector<CandidateT>& candidates)
{
    std::printf("  %-26s %9s %19s %9s  times the first\n", "", "ms", "[fastest, slowest]", "thread");
    for (const CandidateT& candidate : candidates) {
        const double dClock = MedianOf(candidate.vecClockSeconds);
        const double dThread = MedianOf(candidate.vecThreadSeconds);
        std::printf("  %-26s %9.2f [%8.2f,%8.2f] %9.2f  %5.2f (thread %5.2f)\n", candidate.strName.c_str(),
                    dClock * 1e3, SmallestOf(candidate.vecClockSeconds) * 1e3,
                    LargestOf(candidate.vecClockSeconds) * 1e3, dThread * 1e3,
                    dClock / MedianOf(candidates[0].vecClockSeconds),
                    dThread / MedianOf(candidates[0].vecThreadSeconds));
    }
    std::fflush(stdout);
}

RatioT SpeedOf(const CandidateT& candidate, const CandidateT& reference)
{
    return {MedianOf(reference.vecClockSeconds) / MedianOf(candidate.vecClockSeconds),
            MedianOf(reference.vecThreadSeconds) / MedianOf(candidate.vecThreadSeconds)};
}

void ExpectAtLeast(const std::string& strWhat, const RatioT& ratio, double dWanted)
{
    s_vecExpectations.push_back({strWhat, ratio, dWanted, true});
}

void ExpectAtMost(const std::string& strWhat, const RatioT& ratio, double dWanted)
{
    s_vecExpectations.push_back({strWhat, ratio, dWanted, false});
}

void PrintSummary(int nRounds)
{
    std::printf("== summary\n  %-58s %8s %8s  %s\n", "", "clock", "thread", "wanted");
    for (const ExpectationT& each : s_vecExpectations) {
        const bool bMet =
            each.bAtLeast ? each.ratio.dClock >= each.dWanted : each.ratio.dClock <= each.dWanted;
        std::printf("  %-58s %8.2f ", each.strWhat.c_str(), each.ratio.dClock);
        each.ratio.dThread != 0 ? std::printf("%8.2f", each.ratio.dThread) : std::printf("%8s", "");
        std::printf("  %s %.2f: %s\n", each.bAtLeast ? ">=" : "<=", each.dWanted, bMet ? "met" : "MISSED");
    }
    if (nRounds < s_nFewestRounds)
        std::printf("  TOO FEW ROUNDS: %d, fewer than %d, so these medians show nothing\n", nRounds,
                    s_nFewestRounds);
}

void Use(double dValue)
{
    s_dSink = dValue;
}

} // namespace Bench
