// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reading through the exported interface against the limit of the machine: fread and a copy that reads each byte of
// a record and writes the 40 bytes of a point.
#include "Bench_Harness.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "ScanReader/QsbReader.h"
#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbPoint.h"
#include "Sio/Sio_QsbStrategy.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <emmintrin.h>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace SIO;
namespace F = SIO::QsbFormat;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

struct LayoutT
{
    const char* name;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> elements;
};

const LayoutT s_aLayouts[] = {
    {"A  float, u16, colour (18)", {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}, {PD_COLOR, F::s_uiTypeColor}}},
    {"B  double, u16, u16, u32 grid, colour (40)", {{PD_POSITION, F::s_uiTypeDoubleTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}, {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt16}, {PD_GRID, F::s_uiTypeUInt32Pair}, {PD_COLOR, F::s_uiTypeColor}}},
    {"C  float, u16 (14)", {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}}},
    {"float intensity and noise, colour (24)", {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeFloat}, {PD_LEVEL_OF_NOISE, F::s_uiTypeFloat}, {PD_COLOR, F::s_uiTypeColor}}},
    {"int16 intensity, u8 noise (15)", {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeInt16}, {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt8}}},
    {"two intensities (16)", {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}, {PD_INTENSITY, F::s_uiTypeUInt16}}},
};

std::string MakeFile(const LayoutT& layout, std::uint32_t nPoints, std::size_t& nRecordBytes, std::uint64_t& ullOffset)
{
    const std::string path = std::string(std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp") + "/bench.qsb";
    PointDefinitionC definition;
    for (const auto& [kind, type] : layout.elements) definition.Add(PointDefinitionC::CreateElement(kind, type));
    nRecordBytes = definition.GetSizeInBytes();
    QsbC container;
    QsbStrategyC strategy;
    strategy.SetPointDefinition(&definition);
    auto& m = strategy.WriteInfo().oTransformation;
    m.At(0, 0) = 0.8; m.At(0, 1) = -0.6; m.At(1, 0) = 0.6; m.At(1, 1) = 0.8;
    m.At(0, 3) = 10; m.At(1, 3) = 20; m.At(2, 3) = 30;
    if (!container.Open(BSS::HAL::WidePath(path), false, true)) std::abort();
    std::mt19937 random(1);
    std::vector<QsbPointC> points(100000);
    for (auto& p : points) {
        p.x = static_cast<double>(random() % 100000) / 1000.0; p.y = static_cast<double>(random() % 100000) / 1000.0; p.z = 1.5;
        p.intensity = static_cast<std::uint16_t>(random()); p.levelOfNoise = static_cast<std::uint16_t>(random() % 256);
        p.gridIndex0 = static_cast<std::uint32_t>(random() % 1000); p.gridIndex1 = 7; p.red = 1; p.green = 2; p.blue = 3;
    }
    for (std::uint32_t n = 0; n < nPoints; n += 100000) if (!container.WritePoints(points.data(), 100000, strategy)) std::abort();
    ullOffset = container.GetBlocks().Last().GetDataOffset();
    if (!container.Close()) std::abort();
    return path;
}

volatile double s_dSink;

void ReadAll(const std::string& path, QsbInstructionSetT eSet, unsigned int uiBatch)
{
    SetInstructionSet(eSet);
    QsbReader reader;
    if (reader.Open(path.c_str()) != 0) std::abort();
    QsbReadIterator batch(uiBatch);
    std::uint64_t count = 0;
    double sum = 0;
    while (reader.Read(batch, count) == 0 && count > 0) sum += batch.GetPoints()[count / 2].x;
    s_dSink = sum;
}

/// Reads each byte of a record of n bytes and writes forty, with no more loads and stores than that takes.
template<std::size_t n>
void CopyRecords(const char* pSource, std::size_t nPoints, char* pTarget)
{
    for (std::size_t i = 0; i < nPoints; ++i) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSource));
        __m128i second = first;
        __m128i third = first;
        if constexpr (n > 32) {
            second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSource + 16));
            third = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pSource + 32));
        } else if constexpr (n > 16) {
            second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSource + n - 16));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pTarget), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pTarget + 16), second);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(pTarget + 32), third);
        pSource += n;
        pTarget += 40;
    }
}

