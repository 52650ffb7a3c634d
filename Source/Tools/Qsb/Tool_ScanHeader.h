// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a point-cloud block says of its scan, as far as it can be understood: unlike the reader, which refuses
// a block that breaks a rule, this takes what makes sense and leaves the verdict to others. Where the reader
// accepts the block both say the same. Without locks; touches no file.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbStrategy.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace SIO {
class QsbBlockC;
} // namespace SIO

namespace Tool {

/// An element of the stored points.
struct ScanElementC
{
    std::uint32_t uiKind = 0; ///< PointDataKindT
    std::uint32_t uiTypeCode = 0;
    std::size_t nBytes = 0;
};

/// All elements of one kind. They stand together in a stored point, and the values of the last one count.
struct ScanElementsC
{
    std::uint64_t ullCount = 0;
    std::uint64_t ullBytes = 0; ///< of all of them
    ScanElementC oLast;
};

struct ScanHeaderC
{
    /// Looks at the header of `block` in a file of `ullFileSize` bytes.
    ScanHeaderC(const SIO::QsbBlockC& block, std::uint64_t ullFileSize);

    /// Whether the stored points have a known size: the positions have a known encoding.
    bool HasRecord() const noexcept { return ullRecordBytes != 0; }

    /// Points that the data area has room for, and those of them that the file holds.
    std::uint64_t GetRoom() const noexcept { return HasRecord() ? ullDataBytes / ullRecordBytes : 0; }
    std::uint64_t GetHeld() const noexcept { return HasRecord() ? ullDataPresent / ullRecordBytes : 0; }

    /// Points of the scan: those stated, or else those that the data area has room for.
    std::uint64_t GetPoints() const noexcept { return oStatedPoints.value_or(GetRoom()); }

    /// Points of the scan that the file holds.
    std::uint64_t GetReadable() const noexcept;

    /// Whether grid sizes are stored that make a grid.
    bool HasGridSize() const noexcept { return oInfo.auiGridSize[0] != 0 && oInfo.auiGridSize[1] != 0; }

    /// Whether the header has an entry with `uiTag`.
    bool HasTag(std::uint32_t uiTag) const { return bsTags[uiTag]; }

    /// The element of a kind whose values count, null when there is none.
    const ScanElementC* FindElement(std::uint32_t uiKind) const noexcept;

    /// The elements whose values count, in the order of their bytes, and where in a stored point each begins.
    std::vector<std::pair<ScanElementC, std::uint64_t>> GetCountingElements() const;

    /// Elements that are kept for showing.
    static constexpr std::size_t s_nShown = 1000;

    std::vector<ScanElementC>
        vecShown;                  ///< the first ones, in the order of their bytes; without unknown encodings
    std::uint64_t ullElements = 0; ///< how many there are; a hostile header has millions
    std::array<ScanElementsC, 5> aByKind;
    std::uint64_t ullRecordBytes = 0; ///< of a stored point; 0: unknown
    std::uint64_t ullDataOffset = 0;
    std::uint64_t ullDataBytes = 0;   ///< as stated
    std::uint64_t ullDataPresent = 0; ///< as many of them as the file holds
    std::optional<std::uint64_t> oStatedPoints;
    SIO::QsbScanInfoC oInfo;
    std::bitset<SIO::QsbFormat::s_uiTagColor + 1> bsTags;

private:
    void AddElement(std::uint32_t uiKind, std::uint32_t uiTypeCode);
};

} // namespace Tool
