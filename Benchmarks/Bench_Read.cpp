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

void RunRead(const OptionsT& options)
{
    constexpr std::uint32_t uiPoints = 4000000;
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
    }
}

} // namespace Bench
