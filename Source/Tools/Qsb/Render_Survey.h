// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a picture must know of a scan before it can be drawn: where the points lie, in which directions, and
// whether and how round their grid indices make sense. Filled batch by batch, of constant size. One thread at
// a time.
#pragma once

#include "Tools/Qsb/Tool_ScanPoint.h"

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace Tool {

/// How two quantities go together, told point by point.
class CovarianceC
{
public:
    void Add(double a, double b) noexcept;

    /// Positive when b rises with a.
    double Get() const noexcept { return m_dSum; }

private:
    double m_dCount = 0.0, m_dMeanA = 0.0, m_dMeanB = 0.0, m_dSum = 0.0;
};

/// The azimuths that a panorama shows, counter-clockwise seen from above, in radians.
struct AzimuthsC
{
    double dFrom = 0.0, dSpan = 0.0;
};

class SurveyC
{
public:
    /// `rows` and `columns` are those of the header, 0 when there is no grid.
    SurveyC(std::uint64_t rows, std::uint64_t columns);

    void Take(const std::vector<ScanPointC>& points);

    std::uint64_t GetPoints() const noexcept { return m_ullPoints; } ///< with a usable position
    std::uint64_t GetInvalid() const noexcept
    {
        return m_ullInvalid;
    } ///< with NaN, an infinity or an absurd number in it
    std::uint64_t GetAtOrigin() const noexcept { return m_ullAtOrigin; } ///< usable, but in no direction

    /// Corners of the box around the usable positions.
    const double* GetMin() const noexcept { return m_adMin; }
    const double* GetMax() const noexcept { return m_adMax; }

    /// Whether the origin lies where a scanner may have stood: in or near the points, seen with their extent.
    /// It does not in projected coordinates, where airborne scans are.
    bool OriginIsStation() const noexcept;

    AzimuthsC GetAzimuths() const noexcept;
    double GetLowestElevation() const noexcept { return m_dLowest; }
    double GetHighestElevation() const noexcept { return m_dHighest; }

    /// Points whose grid indices are within the header's grid.
    std::uint64_t GetWithinGrid() const noexcept { return m_ullWithinGrid; }

    /// Whether there is a grid and the indices of most points are within it and on more than one line.
    bool GridFits() const noexcept;

    /// Whether higher rows look higher; without a station, whether they lie farther north.
    bool RowsRise() const noexcept;

    /// Whether higher columns look farther right; without a station, whether they lie farther east.
    bool ColumnsGoRight() const noexcept;

private:
    static constexpr std::size_t s_nAzimuthBins = 3600;
    static constexpr std::size_t s_nColumnBins = 64;

    void TakeGrid(const ScanPointC& point, double elevation, double range);

    double m_dRows, m_dColumns;
    std::uint64_t m_ullPoints = 0, m_ullInvalid = 0, m_ullAtOrigin = 0, m_ullWithinGrid = 0;
    double m_adMin[3], m_adMax[3];
    double m_dLowest = std::numeric_limits<double>::infinity();
    double m_dHighest = -std::numeric_limits<double>::infinity();
    std::array<bool, s_nAzimuthBins> m_abAzimuths{};
    double m_dHighestRow = 0.0, m_dHighestColumn = 0.0;
    CovarianceC m_oRowElevation, m_oRowNorth, m_oColumnEast;
    double m_adBinX[s_nColumnBins] = {},
           m_adBinY[s_nColumnBins] = {}; ///< sums of directions of bands of columns
};

/// Distance from the origin.
double RangeOf(const ScanPointC& point) noexcept;

/// Whether a range can be shown: neither NaN nor beyond what any instrument measures in any unit.
inline bool IsUsableRange(double range) noexcept
{
    return range <= 1e30;
}

} // namespace Tool
