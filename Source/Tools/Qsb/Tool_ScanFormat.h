// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the points of a scan file are made of: the encoding of each element, and the block they stand in.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"

#include <cstdint>

namespace Tool {

/// Type codes of the elements; 0 where the scan has no such element. Several elements of one kind, which a
/// file may have, show as the last one, whose values count.
struct ScanFormatC
{
    std::uint32_t uiPosition = SIO::QsbFormat::s_uiTypeFloatTriple;
    std::uint32_t uiIntensity = SIO::QsbFormat::s_uiTypeUInt16;
    std::uint32_t uiNoise = 0;
    std::uint32_t uiGrid = 0;
    std::uint32_t uiColor = 0;
    std::uint32_t uiBlockId = SIO::QsbFormat::s_uiPointCloudId;
};

} // namespace Tool
