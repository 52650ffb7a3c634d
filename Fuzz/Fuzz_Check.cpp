// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Checks the input deeply, and asks the exported reader whether it agrees: there is an error exactly when the
// reader refuses the file or does not deliver every point.
#include "Fuzz/Fuzz_MemoryFile.h"
#include "Tools/Qsb/Tool_CheckReport.h"
#include "Tools/Qsb/Tool_InfoReport.h"
#include "Tools/Qsb/Tool_ScanCheck.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <ScanReader/QsbReader.h>
#include <cstdio>

namespace {

constexpr std::size_t s_nMaxBytes = 65536;
constexpr std::size_t s_nMinPointBytes =
    14; ///< of those that the reader takes: float positions and 16-bit intensities

/// Points that a host gets in batches of this size; -1 when it is refused.
std::int64_t PointsDelivered(const std::string& path, std::size_t nBatch)
{
    Kry::ScanReader::QsbReader reader;
    if (reader.Open(path.c_str()) != 0) return -1;
    Kry::ScanReader::QsbReadIterator iterator(static_cast<unsigned int>(nBatch));
    std::int64_t llPoints = 0;
    std::uint64_t count = 0;
    do {
        if (reader.Read(iterator, count) != 0) return -1;
        llPoints += static_cast<std::int64_t>(count);
    } while (count != 0);
    return llPoints;
}

[[noreturn]] void Disagree(const char* szWhat, const Tool::ScanCheckC& check, std::int64_t llDelivered)
{
    std::fprintf(stderr, "%s; the reader delivers %lld points\n%s", szWhat,
                 static_cast<long long>(llDelivered), Tool::CheckText("input", check, false).c_str());
    std::abort();
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
    Tool::MemoryInputC input(pBytes, nBytes);
    const Tool::ScanCheckC check = Tool::CheckScan(input, true, [](std::uint64_t) {});

    static Fuzz::MemoryFileC file;
    file.Fill(pBytes, nBytes);
    // Batches that are larger than all points of the file behave like the usual ones, and are cheaper to
    // make.
    const std::int64_t llDelivered = PointsDelivered(file.GetPath(), nBytes / s_nMinPointBytes + 1);
    if (check.oFindings.HasErrors() != (llDelivered < 0)) Disagree("verdicts differ", check, llDelivered);
    if (llDelivered >= 0) {
        const std::uint64_t ullPoints = check.pHeader->GetPoints();
        if (static_cast<std::uint64_t>(llDelivered) < ullPoints)
            Disagree("points are missing", check, llDelivered);
        if (check.pStatistics->ullPoints != ullPoints)
            Disagree("not all points were looked at", check, llDelivered);
    }

    // What is printed must be printable, whatever was found. It costs more than the check itself.
    if (nBytes % 8 != 0) return 0;
    Tool::CheckText("input", check, false);
    Tool::CheckJson("input", check).dump();
    Tool::InfoText("input", check, 100);
    Tool::InfoJson("input", check, 100).dump();
    return 0;
}
