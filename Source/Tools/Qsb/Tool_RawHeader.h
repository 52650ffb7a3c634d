// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The JSON header of the raw form (Docs/raw-form.md): what it says, read from text that is not trusted, and
// written.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"

#include <string>
#include <utility>
#include <vector>

namespace Tool {

struct RawHeaderC
{
    std::uint64_t ullPoints = 0;
    std::vector<SourceFieldC> vecFields;
    ScanFrameC oScan;
    std::vector<SourceExtraC> vecExtras; ///< keys that have no place in a scan file

    std::size_t GetRecordBytes() const noexcept;
};

/// Reads a header. ToolErrorC with s_iDamaged, and the line where there is one, when it makes no sense.
RawHeaderC ReadRawHeader(const NamedInputC& input);

/// The header as text; `name` is that of the scan.
std::string RawHeaderText(const RawHeaderC& header, const std::string& name);

/// The same for points that are no records of bytes.
std::string SidecarText(const RawHeaderC& header, const std::string& name);

/// The two files of the raw form, header and data, whichever of them `path` names.
std::pair<std::string, std::string> RawPaths(const std::string& path);

} // namespace Tool
