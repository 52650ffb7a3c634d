// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Opening a file of a million small blocks against reading its bytes from front to back.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "ScanReader/QsbReader.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

namespace Bench {

namespace F = SIO::QsbFormat;

namespace {

constexpr std::uint32_t s_uiBlocks = 1000000;

void Put(std::string& strBytes, std::initializer_list<std::uint32_t> numbers)
{
    for (const std::uint32_t ui : numbers) {
        char ac[4];
        SIO::StoreLittleEndian(ac, ui);
        strBytes.append(ac, sizeof ac);
    }
}

struct ShapeT
{
    const char* pszName;
    std::uint32_t uiEntries;
    std::uint32_t uiDataBytes;
    bool bSameIds = false;
    bool bEverySecondEmpty = false;
    bool bRandomData = false; ///< then the bytes of data are the most
};

/// A chain of blocks, each with so many entries and bytes of data, and a point block of one point at its end.
void WriteChain(const std::string& strPath, const ShapeT& shape)
{
    std::string strBytes;
    Put(strBytes, {F::s_uiFileHeaderId, 16, 0, F::s_uiTypeUInt32, F::s_uiTagVersion, F::s_uiVersion2, 0});
    std::mt19937 random(1);
    for (std::uint32_t i = 0; i < s_uiBlocks; ++i) {
        const bool bEmpty = shape.bEverySecondEmpty && i % 2 == 0;
        const std::uint32_t uiEntries = bEmpty ? 0 : shape.uiEntries;
        const auto uiRandom = static_cast<std::uint32_t>(random() % (shape.uiDataBytes + 1));
        const std::uint32_t uiDataBytes = bEmpty ? 0 : shape.bRandomData ? uiRandom : shape.uiDataBytes;
        Put(strBytes, {shape.bSameIds ? 100 : 100 + i, 16 * uiEntries, uiDataBytes});
        for (std::uint32_t j = 0; j < uiEntries; ++j)
            Put(strBytes, {F::s_uiTypeUInt32, 30, i, 0});
        strBytes.append(uiDataBytes, 'd');
    }
    Put(strBytes, {F::s_uiPointCloudId, 32, 14, F::s_uiTypeFloatTriple, F::s_uiTagPosition, 12, 0,
                   F::s_uiTypeUInt16, F::s_uiTagIntensity, 2, 0});
    strBytes.append(14, '\0');
    std::FILE* const stream = std::fopen(strPath.c_str(), "wb");
    if (stream == nullptr || std::fwrite(strBytes.data(), 1, strBytes.size(), stream) != strBytes.size())
        std::abort();
    std::fclose(stream);
}

void ReadBytes(const std::string& strPath)
{
    std::FILE* const stream = std::fopen(strPath.c_str(), "rb");
    static char s_acBuffer[65536];
    double dSum = 0;
    while (const std::size_t nRead = std::fread(s_acBuffer, 1, sizeof s_acBuffer, stream))
        dSum += s_acBuffer[nRead / 2];
    std::fclose(stream);
    Use(dSum);
}

} // namespace

void RunOpen(const OptionsT& options)
{
    const std::string strPath = options.strDirectory + "/open.qsb";
    for (const ShapeT& shape :
         {ShapeT{"1000000 blocks of 12 bytes: heads alone, each another", 0, 0},
          {"1000000 blocks of 12 bytes: the same head again and again", 0, 0, true},
          {"1000000 blocks of 13 bytes: 1 of data", 0, 1},
          {"1000000 blocks of 12 and 13 bytes in turn: none and 1 of data", 0, 1, false, true},
          {"1000000 blocks of 28 bytes: one entry", 1, 0},
          {"1000000 blocks of 44 bytes: two entries", 2, 0},
          {"1000000 blocks of 32 bytes: 20 of data", 0, 20},
          {"1000000 blocks of 12 to 52 bytes: up to 40 of data, at random", 0, 40, false, false, true},
          {"1000000 blocks of 28 to 68 bytes: one entry, up to 40 of data, at random", 1, 40, false, false,
           true},
          {"1000000 blocks of 112 bytes: 100 of data", 0, 100},
          {"1000000 blocks of 144 bytes: two entries, 100 of data", 2, 100},
          {"1000000 blocks of 1012 bytes: 1000 of data", 0, 1000}}) {
        WriteChain(strPath, shape);
        auto reader = std::make_unique<Kry::ScanReader::QsbReader>();
        const auto open = [&] {
            if (reader->Open(strPath.c_str()) != 0) std::abort();
        };
        const auto close = [&] { reader->Close(); };
        std::vector<CandidateT> candidates = {{"fread, 64 KiB at a time", [&] { ReadBytes(strPath); }},
                                              {"open", open, close},
                                              {"open and close", [&] {
                                                   open();
                                                   close();
                                               }}};
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", shape.pszName);
        PrintTimes(candidates);
        ExpectAtMost(std::string("open ") + shape.pszName, SpeedOf(candidates[0], candidates[1]), 3);
    }
    std::remove(strPath.c_str());
}

} // namespace Bench
