// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Whether a point costs more in a larger file, or behind many other blocks.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include <cstdio>
#include <memory>

namespace Bench {

namespace {

struct CaseT
{
    std::uint32_t uiPoints;
    std::uint32_t uiBlocksBefore;
};

} // namespace

void RunSizes(const OptionsT& options)
{
    const LayoutT& layout = AllLayouts()[0];
    std::printf("%s, nanoseconds for a point, opening included\n", layout.pszName);
    std::vector<std::unique_ptr<ScanFileC>> scans;
    std::vector<CandidateT> candidates;
    for (const CaseT& c :
         {CaseT{5000000, 0}, {1000000, 0}, {20000000, 0}, {5000000, 10}, {5000000, 1000}, {5000000, 10000}}) {
        scans.push_back(
            std::make_unique<ScanFileC>(options.strDirectory + "/sizes" + std::to_string(scans.size()),
                                        layout, c.uiPoints, c.uiBlocksBefore));
        const ScanFileC& scan = *scans.back();
        candidates.push_back({std::to_string(c.uiPoints / 1000000) + "e6 points, " +
                                  std::to_string(c.uiBlocksBefore) + " blocks",
                              [&scan] { ReadAll(scan, SIO::QsbInstructionSetT::eAvx2); }});
    }
    RunInterleaved(candidates, options.nRounds);
    // The same amount of work for all: a thousand points.
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        for (double& d : candidates[i].vecClockSeconds)
            d *= 1e6 / scans[i]->Points();
        for (double& d : candidates[i].vecThreadSeconds)
            d *= 1e6 / scans[i]->Points();
    }
    PrintTimes(candidates);
    for (std::size_t i = 1; i < candidates.size(); ++i)
        ExpectAtMost("a point of " + candidates[i].strName, SpeedOf(candidates[0], candidates[i]), 1.1);
}

} // namespace Bench
