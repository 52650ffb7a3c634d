// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the size of a batch costs.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include <cstdio>

namespace Bench {

void RunBatches(const OptionsT& options)
{
    constexpr std::uint32_t uiPoints = 4000000;
    for (std::size_t i = 0; i < 3; ++i) {
        const LayoutT& layout = AllLayouts()[i];
        const ScanFileC scan(options.strDirectory + "/batches.qsb", layout, uiPoints);
        std::vector<CandidateT> candidates;
        for (const unsigned int uiBatch : {10000u, 100u, 300u, 1000u, 3000u, 30000u, 100000u}) {
            candidates.push_back({"batches of " + std::to_string(uiBatch), [&scan, uiBatch] {
                                      ReadAll(scan, SIO::QsbInstructionSetT::eAvx2, uiBatch);
                                  }});
        }
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, uiPoints / 1e6, "Mpt/s", {0});
    }
}

} // namespace Bench
