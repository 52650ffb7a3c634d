// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where exported points go: a file in some interchange form, written batch by batch. The counterpart of
// PointSourceI.
#pragma once

#include "Tools/Qsb/Tool_RawHeader.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool {

class OutputFileC;

class PointSinkI
{
public:
    virtual ~PointSinkI() = default;

    /// Appends points: columns[i][j] is field i of point j, a value that the field's type holds. ToolErrorC
    /// with s_iFailed when that fails.
    virtual void Write(const std::vector<std::vector<double>>& columns, std::size_t nPoints) = 0;

    /// Whether points can be given as records: the header's fields one behind the other, little-endian.
    virtual bool TakesRecords() const { return false; }

    /// Appends `nPoints` records that are still to be filled in, before any other operation; says where.
    /// ToolErrorC with s_iFailed when what was appended before cannot be written.
    virtual char* AppendRecords(std::size_t nPoints);

    /// Completes and closes the files.
    virtual void Finish() = 0;
};

// The sinks. The header says how many points will come. Files must outlive the sink; it does not commit them.

/// A binary PLY file.
std::unique_ptr<PointSinkI> MakePlySink(const OutputFileC& file, const RawHeaderC& header);

/// A table of text with a line of names, and a JSON file with what stands beside the points.
std::unique_ptr<PointSinkI> MakeCsvSink(const OutputFileC& table, const OutputFileC& sidecar,
                                        const RawHeaderC& header, const std::string& name);

/// The raw form.
std::unique_ptr<PointSinkI> MakeRawSink(const OutputFileC& data, const OutputFileC& jsonHeader,
                                        const RawHeaderC& header, const std::string& name);

/// Appends the bytes of the points, little-endian and without gaps.
void AppendRecords(std::string& bytes, const RawHeaderC& header,
                   const std::vector<std::vector<double>>& columns, std::size_t nPoints);

} // namespace Tool
