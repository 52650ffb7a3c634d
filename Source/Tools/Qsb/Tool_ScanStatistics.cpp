// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Point by point.
#include "Tools/Qsb/Tool_ScanStatistics.h"

#include "Sio/Sio_Truncate.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace Format = SIO::QsbFormat;

namespace {

bool AreFinite(const double (&adPosition)[3])
{
    return std::isfinite(adPosition[0]) && std::isfinite(adPosition[1]) && std::isfinite(adPosition[2]);
}

bool FitsReader(double d)
{
    return static_cast<double>(SIO::TruncateToLowBits<std::uint16_t>(d)) == d;
}

/// The next float beyond `d` toward `dToward`; `d` itself where floats do not reach.
double NextFloat(double d, float fToward)
{
    if (std::fabs(d) > std::numeric_limits<float>::max()) return d;
    return std::nextafter(static_cast<float>(d), fToward);
}

/// A box may be that of the positions before they were rounded to floats.
SIO::QsbBoundingBoxC Widened(SIO::QsbBoundingBoxC box)
{
    for (double& d : box.adMin)
        d = NextFloat(d, -std::numeric_limits<float>::infinity());
    for (double& d : box.adMax)
        d = NextFloat(d, std::numeric_limits<float>::infinity());
    return box;
}

} // namespace

bool HasBox(const ScanHeaderC& header)
{
    const SIO::QsbBoundingBoxC& box = header.oInfo.oBoundingBox;
    for (std::uint32_t i = 0; i < 3; ++i) {
        if (!header.HasTag(Format::s_uiTagBoxMinX + i) || !header.HasTag(Format::s_uiTagBoxMaxX + i))
            return false;
        if (!std::isfinite(box.adMin[i]) || !std::isfinite(box.adMax[i]) || box.adMin[i] > box.adMax[i])
            return false;
    }
    return true;
}

ScanStatisticsC::ScanStatisticsC(const ScanHeaderC& header)
    : m_rHeader(header), m_bIntensity(header.FindElement(SIO::PD_INTENSITY) != nullptr),
      m_bNoise(header.FindElement(SIO::PD_LEVEL_OF_NOISE) != nullptr),
      m_bGrid(header.FindElement(SIO::PD_GRID) != nullptr), m_bBox(HasBox(header)),
      m_oBox(header.oInfo.oBoundingBox)
{
    const ScanElementC* position = header.FindElement(SIO::PD_POSITION);
    if (m_bBox && position != nullptr && position->uiTypeCode == Format::s_uiTypeFloatTriple)
        m_oBox = Widened(m_oBox);
}

void ScanStatisticsC::Take(const ScanPointC& point, const char* pRecord)
{
    TakePosition(point);
    if (m_bIntensity) TakeValue(point.dIntensity, oIntensity, oIntensityNotFinite);
    if (m_bNoise) TakeValue(point.dNoise, oNoise, oNoiseNotFinite);
    const bool bCut =
        (m_bIntensity && !FitsReader(point.dIntensity)) || (m_bNoise && !FitsReader(point.dNoise));
    if (bCut) oCut.Take(ullPoints);
    if (m_bGrid) TakeGrid(point);
    const bool bZero =
        std::all_of(pRecord, pRecord + m_rHeader.ullRecordBytes, [](char c) { return c == 0; });
    ullZeroTail = bZero ? ullZeroTail + 1 : 0;
    ++ullPoints;
}

void ScanStatisticsC::TakePosition(const ScanPointC& point)
{
    double adPosition[3] = {point.x, point.y, point.z};
    if (!AreFinite(adPosition)) {
        oPositionNotFinite.Take(ullPoints);
        return;
    }
    for (int i = 0; i < 3; ++i)
        aStored[i].Take(adPosition[i]);
    if (m_bBox && IsOutsideBox(adPosition)) oOutsideBox.Take(ullPoints);
    GMAT::TransformPosition(m_rHeader.oInfo.oTransformation, adPosition[0], adPosition[1], adPosition[2]);
    if (!AreFinite(adPosition)) {
        oPosedNotFinite.Take(ullPoints);
        return;
    }
    for (int i = 0; i < 3; ++i)
        aPosed[i].Take(adPosition[i]);
}

void ScanStatisticsC::TakeValue(double dValue, RangeC& range, TallyC& notFinite)
{
    if (std::isfinite(dValue)) {
        range.Take(dValue);
    } else {
        notFinite.Take(ullPoints);
    }
}

void ScanStatisticsC::TakeGrid(const ScanPointC& point)
{
    const auto& auiLargest = m_rHeader.oInfo.auiGridSize;
    for (int i = 0; i < 2; ++i)
        aGrid[i].Take(point.adGrid[i]);
    if (!m_rHeader.HasGridSize()) return;
    if (point.adGrid[0] > auiLargest[0] || point.adGrid[1] > auiLargest[1]) oOutsideGrid.Take(ullPoints);
}

bool ScanStatisticsC::IsOutsideBox(const double (&adPosition)[3]) const
{
    for (int i = 0; i < 3; ++i) {
        if (adPosition[i] < m_oBox.adMin[i] || adPosition[i] > m_oBox.adMax[i]) return true;
    }
    return false;
}

} // namespace Tool
