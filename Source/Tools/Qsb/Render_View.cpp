// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The three views.
#include "Tools/Qsb/Render_View.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>

namespace Tool {

namespace {

constexpr double s_dDegree = std::numbers::pi / 180.0;
constexpr double s_dLeastExtent = 1e-6; ///< of a scan whose points share one place
constexpr double s_dPointsPerPixel = 1.5;
constexpr double s_dNarrowest = 400.0, s_dWidest = 4000.0; ///< of a picture whose width is not asked for

/// The pixel at a share, 0 to 1, of a side.
std::uint32_t PixelAt(double share, std::uint32_t side) noexcept
{
    return share > 0.0 ? static_cast<std::uint32_t>(std::min(share * side, side - 1.0)) : 0;
}

/// A size in the proportions of an area that gives each pixel some points.
PictureSizeC SizeByDensity(double width, double height, std::uint64_t ullPoints, std::uint32_t uiWidth)
{
    const double pixels = static_cast<double>(ullPoints) / s_dPointsPerPixel;
    double across = std::clamp(std::sqrt(pixels * width / height), s_dNarrowest, s_dWidest);
    if (uiWidth != 0) across = uiWidth;
    return FittingSize(across, std::max(across * height / width, 1.0), ullPoints);
}

class GridViewC final : public ViewI
{
public:
    GridViewC(const SurveyC& survey, std::uint64_t rows, std::uint64_t columns, std::uint32_t uiWidth)
        : m_dRows(static_cast<double>(rows)), m_dColumns(static_cast<double>(columns)),
          m_bRise(survey.RowsRise()), m_bRight(survey.ColumnsGoRight()), m_bStation(survey.OriginIsStation())
    {
        const double across = uiWidth == 0 ? m_dColumns : std::min(static_cast<double>(uiWidth), m_dColumns);
        m_oSize = FittingSize(across, std::max(m_dRows * (across / m_dColumns), 1.0), survey.GetPoints());
        m_uiZoom = ZoomOf(uiWidth);
    }

    PictureSizeC GetSize() const noexcept override { return m_oSize; }
    std::uint32_t GetZoom() const noexcept override { return m_uiZoom; }

    bool Find(const ScanPointC& point, PixelC& pixel) const noexcept override
    {
        const double row = point.adGrid[0];
        const double column = point.adGrid[1];
        const double range = RangeOf(point);
        if (row >= m_dRows || column >= m_dColumns || range == 0.0) return false;
        const std::uint32_t x = PixelAt((column + 0.5) / m_dColumns, m_oSize.uiWidth);
        const std::uint32_t y = PixelAt((row + 0.5) / m_dRows, m_oSize.uiHeight);
        pixel = {m_bRight ? x : m_oSize.uiWidth - 1 - x, m_bRise ? m_oSize.uiHeight - 1 - y : y, range,
                 range};
        return true;
    }

    std::string Describe() const override
    {
        if (!m_bStation) {
            return fmt::format("by grid, row 0 in the {}, column 0 in the {}", m_bRise ? "south" : "north",
                               m_bRight ? "west" : "east");
        }
        return fmt::format("by grid, row 0 is the {}, column 0 is at the {}", m_bRise ? "lowest" : "highest",
                           m_bRight ? "left" : "right");
    }

private:
    /// Whole steps up to the wanted width, within what a picture may be.
    std::uint32_t ZoomOf(std::uint32_t uiWidth) const noexcept
    {
        const double byPixels =
            std::sqrt(static_cast<double>(s_ullMostPixels) / m_oSize.uiWidth / m_oSize.uiHeight);
        const std::uint32_t bySide = s_uiLongestSide / m_oSize.uiHeight;
        return std::max(std::min({uiWidth / m_oSize.uiWidth, static_cast<std::uint32_t>(byPixels), bySide}),
                        1u);
    }

