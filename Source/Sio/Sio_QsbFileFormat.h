// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The numbers of the QSB file format: identifiers, sizes, tags and type codes. The byte layout they belong to
// is described in Docs/file-format.md. Constants only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace SIO::QsbFormat {

// Blocks.
inline constexpr std::uint32_t s_uiFileHeaderId = 0x12879054;
inline constexpr std::uint32_t s_uiPointCloudId = 1;
inline constexpr std::uint32_t s_uiCountedPointCloudId = 3; ///< its header may say how many points count
inline constexpr std::size_t s_nBlockHeadBytes = 12;
inline constexpr std::size_t s_nEntryBytes = 16;
inline constexpr std::uint64_t s_ullMaxDataBytes = 0xFFFFFFFF; ///< a block's data size is a 32-bit number

// Versions.
inline constexpr std::uint32_t s_uiVersion1 = 0x00010000;
inline constexpr std::uint32_t s_uiVersion2 = 0x00020000;

/// Version 1 exactly, or 2 and above; what lies between is not a version.
constexpr bool IsSupportedVersion(std::uint32_t version)
{
    return version == s_uiVersion1 || version >= s_uiVersion2;
}

// Tags of header entries.
inline constexpr std::uint32_t s_uiTagVersion = 1;    ///< in the file header block
inline constexpr std::uint32_t s_uiTagPointCount = 1; ///< in a counted point-cloud block
inline constexpr std::uint32_t s_uiTagBoxMinX = 2;    ///< to 4: minimum, 5 to 7: maximum
inline constexpr std::uint32_t s_uiTagBoxMaxX = 5;
inline constexpr std::uint32_t s_uiTagMatrix = 8; ///< to 23: 8 + 4 * row + column
inline constexpr std::uint32_t s_uiTagMatrixLast = 23;
inline constexpr std::uint32_t s_uiTagGrid0 = 24; ///< largest row index
inline constexpr std::uint32_t s_uiTagGrid1 = 25; ///< largest column index
inline constexpr std::uint32_t s_uiTagInstrumentHeight = 26;
inline constexpr std::uint32_t s_uiTagPosition = 100;
inline constexpr std::uint32_t s_uiTagIntensity = 101;
inline constexpr std::uint32_t s_uiTagLevelOfNoise = 102;
inline constexpr std::uint32_t s_uiTagGridIndex = 103;
inline constexpr std::uint32_t s_uiTagColor = 104; ///< the largest tag there is

// Type codes of header values and point elements: one numbering.
inline constexpr std::uint32_t s_uiTypeByte = 1;
inline constexpr std::uint32_t s_uiTypeUInt8 = 2;
inline constexpr std::uint32_t s_uiTypeInt16 = 4;
inline constexpr std::uint32_t s_uiTypeUInt16 = 5;
inline constexpr std::uint32_t s_uiType32Bit = 6;
inline constexpr std::uint32_t s_uiTypeUInt32 = 7;
inline constexpr std::uint32_t s_uiTypeColor = 7; ///< as an element: four 8-bit channels
inline constexpr std::uint32_t s_uiTypeFloat = 8;
inline constexpr std::uint32_t s_uiType64Bit = 9;
inline constexpr std::uint32_t s_uiTypeUInt16Pair = 21;
inline constexpr std::uint32_t s_uiTypeUInt32Pair = 23;
inline constexpr std::uint32_t s_uiTypeFloatTriple = 40;
inline constexpr std::uint32_t s_uiTypeDoubleTriple = 41;

} // namespace SIO::QsbFormat
