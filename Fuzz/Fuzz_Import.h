// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Imports a source whole, with and without choices of the user's, and checks what must be true of the result
// whatever the bytes were. Bad bytes end as damage, never as anything else.
#pragma once

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Json.h"
#include "Tools/Qsb/Tool_Report.h"
#include "Tools/Qsb/Tool_ScanImport.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace Fuzz {

[[noreturn]] inline void Wrong(const char* szWhat)
{
    std::fprintf(stderr, "%s\n", szWhat);
    std::abort();
}

inline Tool::NamedInputC InMemory(const char* szName, const std::string& bytes)
{
    return {szName, std::make_unique<Tool::MemoryInputC>(bytes.data(), bytes.size())};
}

/// Whether the encoder of this type finds the value in its range.
inline bool Holds(Tool::NumberTypeT eType, double dValue)
{
    if (Tool::IsFloating(eType)) return true;
    return dValue == std::trunc(dValue) && dValue >= Tool::LeastOf(eType) &&
           dValue <= Tool::GreatestOf(eType);
}

inline void ImportOnce(Tool::PointSourceI& source, const Tool::ImportChoicesC& choices)
{
    Tool::ScanImportC import(source, choices, [](std::size_t) {});
    std::vector<Tool::ScanPointC> points;
    std::uint64_t ullPoints = 0;
    for (import.Read(points); !points.empty(); import.Read(points)) {
        ullPoints += points.size();
        for (std::size_t i = 0; i < Tool::s_nScanValues; ++i) {
            const auto eValue = static_cast<Tool::ScanValueT>(i);
            if (!Tool::IsStored(import.GetFormat(), eValue)) continue;
            const Tool::NumberTypeT eType = Tool::StoredTypeOf(import.GetFormat(), eValue);
            for (const Tool::ScanPointC& point : points) {
                if (!Holds(eType, Tool::ValueIn(point, eValue))) Wrong("a value does not fit its encoding");
            }
        }
    }
    if (ullPoints != source.GetNumberOfPoints()) Wrong("not every point was imported");
    Tool::ConversionReportC report("import", "in", "out");
    import.AddTo(report);
    // What is printed must be printable.
    (void)report.GetText();
    (void)report.GetJson().dump();
}

/// `open` makes the source.
template<typename OpenT>
void ImportAll(OpenT open)
{
    Tool::ImportChoicesC narrow;
    narrow.oPosition = Tool::NumberTypeT::Float;
    narrow.oIntensity = Tool::NumberTypeT::Int16;
    narrow.oNoise = Tool::NumberTypeT::UInt8;
    narrow.oGrid = Tool::NumberTypeT::UInt16;
    narrow.dIntensityScale = 1000.0;
    narrow.oColorMax = 100.0;
    try {
        const std::unique_ptr<Tool::PointSourceI> poSource = open();
        ImportOnce(*poSource, {});
        ImportOnce(*poSource, narrow);
    } catch (const Tool::ToolErrorC& error) {
        if (error.GetExitCode() != Tool::s_iDamaged) Wrong(error.what());
    }
}

} // namespace Fuzz