    double m_dRows, m_dColumns;
    bool m_bRise, m_bRight, m_bStation;
    PictureSizeC m_oSize;
    std::uint32_t m_uiZoom = 1;
};

/// A panorama around the origin: right is clockwise, as one sees it from within, and every pixel is the same
/// angle.
class DirectionViewC final : public ViewI
{
public:
    DirectionViewC(const SurveyC& survey, std::uint32_t uiWidth)
        : m_oAzimuths(survey.GetAzimuths()), m_dHighest(survey.GetHighestElevation()),
          m_dHeight(std::max(m_dHighest - survey.GetLowestElevation(), s_dLeastExtent)),
          m_oSize(SizeByDensity(m_oAzimuths.dSpan, m_dHeight, survey.GetPoints(), uiWidth))
    {}

    PictureSizeC GetSize() const noexcept override { return m_oSize; }

    bool Find(const ScanPointC& point, PixelC& pixel) const noexcept override
    {
        const double range = RangeOf(point);
        if (range == 0.0) return false;
        constexpr double turn = 2.0 * std::numbers::pi;
        double azimuth = std::atan2(point.y, point.x) - m_oAzimuths.dFrom;
        if (azimuth < 0.0) azimuth += turn;
        if (azimuth >= turn) azimuth -= turn;
        const double elevation = std::asin(std::clamp(point.z / range, -1.0, 1.0));
        pixel = {PixelAt(1.0 - azimuth / m_oAzimuths.dSpan, m_oSize.uiWidth),
                 PixelAt((m_dHighest - elevation) / m_dHeight, m_oSize.uiHeight), range, range};
        return true;
    }

    std::string Describe() const override
    {
        return fmt::format(
            "by direction, {:.1f} degrees around from azimuth {:.1f} to {:.1f}, elevation {:.1f} to {:.1f}",
            m_oAzimuths.dSpan / s_dDegree, (m_oAzimuths.dFrom + m_oAzimuths.dSpan) / s_dDegree,
            m_oAzimuths.dFrom / s_dDegree, (m_dHighest - m_dHeight) / s_dDegree, m_dHighest / s_dDegree);
    }

private:
    AzimuthsC m_oAzimuths;
    double m_dHighest, m_dHeight;
    PictureSizeC m_oSize;
};

/// From above: x to the right, y upwards, and the highest point is the nearest.
class TopViewC final : public ViewI
{
public:
    TopViewC(const SurveyC& survey, std::uint32_t uiWidth)
        : m_dWest(survey.GetMin()[0]), m_dNorth(survey.GetMax()[1]), m_dLowest(survey.GetMin()[2]),
          m_dHighest(survey.GetMax()[2]), m_dWidth(std::max(survey.GetMax()[0] - m_dWest, s_dLeastExtent)),
          m_dHeight(std::max(m_dNorth - survey.GetMin()[1], s_dLeastExtent)),
          m_oSize(SizeByDensity(m_dWidth, m_dHeight, survey.GetPoints(), uiWidth))
    {}

    PictureSizeC GetSize() const noexcept override { return m_oSize; }

    bool Find(const ScanPointC& point, PixelC& pixel) const noexcept override
    {
        pixel = {PixelAt((point.x - m_dWest) / m_dWidth, m_oSize.uiWidth),
                 PixelAt((m_dNorth - point.y) / m_dHeight, m_oSize.uiHeight), m_dHighest - point.z,
                 point.z - m_dLowest};
        return true;
    }

    std::string Describe() const override
    {
        return fmt::format("from above, {:.6g} x {:.6g}, y is up and x to the right", m_dWidth, m_dHeight);
    }

private:
    double m_dWest, m_dNorth, m_dLowest, m_dHighest, m_dWidth, m_dHeight;
    PictureSizeC m_oSize;
};

} // namespace

std::unique_ptr<ViewI> MakeView(ViewKindT eKind, const SurveyC& survey, std::uint64_t rows,
                                std::uint64_t columns, std::uint32_t uiWidth)
{
    switch (eKind) {
    case ViewKindT::Grid:
        return std::make_unique<GridViewC>(survey, rows, columns, uiWidth);
    case ViewKindT::Direction:
        return std::make_unique<DirectionViewC>(survey, uiWidth);
    default:
        return std::make_unique<TopViewC>(survey, uiWidth);
    }
}

} // namespace Tool
