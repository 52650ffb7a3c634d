// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Collecting, and the conclusions.
#include "Tools/Qsb/Render_Survey.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Tool {

namespace {

constexpr double s_dTurn = 2.0 * std::numbers::pi;
constexpr std::size_t s_nSmallGap = 50; ///< azimuth bins, 5 degrees: not worth turning the picture for
constexpr double s_dFarInExtents = 20.0;

} // namespace

void CovarianceC::Add(double a, double b) noexcept
{
    m_dCount += 1.0;
    const double fromMeanA = a - m_dMeanA;
    m_dMeanA += fromMeanA / m_dCount;
    m_dMeanB += (b - m_dMeanB) / m_dCount;
    m_dSum += fromMeanA * (b - m_dMeanB);
}

double RangeOf(const ScanPointC& point) noexcept
{
    // Not hypot, which guards against overflow at ten times the cost: what overflows here is not usable
    // anyway.
    return std::sqrt(point.x * point.x + point.y * point.y + point.z * point.z);
}

SurveyC::SurveyC(std::uint64_t rows, std::uint64_t columns)
    : m_dRows(static_cast<double>(rows)), m_dColumns(static_cast<double>(columns))
{
    std::fill_n(m_adMin, 3, std::numeric_limits<double>::infinity());
    std::fill_n(m_adMax, 3, -std::numeric_limits<double>::infinity());
}

void SurveyC::Take(const std::vector<ScanPointC>& points)
{
    for (const ScanPointC& point : points) {
        const double range = RangeOf(point);
        if (!IsUsableRange(range)) {
            ++m_ullInvalid;
            continue;
        }
        ++m_ullPoints;
        const double adPosition[3] = {point.x, point.y, point.z};
        for (int i = 0; i < 3; ++i) {
            m_adMin[i] = std::min(m_adMin[i], adPosition[i]);
            m_adMax[i] = std::max(m_adMax[i], adPosition[i]);
        }
        if (range == 0.0) {
            ++m_ullAtOrigin;
            continue;
        }
        const double elevation = std::asin(std::clamp(point.z / range, -1.0, 1.0));
        m_dLowest = std::min(m_dLowest, elevation);
        m_dHighest = std::max(m_dHighest, elevation);
        const double azimuth = std::atan2(point.y, point.x) / s_dTurn + 0.5;
        const auto nBin = static_cast<std::size_t>(azimuth * static_cast<double>(s_nAzimuthBins));
        m_abAzimuths[std::min(nBin, s_nAzimuthBins - 1)] = true;
        TakeGrid(point, elevation, range);
    }
}

void SurveyC::TakeGrid(const ScanPointC& point, double elevation, double range)
{
    const double row = point.adGrid[0];
    const double column = point.adGrid[1];
    if (row >= m_dRows || column >= m_dColumns) return;
    ++m_ullWithinGrid;
    m_dHighestRow = std::max(m_dHighestRow, row);
    m_dHighestColumn = std::max(m_dHighestColumn, column);
    m_oRowElevation.Add(row, elevation);
    m_oRowNorth.Add(row, point.y);
    m_oColumnEast.Add(column, point.x);
    const double bins = std::min(m_dColumns, static_cast<double>(s_nColumnBins));
    const auto nBin = static_cast<std::size_t>(column / m_dColumns * bins);
    m_adBinX[std::min(nBin, s_nColumnBins - 1)] += point.x / range;
    m_adBinY[std::min(nBin, s_nColumnBins - 1)] += point.y / range;
}

bool SurveyC::OriginIsStation() const noexcept
{
    const auto outside = [&](int axis) { return std::max({m_adMin[axis], -m_adMax[axis], 0.0}); };
    const double extent = std::hypot(m_adMax[0] - m_adMin[0], m_adMax[1] - m_adMin[1]);
    return std::hypot(outside(0), outside(1)) <= s_dFarInExtents * extent;
}

AzimuthsC SurveyC::GetAzimuths() const noexcept
{
    // The longest run of bins without a point, around the end as well.
    std::size_t nLongest = 0, nLongestEnd = 0, nRun = 0;
    for (std::size_t i = 0; i < 2 * s_nAzimuthBins; ++i) {
        nRun = m_abAzimuths[i % s_nAzimuthBins] ? 0 : nRun + 1;
        if (nRun > nLongest) {
            nLongest = nRun;
            nLongestEnd = i + 1;
        }
    }
    nLongest = std::min(nLongest, s_nAzimuthBins - 1);
    if (nLongest <= s_nSmallGap) return {-std::numbers::pi, s_dTurn};
    // Half a bin on either side keeps rounding from carrying a point across the edge.
    const double bin = s_dTurn / static_cast<double>(s_nAzimuthBins);
    return {(static_cast<double>(nLongestEnd % s_nAzimuthBins) - 0.5) * bin - std::numbers::pi,
            static_cast<double>(s_nAzimuthBins - nLongest + 1) * bin};
}

bool SurveyC::GridFits() const noexcept
{
    return m_ullWithinGrid > 0 && 2 * m_ullWithinGrid >= m_ullPoints - m_ullAtOrigin && m_dHighestRow > 0.0 &&
           m_dHighestColumn > 0.0;
}

bool SurveyC::RowsRise() const noexcept
{
    return (OriginIsStation() ? m_oRowElevation : m_oRowNorth).Get() >= 0.0;
}

bool SurveyC::ColumnsGoRight() const noexcept
{
    if (!OriginIsStation()) return m_oColumnEast.Get() >= 0.0;
    // From band to band of columns the mean direction turns to the right when the cross product is negative.
    double turn = 0.0;
    for (std::size_t i = 0; i + 1 < s_nColumnBins; ++i) {
        const double product =
            std::hypot(m_adBinX[i], m_adBinY[i]) * std::hypot(m_adBinX[i + 1], m_adBinY[i + 1]);
        if (product > 0.0) turn += (m_adBinX[i] * m_adBinY[i + 1] - m_adBinY[i] * m_adBinX[i + 1]) / product;
    }
    return turn <= 0.0;
}

} // namespace Tool
