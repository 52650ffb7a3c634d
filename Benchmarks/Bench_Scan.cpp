// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Making scans and reading them.
#include "Bench_Scan.h"

#include "Bench_Copy.h"
#include "Bench_Harness.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "ScanReader/QsbReader.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbStrategy.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

namespace Bench {

using namespace SIO;
namespace F = SIO::QsbFormat;

namespace {

void Require(bool bDone, const char* pszWhat)
{
    if (bDone) return;
    std::fprintf(stderr, "scanreader_bench: %s\n", pszWhat);
    std::exit(1);
}

std::unique_ptr<std::FILE, int (*)(std::FILE*)> OpenAt(const std::string& strPath, std::uint64_t ullOffset)
{
    std::FILE* const stream = std::fopen(strPath.c_str(), "rb");
    Require(stream != nullptr && fseeko(stream, static_cast<off_t>(ullOffset), SEEK_SET) == 0,
            "cannot read a scan");
    return {stream, &std::fclose};
}

} // namespace

void LayoutT::Define(PointDefinitionC& definition) const
{
    for (const auto& [uiKind, uiTypeCode] : elements)
        definition.Add(PointDefinitionC::CreateElement(uiKind, uiTypeCode));
}

const std::vector<LayoutT>& AllLayouts()
{
    static const std::vector<LayoutT> s_vecLayouts = {
        {"A",
         "A: float position, u16 intensity, colour (18 bytes)",
         {{PD_POSITION, F::s_uiTypeFloatTriple},
          {PD_INTENSITY, F::s_uiTypeUInt16},
          {PD_COLOR, F::s_uiTypeColor}}},
        {"B",
         "B: double position, u16 intensity and noise, u32 grid, colour (40 bytes)",
         {{PD_POSITION, F::s_uiTypeDoubleTriple},
          {PD_INTENSITY, F::s_uiTypeUInt16},
          {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt16},
          {PD_GRID, F::s_uiTypeUInt32Pair},
          {PD_COLOR, F::s_uiTypeColor}}},
        {"C",
         "C: float position, u16 intensity (14 bytes)",
         {{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}}},
        {"float intensity and noise",
         "float position, float intensity and noise, colour (24 bytes)",
         {{PD_POSITION, F::s_uiTypeFloatTriple},
          {PD_INTENSITY, F::s_uiTypeFloat},
          {PD_LEVEL_OF_NOISE, F::s_uiTypeFloat},
          {PD_COLOR, F::s_uiTypeColor}}},
        {"i16 intensity",
         "float position, i16 intensity, u8 noise (15 bytes)",
         {{PD_POSITION, F::s_uiTypeFloatTriple},
          {PD_INTENSITY, F::s_uiTypeInt16},
          {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt8}}},
        {"intensity twice",
         "float position, u16 intensity twice (16 bytes)",
         {{PD_POSITION, F::s_uiTypeFloatTriple},
          {PD_INTENSITY, F::s_uiTypeUInt16},
          {PD_INTENSITY, F::s_uiTypeUInt16}}},
    };
    return s_vecLayouts;
}

std::vector<QsbPointC> MakePoints(std::size_t nPoints)
{
    std::mt19937 random(1);
    std::vector<QsbPointC> points(nPoints);
    for (QsbPointC& point : points) {
        point.x = static_cast<double>(random() % 100000) / 1000.0;
        point.y = static_cast<double>(random() % 100000) / 1000.0;
        point.z = static_cast<double>(random() % 3000) / 1000.0;
        point.red = static_cast<std::uint8_t>(random());
        point.green = static_cast<std::uint8_t>(random());
        point.blue = static_cast<std::uint8_t>(random());
        point.intensity = static_cast<std::uint16_t>(random());
        point.levelOfNoise = static_cast<std::uint16_t>(random() % 256);
        point.gridIndex0 = static_cast<std::uint32_t>(random() % 1000);
        point.gridIndex1 = static_cast<std::uint32_t>(random() % 2000);
    }
    return points;
}

ScanFileC::ScanFileC(const std::string& strPath, const LayoutT& layout, std::uint32_t uiPoints,
                     const BlocksBeforeT& before)
    : m_strPath(strPath), m_uiPoints(uiPoints)
{
    PointDefinitionC definition;
    layout.Define(definition);
    m_nRecordBytes = definition.GetSizeInBytes();
    QsbC container;
    QsbStrategyC strategy;
    strategy.SetPointDefinition(&definition);
    GMAT::Matrix4C& matrix = strategy.WriteInfo().oTransformation;
    matrix.At(0, 0) = matrix.At(1, 1) = 0.8;
    matrix.At(1, 0) = 0.6;
    matrix.At(0, 1) = -0.6;
    matrix.At(0, 3) = 10.0;
    matrix.At(1, 3) = 20.0;
    matrix.At(2, 3) = 30.0;
    Require(container.Open(BSS::HAL::WidePath(strPath), false, true), "cannot write a scan");
    for (std::uint32_t i = 0; i < before.uiBlocks; ++i) {
        const std::int64_t llBlock = container.AppendBlock(1000 + i);
        Require(llBlock >= 0, "cannot write a block");
        if (before.bEmptyPairs && i % 3 != 2) continue;
        Require(container.WriteBytesIntoBlock(llBlock, 0, 1, "d"), "cannot write a block");
    }
    const std::vector<QsbPointC> points = MakePoints(100000);
    for (std::uint32_t uiDone = 0; uiDone < uiPoints;) {
        const std::uint32_t uiPart = std::min<std::uint32_t>(100000, uiPoints - uiDone);
        Require(container.WritePoints(points.data(), uiPart, strategy), "cannot write points");
        uiDone += uiPart;
    }
    m_ullDataOffset = container.GetBlocks().Last().GetDataOffset();
    Require(container.Close(), "cannot write a scan");
}

ScanFileC::~ScanFileC()
{
    std::remove(m_strPath.c_str());
}

void ReadAll(const ScanFileC& scan, QsbInstructionSetT eSet, unsigned int uiBatch)
{
    SetInstructionSet(eSet);
    Kry::ScanReader::QsbReader reader;
    Require(reader.Open(scan.Path().c_str()) == 0, "cannot open a scan");
    Kry::ScanReader::QsbReadIterator batch(uiBatch);
    std::uint64_t ullCount = 0;
    std::uint64_t ullTotal = 0;
    double dSum = 0;
    while (reader.Read(batch, ullCount) == 0 && ullCount > 0) {
        dSum += batch.GetPoints()[ullCount / 2].x;
        ullTotal += ullCount;
    }
    Require(ullTotal == scan.Points(), "did not read all points");
    Use(dSum);
}

void CopyAll(const ScanFileC& scan, unsigned int uiBatch)
{
    const std::size_t nRecordBytes = scan.RecordBytes();
    const auto stream = OpenAt(scan.Path(), scan.DataOffset());
    const std::unique_ptr<char[]> raw(new char[uiBatch * nRecordBytes + s_nSlackBytes]);
    std::vector<QsbPointC> points(uiBatch);
    char* const pPoints = reinterpret_cast<char*>(points.data());
    double dSum = 0;
    for (std::uint32_t uiDone = 0; uiDone < scan.Points();) {
        const std::size_t nPart = std::min(uiBatch, scan.Points() - uiDone);
        Require(std::fread(raw.get(), nRecordBytes, nPart, stream.get()) == nPart, "did not read all bytes");
        WithRecordBytes(nRecordBytes, [&]<std::size_t n>() { CopyToRecords<n>(raw.get(), nPart, pPoints); });
        dSum += points[nPart / 2].x;
        uiDone += static_cast<std::uint32_t>(nPart);
    }
    Use(dSum);
}

void FreadAll(const ScanFileC& scan, unsigned int uiBatch)
{
    const auto stream = OpenAt(scan.Path(), scan.DataOffset());
    const std::size_t nBytes = uiBatch * scan.RecordBytes();
    const std::unique_ptr<char[]> raw(new char[nBytes]);
    double dSum = 0;
    while (const std::size_t nRead = std::fread(raw.get(), 1, nBytes, stream.get()))
        dSum += raw[nRead / 2];
    Use(dSum);
}

} // namespace Bench
