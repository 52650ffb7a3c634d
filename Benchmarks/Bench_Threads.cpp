// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two readers on the two halves of a file, a thread each, against one reader on the whole; and the same for
// plain copies, which share nothing at all.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReaderImpl.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace Bench {

using namespace SIO;

namespace {

constexpr std::uint32_t s_uiPoints = 8000000;
constexpr std::uint32_t s_uiBatch = 10000;

/// A reader with everything that belongs to it, made where it is used last: on the thread that asked for
/// both.
struct ReaderT
{
    explicit ReaderT(const ScanFileC& scan)
        : oIterator(s_uiBatch), vecPoints(s_uiBatch), oPoints(vecPoints.data())
    {
        if (oReader.Open(scan.Path(), 1) != BSS::RC_OK) std::abort();
    }

    void Read(std::uint32_t uiFirst, std::uint32_t uiEnd)
    {
        double dSum = 0;
        oIterator.SetIteratorPos(uiFirst);
        for (std::uint32_t uiDone = uiFirst; uiDone < uiEnd; uiDone += s_uiBatch) {
            std::int32_t iCount = 0;
            oPoints.Reset();
            if (oReader.Read(oIterator, oPoints, iCount) != BSS::RC_OK || iCount != s_uiBatch) std::abort();
            oIterator.Next();
            dSum += vecPoints[0].x;
        }
        Use(dSum);
    }

    QsbReaderImplC oReader;
    QsbReaderIteratorImplC oIterator;
    std::vector<QsbPointC> vecPoints;
    QsbPointArrayIteratorC oPoints;
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
    SetInstructionSet(QsbInstructionSetT::eAvx2);
    for (std::size_t i = 0; i < 3; ++i) {
        const LayoutT& layout = AllLayouts()[i];
        const ScanFileC scan(options.strDirectory + "/threads.qsb", layout, s_uiPoints);
        constexpr std::uint32_t uiHalf = s_uiPoints / 2;
        ReaderT one(scan);
        ReaderT two(scan);
        std::vector<CandidateT> candidates = {
            {"copy, one thread", [&] { CopyPart(scan, 0, s_uiPoints, s_uiBatch); }},
            {"copy, two threads",
             [&] {
                 OnTwoThreads([&] { CopyPart(scan, 0, uiHalf, s_uiBatch); },
                              [&] { CopyPart(scan, uiHalf, s_uiPoints, s_uiBatch); });
             }},
            {"reader, one thread", [&] { one.Read(0, s_uiPoints); }},
            {"readers, two threads",
             [&] { OnTwoThreads([&] { one.Read(0, uiHalf); }, [&] { two.Read(uiHalf, s_uiPoints); }); }},
        };
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, s_uiPoints / 1e6, "Mpt/s", {0});
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
