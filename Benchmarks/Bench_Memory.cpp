// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How much memory reading takes at most, whatever the file says. A child process reads each file and tells
// the most memory that it ever had; what a child has that reads a file of one point is not counted.
#include "Bench_Cases.h"
#include "Bench_Scan.h"

#include "ScanReader/QsbReader.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace Bench {

namespace F = SIO::QsbFormat;

namespace {

constexpr std::uint64_t s_ullGiB = std::uint64_t{1} << 30;
constexpr long s_nIteratorPoints = 10000;
constexpr std::uint32_t s_uiRecordBytes = 40; ///< of the stored points

/// Writes block heads at will; what lies between them is not stored.
class SparseFileC
{
public:
    explicit SparseFileC(const std::string& strPath)
        : m_strPath(strPath), m_pStream(std::fopen(strPath.c_str(), "wb"))
    {
        AppendBlock(F::s_uiFileHeaderId, {{F::s_uiTypeUInt32, F::s_uiTagVersion}}, 0);
    }
    ~SparseFileC() { std::remove(m_strPath.c_str()); }
    SparseFileC(const SparseFileC&) = delete;
    SparseFileC& operator=(const SparseFileC&) = delete;

    void AppendBlock(std::uint32_t uiId, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries,
                     std::uint32_t uiDataBytes)
    {
        fseeko(m_pStream, static_cast<off_t>(m_ullEnd), SEEK_SET);
        Put(uiId);
        Put(static_cast<std::uint32_t>(16 * entries.size()));
        Put(uiDataBytes);
        for (const auto& [uiType, uiTag] : entries) {
            Put(uiType);
            Put(uiTag);
            Put(F::s_uiVersion2); // means something in the file header only
            Put(0);
        }
        m_ullEnd += 12 + 16 * entries.size() + uiDataBytes;
    }

    /// A block of so many entries, all of them zeros that are not stored.
    void AppendLongHeader(std::uint32_t uiId, std::uint32_t uiEntries)
    {
        fseeko(m_pStream, static_cast<off_t>(m_ullEnd), SEEK_SET);
        Put(uiId);
        Put(16 * uiEntries);
        Put(0);
        m_ullEnd += 12 + std::uint64_t{16} * uiEntries;
    }

    void AppendPoints(std::uint32_t uiDataBytes)
    {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> entries;
        std::uint32_t uiTag = F::s_uiTagPosition;
        for (const auto& element : AllLayouts()[1].elements)
            entries.push_back({element.second, uiTag++});
        AppendBlock(F::s_uiPointCloudId, entries, uiDataBytes);
        m_ullPoints = uiDataBytes / s_uiRecordBytes;
    }

    void AppendZeros(std::uint64_t ullBytes) { m_ullEnd += ullBytes; }

    const std::string& Finish()
    {
        std::fclose(m_pStream);
        if (truncate(m_strPath.c_str(), static_cast<off_t>(m_ullEnd)) != 0) std::abort();
        return m_strPath;
    }

    std::uint64_t Bytes() const { return m_ullEnd; }

    /// As many as the data of the point block have room for.
    std::uint64_t Points() const { return m_ullPoints; }

private:
    void Put(std::uint32_t ui)
    {
        char ac[4];
        SIO::StoreLittleEndian(ac, ui);
        std::fwrite(ac, 1, sizeof ac, m_pStream);
    }

