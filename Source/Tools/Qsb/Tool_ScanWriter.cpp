// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Container and strategy on the writing side.
#include "Tools/Qsb/Tool_ScanWriter.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Tools/Qsb/Tool_Error.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

ScanWriterC::ScanWriterC(const std::string& path, const ScanFormatC& format, const SIO::QsbScanInfoC& info)
    : m_strPath(path), m_bFloatPositions(format.uiPosition == SIO::QsbFormat::s_uiTypeFloatTriple)
{
    const auto add = [&](std::uint32_t uiKind, std::uint32_t uiType) {
        if (uiType != 0) m_oDefinition.Add(SIO::PointDefinitionC::CreateElement(uiKind, uiType));
    };
    add(SIO::PD_POSITION, format.uiPosition);
    add(SIO::PD_INTENSITY, format.uiIntensity);
    add(SIO::PD_LEVEL_OF_NOISE, format.uiNoise);
    add(SIO::PD_GRID, format.uiGrid);
    add(SIO::PD_COLOR, format.uiColor);

    m_oStrategy.SetWriteBlockId(format.uiBlockId);
    m_oStrategy.WriteInfo() = info;
    m_oStrategy.WriteInfo().oBoundingBox = {};
    m_oStrategy.SetPointDefinition(&m_oDefinition);
    const bool bOpened = m_oContainer.Open(BSS::HAL::WidePath(path), false, true);
    // Writing nothing creates the block, so that a scan without points is a scan too.
    if (!bOpened || !m_oContainer.WritePoints(nullptr, 0, m_oStrategy)) {
        throw ToolErrorC(s_iFailed, fmt::format("{}: cannot be written", path));
    }
}

std::uint64_t ScanWriterC::GetMaxPoints() const
{
    return SIO::QsbFormat::s_ullMaxDataBytes / m_oDefinition.GetSizeInBytes();
}

void ScanWriterC::Write(const std::vector<ScanPointC>& points)
{
    for (const ScanPointC& point : points)
        Grow(point);
    if (m_oStrategy.GetNumberOfPoints() + points.size() > GetMaxPoints()) {
        throw ToolErrorC(s_iFailed,
                         fmt::format("{}: more than {} points of {} bytes do not fit a block of 4 GiB",
                                     m_strPath, GetMaxPoints(), m_oDefinition.GetSizeInBytes()));
    }
    ScanPointSourceC source(points.data());
    if (!m_oContainer.WritePoints(source, static_cast<std::uint32_t>(points.size()), m_oStrategy)) {
        throw ToolErrorC(s_iFailed, fmt::format("{}: writing failed", m_strPath));
    }
}

void ScanWriterC::Grow(const ScanPointC& point)
{
    const double adPosition[3] = {point.x, point.y, point.z};
    for (int i = 0; i < 3; ++i) {
        // The box is that of the positions as stored. NaN compares false and stays out of it.
        const double d =
            m_bFloatPositions ? static_cast<double>(static_cast<float>(adPosition[i])) : adPosition[i];
        if (d < m_oBox.adMin[i]) m_oBox.adMin[i] = d;
        if (d > m_oBox.adMax[i]) m_oBox.adMax[i] = d;
    }
}

void ScanWriterC::Finish()
{
    const bool bBox = m_oContainer.SetBoundingBox(m_oStrategy, m_oBox);
    if (!m_oContainer.Close() || !bBox)
        throw ToolErrorC(s_iFailed, fmt::format("{}: writing failed", m_strPath));
}

} // namespace Tool
