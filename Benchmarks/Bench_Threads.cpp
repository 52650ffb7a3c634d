// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two readers of the exported interface on the two halves of a scan, a thread each, against one thread that
// reads both; and the same for plain copies, which share nothing at all. The halves are files of their own,
// since hosts read a scan from its beginning.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "ScanReader/QsbReader.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace Bench {

namespace {

constexpr std::uint32_t s_uiHalf = 4000000;
constexpr std::uint32_t s_uiBatch = 10000;

/// A reader that has its half open. Both are made on the thread that asks for them, so that their memory lies
/// close together.
struct ReaderT
{
    explicit ReaderT(const ScanFileC& scan)
    {
        if (oReader.Open(scan.Path().c_str()) != 0) std::abort();
    }

    void Read()
    {
        Kry::ScanReader::QsbReadIterator batch(s_uiBatch);
        std::uint64_t ullCount = 0;
        std::uint64_t ullTotal = 0;
        double dSum = 0;
        while (oReader.Read(batch, ullCount) == 0 && ullCount > 0) {
            dSum += batch.GetPoints()[0].x;
            ullTotal += ullCount;
        }
        if (ullTotal != s_uiHalf) std::abort();
        Use(dSum);
    }

    Kry::ScanReader::QsbReader oReader;
};

template<typename FirstT, typename SecondT>
void OnTwoThreads(const FirstT& first, const SecondT& second)
{
    std::thread other(first);
    second();
    other.join();
}

} // namespace

void RunThreads(const OptionsT& options)
{
    SIO::SetInstructionSet(SIO::QsbInstructionSetT::eAvx2);
    for (std::size_t i = 0; i < 3; ++i) {
        const LayoutT& layout = AllLayouts()[i];
        const ScanFileC firstHalf(options.strDirectory + "/threads1.qsb", layout, s_uiHalf);
        const ScanFileC secondHalf(options.strDirectory + "/threads2.qsb", layout, s_uiHalf);
        ReaderT one(firstHalf);
        ReaderT two(secondHalf);
        const auto copyFirst = [&] { CopyAll(firstHalf, s_uiBatch); };
        const auto copySecond = [&] { CopyAll(secondHalf, s_uiBatch); };
        std::vector<CandidateT> candidates = {
            {"copy, one thread",
             [&] {
                 copyFirst();
                 copySecond();
             }},
            {"copy, two threads", [&] { OnTwoThreads(copyFirst, copySecond); }},
            {"reader, one thread",
             [&] {
                 one.Read();
                 two.Read();
             }},
            {"readers, two threads", [&] { OnTwoThreads([&] { one.Read(); }, [&] { two.Read(); }); }},
        };
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, 2 * s_uiHalf / 1e6, "Mpt/s", {0});
        const auto median = [&](std::size_t n) { return MedianOf(candidates[n].vecClockSeconds); };
        const double dCopyGain = median(0) / median(1);
        const double dReaderGain = median(2) / median(3);
        std::printf("  gain of a second thread: copies %.2f, readers %.2f, ratio %.2f\n", dCopyGain,
                    dReaderGain, dReaderGain / dCopyGain);
        ExpectAtLeast(std::string("second thread for readers against copies, ") + layout.pszShortName,
                      {dReaderGain / dCopyGain, 0}, 0.9);
    }
}

} // namespace Bench
