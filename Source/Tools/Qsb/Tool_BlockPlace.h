// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A block in its file and how much a finding about it weighs. What is wrong with a point cloud that the
// reader does not read makes no file unreadable.
#pragma once

#include "Sio/Sio_QsbBlock.h"
#include "Tools/Qsb/Tool_Finding.h"

#include <cstdint>

namespace Tool {

struct BlockPlaceC
{
    const SIO::QsbBlockC& rBlock;
    std::uint64_t ullIndex;
    bool bRead;        ///< the reader reads this block
    bool bHeaderWhole; ///< all its entries are there

    SeverityT MostSevere() const noexcept { return bRead ? SeverityT::Error : SeverityT::Warning; }

    std::uint64_t OffsetOf(const SIO::QsbHeaderEntryC& entry) const noexcept
    {
        const auto nEntry = static_cast<std::uint64_t>(&entry - rBlock.begin());
        return rBlock.GetOffset() + SIO::QsbFormat::s_nBlockHeadBytes +
               nEntry * SIO::QsbFormat::s_nEntryBytes;
    }
};

} // namespace Tool
