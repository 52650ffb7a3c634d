// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writing points through the container against copying them and writing as many bytes, and against the
// virtual calls.
#include "Bench_Cases.h"
#include "Bench_Copy.h"
#include "Bench_Scan.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbEncodePlan.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Sio/Sio_QsbStrategy.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace Bench {

using namespace SIO;

namespace {

constexpr std::uint32_t s_uiPoints = 4000000;
constexpr std::uint32_t s_uiBatch = 10000;

void Write(const std::string& strPath, const LayoutT& layout, const std::vector<QsbPointC>& points,
           QsbInstructionSetT eSet)
{
    SetInstructionSet(eSet);
    PointDefinitionC definition;
    layout.Define(definition);
    QsbC container;
    QsbStrategyC strategy;
    strategy.SetPointDefinition(&definition);
    if (!container.Open(BSS::HAL::WidePath(strPath), false, true)) std::abort();
    for (std::uint32_t uiDone = 0; uiDone < s_uiPoints; uiDone += s_uiBatch) {
        if (!container.WritePoints(points.data(), s_uiBatch, strategy)) std::abort();
    }
    if (!container.Close()) std::abort();
}

void CopyAndWrite(const std::string& strPath, std::size_t nRecordBytes, const std::vector<QsbPointC>& points)
{
    std::FILE* const stream = std::fopen(strPath.c_str(), "wb");
    if (stream == nullptr) std::abort();
    const std::unique_ptr<char[]> raw(new char[s_uiBatch * nRecordBytes + s_nSlackBytes]);
    const char* const pPoints = reinterpret_cast<const char*>(points.data());
    for (std::uint32_t uiDone = 0; uiDone < s_uiPoints; uiDone += s_uiBatch) {
        WithRecordBytes(nRecordBytes,
                        [&]<std::size_t n>() { CopyToStored<n>(pPoints, s_uiBatch, raw.get()); });
        if (std::fwrite(raw.get(), nRecordBytes, s_uiBatch, stream) != s_uiBatch) std::abort();
    }
    std::fclose(stream);
}

/// Encodes as many points as are written, a batch at a time over the same memory.
void Encode(const LayoutT& layout, const std::vector<QsbPointC>& points, QsbInstructionSetT eAsked)
{
    SetInstructionSet(eAsked);
    const QsbInstructionSetT eSet = GetInstructionSet(); // the machine may have less
    PointDefinitionC definition;
    layout.Define(definition);
    const QsbEncodePlanC plan(definition);
    const std::size_t nRecordBytes = definition.GetSizeInBytes();
    const std::unique_ptr<char[]> raw(new char[s_uiBatch * nRecordBytes]);
    for (std::uint32_t uiDone = 0; uiDone < s_uiPoints; uiDone += s_uiBatch) {
        if (eSet != QsbInstructionSetT::eVirtual) {
            plan.Encode(points.data(), s_uiBatch, raw.get(), eSet);
            continue;
        }
        ArrayBasedPointSourceC source(points.data());
        for (std::uint32_t i = 0; i < s_uiBatch; ++i, source.Advance())
            definition.Encode(source.Current(), raw.get() + i * nRecordBytes);
    }
    Use(raw[nRecordBytes]);
}

} // namespace

void RunWrite(const OptionsT& options)
{
    const std::vector<QsbPointC> points = MakePoints(s_uiBatch);
    const std::string strPath = options.strDirectory + "/write.qsb";
    for (const LayoutT& layout : AllLayouts()) {
        PointDefinitionC definition;
        layout.Define(definition);
        const std::size_t nRecordBytes = definition.GetSizeInBytes();
        const auto remove = [&] { std::remove(strPath.c_str()); };
        std::vector<CandidateT> candidates = {
            {"write limit", [&] { CopyAndWrite(strPath, nRecordBytes, points); }, remove},
            {"plan", [&] { Write(strPath, layout, points, QsbInstructionSetT::eAvx2); }, remove},
            {"virtual", [&] { Write(strPath, layout, points, QsbInstructionSetT::eVirtual); }, remove},
            {"encode alone, AVX2", [&] { Encode(layout, points, QsbInstructionSetT::eAvx2); }},
            {"encode alone, baseline", [&] { Encode(layout, points, QsbInstructionSetT::eBaseline); }},
            {"encode alone, virtual", [&] { Encode(layout, points, QsbInstructionSetT::eVirtual); }},
        };
        RunInterleaved(candidates, options.nRounds);
        std::printf("%s\n", layout.pszName);
        PrintRates(candidates, s_uiPoints / 1e6, "Mpt/s", {0, 2});
        const std::string strName = std::string("write ") + layout.pszShortName;
        ExpectAtLeast(strName + " of the write limit", SpeedOf(candidates[1], candidates[0]), 0.5);
        ExpectAtLeast(strName + " against virtual calls", SpeedOf(candidates[1], candidates[2]), 3);
        ExpectAtLeast(std::string("encode ") + layout.pszShortName + " against virtual calls",
                      SpeedOf(candidates[3], candidates[5]), 3);
    }
}

} // namespace Bench
