// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the size of a batch costs.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include <cstdio>
#include <iterator>

namespace Bench {

void RunBatches(const OptionsT& options)
{
    constexpr std::uint32_t uiPoints = 4000000;
    for (std::size_t i = 0; i < 3; ++i) {
        const LayoutT& layout = AllLayouts()[i];
        const ScanFileC scan(options.strDirectory + "/batches.qsb", layout, uiPoints);
        std::vector<CandidateT> candidates;
        constexpr unsigned int auiBatches[] = {10000, 100, 300, 1000, 3000, 30000, 100000};
        constexpr std::size_t nThousand = 3;
        for (const unsigned int uiBatch : auiBatches) {
            candidates.push_back({"batches of " + std::to_string(uiBatch), [&scan, uiBatch] {
                                      ReadAll(scan, SIO::QsbInstructionSetT::eAvx2, uiBatch);
                                  }});
        }
        // What the machine's caches make of it, whoever reads.
        for (const unsigned int uiBatch : {1000u, 10000u, 100000u})
            candidates.push_back(
                {"copy limit, " + std::to_string(uiBatch), [&scan, uiBatch] { CopyAll(scan, uiBatch); }});
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, uiPoints / 1e6, "Mpt/s", {0});
        const std::string strName = std::string(layout.pszShortName) + " in ";
        for (std::size_t j = 0; j < std::size(auiBatches); ++j) {
            if (auiBatches[j] > 1000)
                ExpectAtLeast(strName + candidates[j].strName + " against 1000",
                              SpeedOf(candidates[j], candidates[nThousand]), 0.95);
        }
        ExpectAtLeast(strName + "batches of 100 against 10000", SpeedOf(candidates[1], candidates[0]), 0.5);
    }
}

} // namespace Bench
