// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A host's whole use of the exported reader on a hostile file: opens, asks everything, reads every batch in
// several sizes, reads past the end and past failures, and opens a second variant with the iterators of the
// first.
#include "Fuzz/Fuzz_MemoryFile.h"

#include <ScanReader/QsbReader.h>
#include <algorithm>
#include <vector>

namespace {

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

constexpr std::size_t s_nMaxBytes = 65536;

/// Keeps the compiler from leaving out what is computed from `value`.
template<typename T>
void Use(const T& value)
{
    asm volatile("" : : "r"(&value) : "memory");
}

void AskEverything(QsbReader& reader)
{
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    double m[16];
    reader.GetTransformation(m);
    const double dHeight = reader.GetInstrumentHeight();
    const bool abAnswers[] = {reader.GetGridSize(first, second), reader.HasColor(), reader.HasGrid(),
                              reader.HasNoiseRatio()};
    Use(abAnswers);
    Use(dHeight);
    Use(std::string(reader.RetMsg()));
    reader.GetTransformation(nullptr);
}

/// Reads until the end, or until a batch fails, which it must then do again.
void ReadAll(QsbReader& reader, QsbReadIterator& iterator, std::uint64_t ullSize)
{
    const std::uint64_t ullPoints = reader.GetNumPoints();
    std::uint64_t count = 0;
    // The first batch may come although there are no points.
    for (std::uint64_t ullBatch = 0; ullBatch <= ullPoints / ullSize + 1; ++ullBatch) {
        if (reader.Read(iterator, count) != 0) {
            if (count != 0) std::abort();
            // It fails each time, but for a scan that states no points: there only the very first Read looks.
            if (reader.Read(iterator, count) == 0 && (ullPoints != 0 || count != 0)) std::abort();
            return;
        }
        if (count > ullSize) std::abort();
        const QsbPoint* poPoints = iterator.GetPoints();
        double dSum = 0.0;
        for (std::uint64_t i = 0; i < count; ++i)
            dSum += poPoints[i].x + poPoints[i].intensity;
        Use(dSum);
        if (iterator.GetPoint(ullSize) != nullptr) std::abort();
        if (count == 0) return;
    }
    if (reader.Read(iterator, count) != 0 || count != 0) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::KeepLogStill();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes > s_nMaxBytes) return -1;
    static Fuzz::MemoryFileC file;
    static Fuzz::MemoryFileC variant;
    file.Fill(pBytes, nBytes);
    // The variant: the same scan without its last third, or with one byte changed, as the input itself says.
    std::vector<std::uint8_t> bytes(pBytes, pBytes + nBytes);
    if (nBytes > 40 && pBytes[nBytes - 1] % 2 == 0) {
        bytes[40 + pBytes[nBytes - 2] % (nBytes - 40)] ^= pBytes[nBytes - 1];
    } else {
        bytes.resize(nBytes - nBytes / 3);
    }
    variant.Fill(bytes.data(), bytes.size());

    const std::uint64_t aullSizes[] = {1, 7, 10000};
    for (const std::uint64_t ullSize : aullSizes) {
        QsbReader reader;
        QsbReadIterator iterator(static_cast<unsigned int>(ullSize));
        const bool bOpened = reader.Open(file.GetPath().c_str()) == 0;
        AskEverything(reader);
        // Many single points take long and show nothing new.
        if (bOpened && reader.GetNumPoints() / ullSize < 5000) ReadAll(reader, iterator, ullSize);
        if (bOpened && reader.Open(file.GetPath().c_str()) == 0) std::abort();
        reader.Close();
        if (reader.Open(variant.GetPath().c_str()) != 0) continue;
        std::uint64_t count = 0;
        const int iFailed = reader.Read(iterator, count);
        Use(iFailed);
        QsbReadIterator fresh(static_cast<unsigned int>(ullSize));
        if (reader.GetNumPoints() / ullSize < 5000) ReadAll(reader, fresh, ullSize);
        AskEverything(reader);
    }
    return 0;
}
