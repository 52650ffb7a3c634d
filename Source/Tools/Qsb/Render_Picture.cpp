// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Sizes, and what the picture can say of itself.
#include "Tools/Qsb/Render_Picture.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr std::uint64_t s_ullPixelsPerPoint = 16;
constexpr std::uint64_t s_ullAlwaysAllowed = 1000000;

std::uint32_t Side(double length)
{
    return static_cast<std::uint32_t>(std::clamp(std::floor(length + 0.5), 1.0, double{s_uiLongestSide}));
}

} // namespace

PictureSizeC FittingSize(double width, double height, std::uint64_t ullPoints)
{
    const std::uint64_t ullDeserved =
        std::max(s_ullAlwaysAllowed, std::min(ullPoints, s_ullMostPixels) * s_ullPixelsPerPoint);
    const auto most = static_cast<double>(std::min(s_ullMostPixels, ullDeserved));
    double scale = std::min(1.0, s_uiLongestSide / std::max(width, height));
    scale = std::min(scale, std::sqrt(most / width / height));
    PictureSizeC size{Side(width * scale), Side(height * scale)};
    // A side that cannot become shorter than one pixel leaves the other too long.
    if (std::uint64_t{size.uiWidth} * size.uiHeight > std::min(s_ullMostPixels, ullDeserved)) {
        const auto uiMost = static_cast<std::uint32_t>(most);
        if (size.uiWidth > size.uiHeight)
            size.uiWidth = std::max(uiMost / size.uiHeight, 1u);
        else
            size.uiHeight = std::max(uiMost / size.uiWidth, 1u);
    }
    return size;
}

std::size_t PictureC::CountFilled() const noexcept
{
    std::size_t nFilled = 0;
    for (std::size_t i = 0; i < m_vecCells.size(); ++i)
        nFilled += IsEmpty(i) ? 0 : 1;
    return nFilled;
}

} // namespace Tool
