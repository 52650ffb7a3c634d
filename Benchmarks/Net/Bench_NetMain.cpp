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
#include <vector>

namespace {

constexpr int MIN_ROUNDS = 5;

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    void (*run)(int nRounds);
};

constexpr CaseT s_aCases[] = {
    {"receive", "bytes received through the client against plain blocking calls", &BenchNet::RunReceiving},
    {"send", "bytes sent through the client against plain blocking calls", &BenchNet::RunSending},
    {"trip", "the round trip of 64 bytes against plain blocking calls", &BenchNet::RunRoundTrips},
    {"clients", "199 clients of the log with one more that never reads, and without it",
     &BenchNet::RunLogClients},
};

int Help(int iExitCode)
{
    std::printf(
        "usage: scanreader_bench_net [--rounds N] [CASE...]    %d rounds at least\n\ncases, all without "
        "saying:\n",
        MIN_ROUNDS);
    for (const CaseT& each : s_aCases)
        std::printf("  %-8s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

double MedianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
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
    const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
    std::printf("  ratio %-18s %.3f  (%.3f to %.3f)\n", pszBy, MedianOf(ratios), *least, *most);
    std::fflush(stdout);
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

void BenchNet::Compare(const UnitT& unit, int nRounds, SideT plain, SideT ours)
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
    PrintRatios("by the clock", ratios(plainOnes.clock, ourOnes.clock));
    PrintRatios("by processor time", ratios(plainOnes.processor, ourOnes.processor));
}

int main(int argc, char** argv)
{
    int nRounds = 9;
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
    if (nRounds < MIN_ROUNDS) return Help(2);
    if (chosen.empty())
        for (const CaseT& each : s_aCases)
            chosen.push_back(&each);
    BenchNet::Check(BSS::HAL::StartSockets() == 0, "starting sockets");
    for (const CaseT* const each : chosen) {
        std::printf("== %s: %s\n", each->pszName, each->pszWhat);
        each->run(nRounds);
    }
    BSS::HAL::StopSockets();
    return 0;
}
