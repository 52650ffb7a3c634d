// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The command as a whole: exporting a scan to PLY against what cannot be avoided, which is reading the bytes
// of the scan, writing the bytes of the PLY file, and decoding the points in between.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Bench {

namespace {

constexpr std::uint32_t s_uiPoints = 20000000;

int Run(const std::string& strCommand)
{
    return std::system((strCommand + " > /dev/null 2>&1").c_str());
}

} // namespace

void RunExport(const OptionsT& options)
{
    const std::string strQsb = options.strProgram.substr(0, options.strProgram.rfind('/') + 1) + "qsb";
    const std::string strPly = options.strDirectory + "/export.ply";
    const std::string strOther = options.strDirectory + "/export.copy";
    const ScanFileC scan(options.strDirectory + "/export.qsb", AllLayouts()[0], s_uiPoints);
    const std::string strExport =
        "'" + strQsb + "' export '" + scan.Path() + "' '" + strPly + "' --overwrite";
    if (Run(strExport) != 0) {
        std::printf("  left out: %s cannot export\n", strQsb.c_str());
        std::remove(strPly.c_str());
        return;
    }
    std::vector<CandidateT> candidates = {
        {"cat of the scan to nowhere", [&] { Run("cat '" + scan.Path() + "'"); }},
        {"cat of the PLY to a file",
         [&] {
             std::system(("cat '" + strPly + "' > '" + strOther + "'").c_str()) == 0 ? void() : std::abort();
         },
         [&] { std::remove(strOther.c_str()); }},
        {"reading all points", [&] { ReadAll(scan, SIO::QsbInstructionSetT::eAvx2); }},
        {"export to PLY", [&] { Run(strExport) == 0 ? void() : std::abort(); }},
    };
    RunInterleaved(candidates, options.nRounds);
    std::printf("%u points, %s\n", s_uiPoints, AllLayouts()[0].pszName);
    PrintTimes(candidates);
    const auto median = [&](std::size_t n) { return MedianOf(candidates[n].vecClockSeconds); };
    const double dUnavoidable = median(0) + median(1) + median(2);
    std::printf("  export against cat in, cat out and reading: %.2f\n", median(3) / dUnavoidable);
    ExpectAtMost("export against cat in, cat out and reading", {median(3) / dUnavoidable, 0}, 1.5);
    std::remove(strPly.c_str());
}

} // namespace Bench
