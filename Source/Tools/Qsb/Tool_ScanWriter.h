// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes a QSB file with one point-cloud block, batch by batch in constant memory. The bounding box follows
// from the points and enters the header at the end. Failures are ToolErrorC with s_iFailed; the file is then
// not usable, so write beside the target and rename (Tool_OutputFile).
#pragma once

#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Tools/Qsb/Tool_ScanFormat.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <string>
#include <vector>

namespace Tool {

class ScanWriterC
{
public:
    /// Creates or empties the file at `path`. Of `info` the bounding box is ignored. A format that the file
    /// format does not have is the caller's error.
    ScanWriterC(const std::string& path, const ScanFormatC& format, const SIO::QsbScanInfoC& info);

    /// Most points that one file takes in this format: its block's data size is a 32-bit number.
    std::uint64_t GetMaxPoints() const;

    /// Appends points; their values are converted as the encodings say, so loss is for the caller to report.
    void Write(const std::vector<ScanPointC>& points);

    /// Writes what is outstanding and closes the file.
    void Finish();

private:
    void Grow(const ScanPointC& point);

    std::string m_strPath;
    bool m_bFloatPositions;
    SIO::PointDefinitionC m_oDefinition;
    SIO::QsbC m_oContainer;
    SIO::QsbStrategyC m_oStrategy;
    SIO::QsbBoundingBoxC m_oBox;
};

} // namespace Tool