    std::string m_strPath;
    std::FILE* m_pStream;
    std::uint64_t m_ullEnd = 0;
    std::uint64_t m_ullPoints = 0;
};

struct AnswerT
{
    long nKiB = -1;
    unsigned long long ullPoints = 0;
};

AnswerT AskChild(const OptionsT& options, const std::string& strPath)
{
    const std::string strCommand = "'" + options.strProgram + "' --read-and-tell-memory '" + strPath + "'";
    std::FILE* const child = popen(strCommand.c_str(), "r");
    AnswerT answer;
    if (child == nullptr || std::fscanf(child, "%ld %llu", &answer.nKiB, &answer.ullPoints) != 2)
        answer.nKiB = -1;
    if (child != nullptr) pclose(child);
    return answer;
}

void Measure(const OptionsT& options, const char* pszName, SparseFileC& file, std::uint64_t ullDistinctBlocks,
             std::uint64_t ullEntries, const AnswerT& little)
{
    const double dGiB = static_cast<double>(file.Bytes()) / static_cast<double>(s_ullGiB);
    const AnswerT answer = AskChild(options, file.Finish());
    // Memory that was not needed because reading broke off shows nothing.
    const bool bRead =
        little.nKiB >= 0 && little.ullPoints == 1 && answer.nKiB >= 0 && answer.ullPoints == file.Points();
    const double dUsed = static_cast<double>(answer.nKiB - little.nKiB) / 1024;
    // Records, raw buffer, block list, and 16 MiB.
    const double dAllowed = static_cast<double>(s_nIteratorPoints * (40 + 40) +
                                                static_cast<long>(64 * ullDistinctBlocks + 16 * ullEntries)) /
                                (1024 * 1024) +
                            16;
    std::printf("  %-42s %7.2f GiB %9llu points  %8.2f MiB of %8.2f allowed: %s\n", pszName, dGiB,
                answer.ullPoints, dUsed, dAllowed,
                !bRead              ? "NOT READ"
                : dUsed <= dAllowed ? "met"
                                    : "NOT MET");
    std::fflush(stdout);
    ExpectAtMost(std::string("peak memory of the allowed, ") + pszName,
                 {bRead ? dUsed / dAllowed : HUGE_VAL, 0}, 1);
}

} // namespace

void RunMemory(const OptionsT& options)
{
    std::printf("Peak memory above that of reading one point\n");
    const std::string strPath = options.strDirectory + "/memory.qsb";
    AnswerT little;
    {
        SparseFileC file(strPath);
        file.AppendPoints(40);
        little = AskChild(options, file.Finish());
    }
    {
        SparseFileC file(strPath);
        file.AppendBlock(77, {}, 0xFFFFFFFF);
        file.AppendPoints(0xFFFFFFFF);
        Measure(options, "points begin behind 4 GiB", file, 3, 6, little);
    }
    {
        SparseFileC file(strPath);
        file.AppendPoints(400);
        file.AppendZeros(12 * s_ullGiB / 12 * 12);
        Measure(options, "12 GiB of zeros behind the points", file, 3, 6, little);
    }
    {
        SparseFileC file(strPath);
        for (std::uint32_t i = 0; i < 1000000; ++i)
            file.AppendBlock(100 + i, {}, 5000);
        file.AppendPoints(400000000);
        Measure(options, "a million blocks before the points", file, 1000002, 6, little);
    }
    {
        SparseFileC file(strPath);
        for (std::uint32_t i = 0; i < 1000000; ++i)
            file.AppendBlock(100 + i, {{0, 27}, {0, 28}}, 5000);
        file.AppendPoints(400000000);
        Measure(options, "a million blocks with two entries each", file, 1000002, 2000006, little);
    }
    for (const std::uint32_t uiMiB : {100u, 400u}) {
        SparseFileC file(strPath);
        const std::uint32_t uiEntries = uiMiB << 16;
        file.AppendLongHeader(100, uiEntries);
        file.AppendPoints(400000000);
        Measure(options, uiMiB == 100 ? "a header of 100 MiB" : "a header of 400 MiB", file, 3, uiEntries + 6,
                little);
    }
}

int ReadAndPrintPeakMemory(const char* pszPath)
{
    Kry::ScanReader::QsbReader reader;
    if (reader.Open(pszPath) != 0) {
        std::fprintf(stderr, "%s\n", reader.RetMsg());
        return 1;
    }
    Kry::ScanReader::QsbReadIterator batch(s_nIteratorPoints);
    unsigned long long ullPoints = 0;
    std::uint64_t ullCount = 0;
    while (reader.Read(batch, ullCount) == 0 && ullCount > 0)
        ullPoints += ullCount;

    std::FILE* const status = std::fopen("/proc/self/status", "r");
    long nKiB = -1;
    char acLine[256];
    while (status != nullptr && std::fgets(acLine, sizeof acLine, status) != nullptr) {
        if (std::strncmp(acLine, "VmHWM:", 6) == 0) nKiB = std::strtol(acLine + 6, nullptr, 10);
    }
    if (status != nullptr) std::fclose(status);
    std::printf("%ld %llu\n", nKiB, ullPoints);
    return 0;
}

} // namespace Bench
