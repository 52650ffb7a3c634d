// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the points of a scan really are: boxes, ranges, and how many of them are not as they should be. Takes
// points one by one and keeps a few numbers. NaN and infinities stay out of boxes and ranges and are counted.
#pragma once

#include "Tools/Qsb/Tool_ScanHeader.h"

#include <cstdint>
#include <limits>

namespace Tool {

struct ScanPointC;

/// Smallest and largest value; empty while the minimum is above the maximum.
struct RangeC
{
    void Take(double d) noexcept
    {
        if (d < dMin) dMin = d;
        if (d > dMax) dMax = d;
    }
    bool IsEmpty() const noexcept { return dMin > dMax; }

    double dMin = std::numeric_limits<double>::infinity();
    double dMax = -std::numeric_limits<double>::infinity();
};

/// How many points have a property, and the first of them.
struct TallyC
{
    void Take(std::uint64_t ullPoint) noexcept
    {
        if (ullCount++ == 0) ullFirst = ullPoint;
    }

    std::uint64_t ullCount = 0;
    std::uint64_t ullFirst = 0;
};

class ScanStatisticsC
{
public:
    /// `header` must outlive this.
    explicit ScanStatisticsC(const ScanHeaderC& header);

    /// Takes the next point with its stored bytes.
    void Take(const ScanPointC& point, const char* pRecord);

    std::uint64_t ullPoints = 0;
    RangeC aStored[3]; ///< x, y, z as stored
    RangeC aPosed[3];  ///< x, y, z with the pose applied
    RangeC oIntensity, oNoise;
    RangeC aGrid[2];
    TallyC oPositionNotFinite;
    TallyC oPosedNotFinite; ///< the stored position is finite
    TallyC oIntensityNotFinite, oNoiseNotFinite;
    TallyC oCut;         ///< intensity or noise is no integer of 16 bits, as which the reader delivers it
    TallyC oOutsideGrid; ///< of those in a scan with a grid size
    TallyC oOutsideBox;  ///< of those in a scan with a box
    std::uint64_t ullZeroTail = 0; ///< points at the end whose bytes are all zero

private:
    void TakePosition(const ScanPointC& point);
    void TakeValue(double dValue, RangeC& range, TallyC& notFinite);
    void TakeGrid(const ScanPointC& point);
    bool IsOutsideBox(const double (&adPosition)[3]) const;

    const ScanHeaderC& m_rHeader;
    bool m_bIntensity, m_bNoise, m_bGrid, m_bBox;
    SIO::QsbBoundingBoxC
        m_oBox; ///< the stored one, widened by what rounding to the stored positions may take
};

/// Whether the header has a box that says something: all its entries, finite, and no minimum above a maximum.
bool HasBox(const ScanHeaderC& header);

} // namespace Tool
