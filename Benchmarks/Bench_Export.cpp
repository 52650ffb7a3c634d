// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The command as a whole: exporting a scan to PLY against what cannot be avoided, which is reading the bytes
// of the scan, writing the bytes of the PLY file, and decoding the points in between. Then the same work step
// by step, to see where the time goes.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_PointSink.h"
#include "Tools/Qsb/Tool_ScanExport.h"
#include "Tools/Qsb/Tool_ScanReader.h"

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

namespace Bench {

namespace {

constexpr std::uint32_t s_uiPoints = 20000000;

int Run(const std::string& strCommand)
{
    return std::system((strCommand + " > /dev/null 2>&1").c_str());
}

/// Takes records as the sinks do and lets them go.
class DiscardC final : public Tool::PointSinkI
{
public:
    explicit DiscardC(std::size_t nRecordBytes) : m_nRecordBytes(nRecordBytes) {}

    void Write(const std::vector<std::vector<double>>&, std::size_t) override { std::abort(); }
    bool TakesRecords() const override { return true; }
    char* AppendRecords(std::size_t nPoints) override
    {
        m_vecBytes.resize(nPoints * m_nRecordBytes);
        return m_vecBytes.data();
    }
    void Finish() override {}

private:
    std::size_t m_nRecordBytes;
    std::vector<char> m_vecBytes;
};

// The work of the command up to some step, in this process.

void ReadStored(const std::string& strScan)
{
    Tool::ScanReaderC reader(strScan);
    std::uint64_t ullPoints = 0;
    while (ullPoints < s_uiPoints)
        ullPoints += reader.ReadStored().nPoints;
}

void ReadAndMove(const std::string& strScan)
{
    Tool::ScanReaderC reader(strScan);
    Tool::ScanExportC scan(reader, {});
    DiscardC sink(scan.GetHeader().GetRecordBytes());
    while (scan.Forward(sink) != 0) {
    }
}

/// Removing the file is not part of it: `file` is left to the caller.
void ReadMoveAndWrite(const std::string& strScan, const std::string& strPly,
                      std::optional<Tool::OutputFileC>& file)
{
    Tool::ScanReaderC reader(strScan);
    Tool::ScanExportC scan(reader, {});
    file.emplace(strPly, false);
    const std::unique_ptr<Tool::PointSinkI> poSink = Tool::MakePlySink(*file, scan.GetHeader());
    while (scan.Forward(*poSink) != 0) {
    }
    poSink->Finish();
}

/// What each step takes beyond the one before it, as parts of the last.
void PrintSplit(const std::vector<CandidateT>& candidates, std::size_t nFirst)
{
    const char* const apszSteps[] = {"reading", "moving fields, counting what is not finite", "writing",
                                     "syncing and renaming"};
    const CandidateT& whole = candidates[nFirst + 3];
    const double dClock = MedianOf(whole.vecClockSeconds), dThread = MedianOf(whole.vecThreadSeconds);
    std::printf("  where the time goes                             of the clock  of processor time\n");
    double dClockBefore = 0, dThreadBefore = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const double dClockSoFar = MedianOf(candidates[nFirst + i].vecClockSeconds);
        const double dThreadSoFar = MedianOf(candidates[nFirst + i].vecThreadSeconds);
        std::printf("    %-44s %12.2f %18.2f\n", apszSteps[i], (dClockSoFar - dClockBefore) / dClock,
                    (dThreadSoFar - dThreadBefore) / dThread);
        dClockBefore = dClockSoFar;
        dThreadBefore = dThreadSoFar;
    }
}

/// Export against the cats and what decoding takes beyond reading.
RatioT AgainstCats(const std::vector<CandidateT>& candidates, std::initializer_list<std::size_t> cats)
{
    const auto ratio = [&](std::vector<double> CandidateT::*pSeconds) {
        const auto median = [&](std::size_t n) { return MedianOf(candidates[n].*pSeconds); };
        double dSeconds = median(3) - median(4);
        for (const std::size_t nCat : cats)
            dSeconds += median(nCat);
        return median(5) / dSeconds;
    };
    return {ratio(&CandidateT::vecClockSeconds), ratio(&CandidateT::vecThreadSeconds)};
}

} // namespace

void RunExport(const OptionsT& options)
{
    const std::string strQsb = options.strProgram.substr(0, options.strProgram.rfind('/') + 1) + "qsb";
    const std::string strPly = options.strDirectory + "/export.ply";
    const std::string strOther = options.strDirectory + "/export.copy";
    const ScanFileC scan(options.strDirectory + "/export.qsb", AllLayouts()[0], s_uiPoints);
    const std::string& strScan = scan.Path();
    const std::string strExport = "'" + strQsb + "' export '" + strScan + "' '" + strPly + "' --overwrite";
    if (Run(strExport) != 0) {
        std::printf("  left out: %s cannot export\n", strQsb.c_str());
        std::remove(strPly.c_str());
        return;
    }
    const auto require = [](int iExitCode) {
        if (iExitCode != 0) std::abort();
    };
    // Beside the file that cat reads, which must stay the one of the first export; and new each time, as
    // cat's is.
    const std::string strNew = options.strDirectory + "/export-new.ply";
    const auto exportNew = [&](const char* pszOption) {
        require(Run("'" + strQsb + "' export " + pszOption + " '" + strScan + "' '" + strNew + "'"));
    };
    const auto removeNew = [&] { std::remove(strNew.c_str()); };
    const std::string strCat = "cat '" + strPly + "' > '" + strOther + "'";
    const auto remove = [&] { std::remove(strOther.c_str()); };
    std::optional<Tool::OutputFileC> file;
    std::vector<CandidateT> candidates = {
        {"cat of the scan to nowhere", [&] { require(Run("cat '" + strScan + "'")); }},
        {"cat of the PLY to a file", [&] { require(std::system(strCat.c_str())); }, remove},
        {"the same, synced to disk",
         [&] { require(std::system((strCat + " && sync '" + strOther + "'").c_str())); }, remove},
        {"reading all points", [&] { ReadAll(scan, SIO::QsbInstructionSetT::eAvx2); }},
        {"reading bytes alone", [&] { FreadAll(scan); }},
        {"export to PLY", [&] { exportNew(""); }, removeNew},
        {"export, pose applied", [&] { exportNew("--apply-pose"); }, removeNew},
        {"step: reading", [&] { ReadStored(strScan); }},
        {"steps: and moving", [&] { ReadAndMove(strScan); }},
        {"steps: and writing", [&] { ReadMoveAndWrite(strScan, strOther, file); }, [&] { file.reset(); }},
        {"steps: and syncing",
         [&] {
             ReadMoveAndWrite(strScan, strOther, file);
             file->Commit();
         },
         [&] {
             file.reset();
             remove();
         }},
    };
    RunInterleaved(candidates, options.nRounds);
    std::printf("%u points, %s; the command syncs what it has written, cat does not\n", s_uiPoints,
                AllLayouts()[0].pszName);
    PrintTimes(candidates);
    PrintSplit(candidates, 7);
    ExpectAtMost("export against cat in, cat out and decoding", AgainstCats(candidates, {0, 1}), 1.5);
    // The cat of the PLY reads as many bytes as it writes, and those are more than the scan's.
    ExpectAtMost("export against the cat of the PLY alone and decoding", AgainstCats(candidates, {1}), 1.5);
    ExpectAtMost("export against cat in, cat out, sync and decoding", AgainstCats(candidates, {0, 2}), 1.5);
    std::remove(strPly.c_str());
}

} // namespace Bench