void CopyAll(const std::string& path, std::size_t nRecordBytes, std::uint64_t ullOffset, std::uint32_t nPoints,
             unsigned int uiBatch)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    std::fseek(f, static_cast<long>(ullOffset), SEEK_SET);
    std::unique_ptr<char[]> raw(new char[uiBatch * nRecordBytes + 16]);
    std::vector<QsbPointC> points(uiBatch);
    double sum = 0;
    for (std::uint32_t nDone = 0; nDone < nPoints; nDone += uiBatch) {
        const std::size_t nGot = std::fread(raw.get(), nRecordBytes, uiBatch, f);
        char* t = reinterpret_cast<char*>(points.data());
        switch (nRecordBytes) {
        case 14: CopyRecords<14>(raw.get(), nGot, t); break;
        case 15: CopyRecords<15>(raw.get(), nGot, t); break;
        case 16: CopyRecords<16>(raw.get(), nGot, t); break;
        case 18: CopyRecords<18>(raw.get(), nGot, t); break;
        case 24: CopyRecords<24>(raw.get(), nGot, t); break;
        default: CopyRecords<40>(raw.get(), nGot, t); break;
        }
        sum += points[nGot / 2].x;
    }
    std::fclose(f);
    s_dSink = sum;
}

void FreadAll(const std::string& path, std::size_t nRecordBytes, std::uint64_t ullOffset, std::uint32_t nPoints,
              unsigned int uiBatch)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    std::fseek(f, static_cast<long>(ullOffset), SEEK_SET);
    std::unique_ptr<char[]> raw(new char[uiBatch * nRecordBytes + 16]);
    double sum = 0;
    for (std::uint32_t nDone = 0; nDone < nPoints; nDone += uiBatch) {
        const std::size_t nGot = std::fread(raw.get(), nRecordBytes, uiBatch, f);
        sum += raw[nGot / 2];
    }
    std::fclose(f);
    s_dSink = sum;
}

} // namespace

int main()
{
    constexpr std::uint32_t nPoints = 4000000;
    for (const LayoutT& layout : s_aLayouts) {
        std::size_t nRecordBytes = 0;
        std::uint64_t ullOffset = 0;
        const std::string path = MakeFile(layout, nPoints, nRecordBytes, ullOffset);
        std::vector<Bench::CandidateT> c = {
            {"copy limit", [&] { CopyAll(path, nRecordBytes, ullOffset, nPoints, 10000); }},
            {"fread alone", [&] { FreadAll(path, nRecordBytes, ullOffset, nPoints, 10000); }},
            {"avx2", [&] { ReadAll(path, QsbInstructionSetT::eAvx2, 10000); }},
            {"baseline", [&] { ReadAll(path, QsbInstructionSetT::eBaseline, 10000); }},
            {"avx2 100", [&] { ReadAll(path, QsbInstructionSetT::eAvx2, 100); }},
            {"avx2 1000", [&] { ReadAll(path, QsbInstructionSetT::eAvx2, 1000); }},
            {"avx2 100000", [&] { ReadAll(path, QsbInstructionSetT::eAvx2, 100000); }},
            {"virtual", [&] { ReadAll(path, QsbInstructionSetT::eVirtual, 10000); }},
        };
        Bench::RunInterleaved(c, 7);
        std::printf("%s\n", layout.name);
        for (const auto& x : c) std::printf("  %-12s %7.1f Mpt/s  [%.1f..%.1f]  of limit %.2f  of virtual %.1f\n", x.name.c_str(), nPoints / x.Median() / 1e6, nPoints / x.Max() / 1e6, nPoints / x.Min() / 1e6, c[0].Median() / x.Median(), c.back().Median() / x.Median());
        unlink(path.c_str());
    }
}
