// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run.
#include "Bench_Net.h"

#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <vector>

namespace {

constexpr int MIN_ROUNDS = 5;

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    bool (*run)(int nRounds);
    int nRounds; ///< without saying
};

constexpr CaseT s_aCases[] = {
    {"receive", "bytes received through the client against plain blocking calls", &BenchNet::RunReceiving,
     41},
    {"send", "bytes sent through the client against plain blocking calls", &BenchNet::RunSending, 41},
    {"trip", "the round trip of 64 bytes against plain blocking calls", &BenchNet::RunRoundTrips, 21},
    {"clients", "199 clients of the log with one more that never reads, and without it",
     &BenchNet::RunLogClients, 9},
};

int Help(int iExitCode)
{
    std::printf(
        "usage: scanreader_bench_net [--rounds N] [CASE...]    %d rounds at least\n"
        "exit: 0 when every ratio is as it is to be, 1 when one is not or nothing could be measured\n\n"
        "cases, all without saying:\n",
        MIN_ROUNDS);
    for (const CaseT& each : s_aCases)
        std::printf("  %-8s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

/// What so large a part of the values is below.
double QuantileOf(std::vector<double> values, double part)
{
    std::sort(values.begin(), values.end());
    const double place = part * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (values[above] - values[below]) * (place - static_cast<double>(below));
}

double MedianOf(const std::vector<double>& values)
{
    return QuantileOf(values, 0.5);
}

/// The rounds of one side.
struct SamplesT
{
    std::vector<double> clock;     // seconds
    std::vector<double> processor; // of the whole process, setting up included

    void take(BenchNet::SideT side)
    {
        const std::clock_t begin = std::clock();
        clock.push_back(side());
        processor.push_back(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
};

void PrintRatios(const char* pszBy, const std::vector<double>& ratios)
{
    std::printf("  ratio %-18s %.3f  (half of them %.3f to %.3f, all %.3f to %.3f)\n", pszBy,
                MedianOf(ratios), QuantileOf(ratios, 0.25), QuantileOf(ratios, 0.75), QuantileOf(ratios, 0),
                QuantileOf(ratios, 1));
}

bool Judge(const BenchNet::UnitT& unit, double ratio)
{
    const bool bMet = ratio >= unit.least && ratio <= unit.most;
    std::printf("  wanted by the clock:     ");
    if (unit.least > 0) std::printf(" at least %.1f", unit.least);
    if (unit.most < BenchNet::NO_LIMIT) std::printf(" at most %.1f", unit.most);
    std::printf(": %s\n", bMet ? "met" : "MISSED");
    std::fflush(stdout);
    return bMet;
}

} // namespace

void BenchNet::Check(bool bOk, const char* what)
{
    if (bOk) return;
    std::fprintf(stderr, "scanreader_bench_net: %s failed\n", what);
    std::exit(1);
}

double BenchNet::Seconds(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

bool BenchNet::Compare(const UnitT& unit, int nRounds, SideT plain, SideT ours)
{
    SamplesT plainOnes;
    SamplesT ourOnes;
    for (int n = 0; n < nRounds; ++n) {
        const bool bPlainFirst = n % 2 == 0;
        (bPlainFirst ? plainOnes : ourOnes).take(bPlainFirst ? plain : ours);
        (bPlainFirst ? ourOnes : plainOnes).take(bPlainFirst ? ours : plain);
    }
    // More is better by second, less is better otherwise.
    const auto ratios = [&](const std::vector<double>& first, const std::vector<double>& second) {
        std::vector<double> all;
        for (std::size_t n = 0; n < first.size(); ++n)
            all.push_back(unit.bPerSecond ? first[n] / second[n] : second[n] / first[n]);
        return all;
    };
    const auto shown = [&](const std::vector<double>& seconds) {
        return unit.bPerSecond ? unit.perRound / MedianOf(seconds) : MedianOf(seconds) / unit.perRound;
    };
    std::printf("  plain %.2f, ours %.2f %s, %d rounds\n", shown(plainOnes.clock), shown(ourOnes.clock),
                unit.unit, nRounds);
    const std::vector<double> byClock = ratios(plainOnes.clock, ourOnes.clock);
    PrintRatios("by the clock", byClock);
    PrintRatios("by processor time", ratios(plainOnes.processor, ourOnes.processor));
    return Judge(unit, MedianOf(byClock));
}

int main(int argc, char** argv)
{
    std::optional<int> nRounds;
    std::vector<const CaseT*> chosen;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) return Help(0);
        if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
            nRounds = std::atoi(argv[++i]);
            continue;
        }
        const CaseT* found = nullptr;
        for (const CaseT& each : s_aCases)
            if (std::strcmp(each.pszName, argv[i]) == 0) found = &each;
        if (found == nullptr) return Help(2);
        chosen.push_back(found);
    }
    if (nRounds && *nRounds < MIN_ROUNDS) return Help(2);
    if (chosen.empty())
        for (const CaseT& each : s_aCases)
            chosen.push_back(&each);
    BenchNet::Check(BSS::HAL::StartSockets() == 0, "starting sockets");
    bool bMet = true;
    for (const CaseT* const each : chosen) {
        std::printf("== %s: %s\n", each->pszName, each->pszWhat);
        bMet = each->run(nRounds.value_or(each->nRounds)) && bMet;
    }
    BSS::HAL::StopSockets();
    return bMet ? 0 : 1;
}
