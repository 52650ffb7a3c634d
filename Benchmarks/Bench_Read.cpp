// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reading through the exported interface, with each instruction set, against copying and against the virtual
// calls.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include <cstdio>

namespace Bench {

using SIO::QsbInstructionSetT;

namespace {

/// What share of the copy limit, and how many times the speed of the virtual calls, a layout should reach.
struct WantedT
{
    double dAvx2;
    double dBaseline;
    double dVirtual;
    double dBaselineVirtual;
};

constexpr WantedT s_aWanted[] = {{0.70, 0.50, 5, 0}, {0.85, 0.70, 5, 0}, {0.62, 0.48, 0, 0},
                                 {0, 0, 3, 3},       {0, 0, 3, 3},       {0, 0, 3, 3}};

void Expect(const LayoutT& layout, const WantedT& wanted, const std::vector<CandidateT>& candidates)
{
    const std::string strName = std::string("read ") + layout.pszShortName;
    const CandidateT& limit = candidates[0];
    const CandidateT& avx2 = candidates[2];
    const CandidateT& baseline = candidates[3];
    const CandidateT& oneByOne = candidates[4];
    if (wanted.dAvx2 > 0)
        ExpectAtLeast(strName + ", AVX2 of the copy limit", SpeedOf(avx2, limit), wanted.dAvx2);
    if (wanted.dBaseline > 0)
        ExpectAtLeast(strName + ", SSE2 of the copy limit", SpeedOf(baseline, limit), wanted.dBaseline);
    if (wanted.dVirtual > 0)
        ExpectAtLeast(strName + ", AVX2 against virtual calls", SpeedOf(avx2, oneByOne), wanted.dVirtual);
    if (wanted.dBaselineVirtual > 0)
        ExpectAtLeast(strName + ", SSE2 against virtual calls", SpeedOf(baseline, oneByOne),
                      wanted.dBaselineVirtual);
}

} // namespace

void RunRead(const OptionsT& options)
{
    constexpr std::uint32_t uiPoints = 4000000;
    const WantedT* pWanted = s_aWanted;
    for (const LayoutT& layout : AllLayouts()) {
        const ScanFileC scan(options.strDirectory + "/read.qsb", layout, uiPoints);
        std::vector<CandidateT> candidates = {
            {"copy limit", [&] { CopyAll(scan); }},
            {"fread alone", [&] { FreadAll(scan); }},
            {"avx2", [&] { ReadAll(scan, QsbInstructionSetT::eAvx2); }},
            {"baseline", [&] { ReadAll(scan, QsbInstructionSetT::eBaseline); }},
            {"virtual", [&] { ReadAll(scan, QsbInstructionSetT::eVirtual); }},
        };
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, uiPoints / 1e6, "Mpt/s", {0, 4});
        Expect(layout, *pWanted++, candidates);
    }
}

} // namespace Bench
