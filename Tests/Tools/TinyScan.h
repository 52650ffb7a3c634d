// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Scans of a few points, written and read for tests.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"
#include "Tools/Qsb/Tool_ScanReader.h"
#include "Tools/Qsb/Tool_ScanWriter.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Support {

/// Positions in double, intensity and noise in float, grid and colour: whatever a test may want to put in.
inline constexpr Tool::ScanFormatC s_oRichFormat{
    SIO::QsbFormat::s_uiTypeDoubleTriple, SIO::QsbFormat::s_uiTypeFloat, SIO::QsbFormat::s_uiTypeFloat,
    SIO::QsbFormat::s_uiTypeUInt32Pair,   SIO::QsbFormat::s_uiTypeColor, SIO::QsbFormat::s_uiPointCloudId};

/// `largestRow` and `largestColumn` go into the header as they are.
inline void WriteScan(const std::string& path, const std::vector<Tool::ScanPointC>& points,
                      std::uint32_t largestRow = 0, std::uint32_t largestColumn = 0,
                      const Tool::ScanFormatC& format = s_oRichFormat)
{
    SIO::QsbScanInfoC info;
    info.auiGridSize[0] = largestRow;
    info.auiGridSize[1] = largestColumn;
    Tool::ScanWriterC writer(path, format, info);
    writer.Write(points);
    writer.Finish();
}

inline std::vector<Tool::ScanPointC> ReadScan(const std::string& path)
{
    Tool::ScanReaderC reader(path);
    std::vector<Tool::ScanPointC> all, batch;
    for (reader.Read(batch); !batch.empty(); reader.Read(batch))
        all.insert(all.end(), batch.begin(), batch.end());
    return all;
}

} // namespace Support
