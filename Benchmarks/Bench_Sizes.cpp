// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Whether a point costs more in a larger file, or behind many other blocks. Opening is measured apart: it
// does cost more behind many blocks, and would hide what a point costs.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "ScanReader/QsbReader.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace Bench {

namespace {

struct CaseT
{
    std::uint32_t uiPoints;
    BlocksBeforeT before;
};

/// A scan and a reader that has it open all the time.
struct OpenScanT
{
    OpenScanT(const std::string& strPath, const LayoutT& layout, const CaseT& c)
        : oScan(strPath, layout, c.uiPoints, c.before)
    {
        if (oReader.Open(strPath.c_str()) != 0) std::abort();
    }

    void Open() const
    {
        Kry::ScanReader::QsbReader reader;
        if (reader.Open(oScan.Path().c_str()) != 0) std::abort();
    }

    void Read()
    {
        Kry::ScanReader::QsbReadIterator batch(10000);
        std::uint64_t ullCount = 0;
        std::uint64_t ullTotal = 0;
        double dSum = 0;
        while (oReader.Read(batch, ullCount) == 0 && ullCount > 0) {
            dSum += batch.GetPoints()[ullCount / 2].x;
            ullTotal += ullCount;
        }
        if (ullTotal != oScan.Points()) std::abort();
        Use(dSum);
    }

    ScanFileC oScan;
    Kry::ScanReader::QsbReader oReader;
};

} // namespace

void RunSizes(const OptionsT& options)
{
    const LayoutT& layout = AllLayouts()[0];
    std::vector<std::unique_ptr<OpenScanT>> scans;
    std::vector<CandidateT> reading, opening;
    for (const CaseT& c : {CaseT{5000000, {}},
                           {1000000, {}},
                           {20000000, {}},
                           {5000000, {10}},
                           {5000000, {1000}},
                           {5000000, {10000}},
                           {5000000, {1000000}},
                           {5000000, {1000000, true}}}) {
        scans.push_back(std::make_unique<OpenScanT>(
            options.strDirectory + "/sizes" + std::to_string(scans.size()), layout, c));
        OpenScanT& scan = *scans.back();
        const std::string strName = std::to_string(c.uiPoints / 1000000) + "e6 points, " +
                                    std::to_string(c.before.uiBlocks) +
                                    (c.before.bEmptyPairs ? " blocks, mixed" : " blocks");
        reading.push_back({strName, [&scan] { scan.Read(); }});
        opening.push_back({strName, [&scan] { scan.Open(); }});
    }
    SIO::SetInstructionSet(SIO::QsbInstructionSetT::eAvx2);
    RunInterleaved(reading, options.nRounds);
    // The same amount of work for all: a million points, so that milliseconds are nanoseconds for a point.
    for (std::size_t i = 0; i < reading.size(); ++i) {
        for (double& d : reading[i].vecClockSeconds)
            d *= 1e6 / scans[i]->oScan.Points();
        for (double& d : reading[i].vecThreadSeconds)
            d *= 1e6 / scans[i]->oScan.Points();
    }
    std::printf("%s, reading a million points of an open file (ms, which are ns for a point)\n",
                layout.pszName);
    PrintTimes(reading);
    RunInterleaved(opening, options.nRounds);
    std::printf("opening the same files\n");
    PrintTimes(opening);
    for (std::size_t i = 1; i < reading.size(); ++i)
        ExpectAtMost("a point of " + reading[i].strName, SpeedOf(reading[0], reading[i]), 1.1);
}

} // namespace Bench
