// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Checks a whole file against every rule of the format, and gathers on the way what it says of its scan.
// Reports what is wrong and goes on as far as there is sense in it. Trusts no size; memory and time are
// bounded by what the file really holds. There is an error among the findings exactly when the exported
// reader refuses the file or does not deliver every point in batches of its usual size.
#pragma once

#include "Tools/Qsb/Tool_ChainCheck.h"
#include "Tools/Qsb/Tool_Finding.h"
#include "Tools/Qsb/Tool_ScanHeader.h"
#include "Tools/Qsb/Tool_ScanStatistics.h"

#include <memory>
#include <optional>

namespace Tool {

class ScanInputI;

struct ScanCheckC
{
    std::uint64_t ullFileSize = 0;
    ChainC oChain;
    std::optional<std::uint32_t> oVersion;
    std::optional<std::uint64_t> oReadBlock;      ///< index of the point cloud that the reader reads
    std::unique_ptr<ScanHeaderC> pHeader;         ///< what that block says; null when there is none
    std::unique_ptr<ScanStatisticsC> pStatistics; ///< of its points; null unless they were looked at
    FindingListC oFindings;

    /// Whether it is known where the points of the scan begin and how long each is.
    bool CanReadPoints() const noexcept;

    /// Points that can be decoded, whatever the reader says to the file.
    std::uint64_t GetReadable() const noexcept { return CanReadPoints() ? pHeader->GetReadable() : 0; }
};

/// `bDeep` decodes every point as well. ToolErrorC when the input cannot be read.
ScanCheckC CheckScan(ScanInputI& input, bool bDeep, const PassedT& passed);

} // namespace Tool
