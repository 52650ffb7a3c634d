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
    const auto require = [](int iExitCode) {
        if (iExitCode != 0) std::abort();
    };
    const std::string strCat = "cat '" + strPly + "' > '" + strOther + "'";
    const auto remove = [&] { std::remove(strOther.c_str()); };
    std::vector<CandidateT> candidates = {
        {"cat of the scan to nowhere", [&] { require(Run("cat '" + scan.Path() + "'")); }},
        {"cat of the PLY to a file", [&] { require(std::system(strCat.c_str())); }, remove},
        {"the same, synced to disk",
         [&] { require(std::system((strCat + " && sync '" + strOther + "'").c_str())); }, remove},
        {"reading all points", [&] { ReadAll(scan, SIO::QsbInstructionSetT::eAvx2); }},
        {"reading bytes alone", [&] { FreadAll(scan); }},
        {"export to PLY", [&] { require(Run(strExport)); }},
        {"export, pose applied", [&] { require(Run(strExport + " --apply-pose")); }},
    };
    RunInterleaved(candidates, options.nRounds);
    std::printf("%u points, %s; the command syncs what it has written, cat does not\n", s_uiPoints,
                AllLayouts()[0].pszName);
    PrintTimes(candidates);
    // Against the sum of several candidates.
    const auto against = [&](std::size_t nExport, std::size_t nCatOut) {
        RatioT ratio = {};
        for (const std::size_t n : {std::size_t{0}, nCatOut, std::size_t{3}}) {
            const RatioT one = SpeedOf(candidates[nExport], candidates[n]);
            ratio.dClock += one.dClock;
            ratio.dThread += one.dThread;
        }
        return RatioT{1 / ratio.dClock, 1 / ratio.dThread};
    };
    ExpectAtMost("export against cat in, cat out and reading", against(5, 1), 1.5);
    ExpectAtMost("export against cat in, cat out, sync and reading", against(5, 2), 1.5);
    std::remove(strPly.c_str());
}

} // namespace Bench
