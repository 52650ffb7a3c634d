// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reads the points of a QSB file as they are stored: untransformed, in full precision, batch by batch in
// constant memory. Failures are ToolErrorC.
#pragma once

#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Tools/Qsb/Tool_ScanFormat.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <string>
#include <vector>

namespace Tool {

class ScanReaderC
{
public:
    static constexpr std::uint32_t s_uiBatch = 10000;

    /// Opens the scan: s_iFailed when there is no readable file of that name, s_iDamaged when it is no QSB
    /// file or has no usable point-cloud block. `path` is narrow text as the command line gives it.
    explicit ScanReaderC(const std::string& path);

    std::uint64_t GetNumberOfPoints() const noexcept { return m_oStrategy.GetNumberOfPoints(); }

    /// Kinds of elements, PointDataKindT bits.
    std::uint32_t GetContentFlags() const;

    const ScanFormatC& GetFormat() const noexcept { return m_oFormat; }
    const SIO::QsbScanInfoC& GetInfo() const noexcept { return m_oStrategy.GetInfo(); }

    /// Points that the file holds whole; fewer than there should be when it is torn.
    std::uint64_t GetNumberOfReadablePoints() const;

    /// Elements that stand beside another one of their kind, whose values count instead.
    std::size_t GetNumberOfHiddenElements() const;

    /// Point-cloud blocks of the file, of which one is read.
    std::uint64_t GetNumberOfPointClouds() const;

    /// Whether the header has grid dimensions that make a grid.
    bool HasGridSize() const noexcept;

    /// Reads up to s_uiBatch points into `points`, which then has as many as were read: none at the end.
    /// s_iDamaged when the file does not hold them; the message says how many points are readable.
    void Read(std::vector<ScanPointC>& points);

    /// A batch of points as the file has them.
    struct StoredT
    {
        const char* pFirst = nullptr;
        std::size_t nPoints = 0;
        std::size_t nStride = 0; ///< bytes from one point to the next
    };

    /// As Read, but leaves the points as they are. They stay until the next operation.
    StoredT ReadStored();

    /// Where in a stored point the element of this kind lies, whose values count.
    std::size_t GetOffsetOf(SIO::PointDataKindT eKind) const;

    /// Goes back to the first point.
    void Rewind();

private:
    std::string m_strPath;
    SIO::QsbC m_oContainer;
    SIO::QsbStrategyC m_oStrategy;
    ScanFormatC m_oFormat;
    std::uint64_t m_ullRead = 0;
    std::vector<char> m_vecRaw;
};

} // namespace Tool
