// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A picture in the making: for each pixel the nearest point so far. Its memory, 8 bytes per pixel, is all
// that a picture of any scan takes. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Tool {

/// Most pixels of a picture, and of one of its sides.
inline constexpr std::uint64_t s_ullMostPixels = 32000000;
inline constexpr std::uint32_t s_uiLongestSide = 30000;

struct PictureSizeC
{
    std::uint32_t uiWidth = 1, uiHeight = 1;
};

/// A size in the proportions of `width` to `height`, both at least 1 and finite, that is not wider than
/// `width`, nor larger than a picture may be, nor than a scan of that many points deserves, so that a file's
/// claims cost nothing.
PictureSizeC FittingSize(double width, double height, std::uint64_t ullPoints);

class PictureC
{
public:
    explicit PictureC(PictureSizeC size)
        : m_oSize(size), m_vecCells(std::size_t{size.uiWidth} * size.uiHeight)
    {}

    PictureSizeC GetSize() const noexcept { return m_oSize; }

    /// Shows `uiValue` at a pixel of the picture unless something nearer is there already. Of equally near
    /// points the first stays.
    void Offer(std::uint32_t x, std::uint32_t y, float distance, std::uint32_t uiValue) noexcept
    {
        CellC& cell = m_vecCells[std::size_t{y} * m_oSize.uiWidth + x];
        if (distance < cell.fDistance) cell = {distance, uiValue};
    }

    bool IsEmpty(std::size_t nPixel) const noexcept
    {
        return m_vecCells[nPixel].fDistance == std::numeric_limits<float>::infinity();
    }

    std::uint32_t GetValue(std::size_t nPixel) const noexcept { return m_vecCells[nPixel].uiValue; }
    std::size_t GetPixelCount() const noexcept { return m_vecCells.size(); }
    std::size_t CountFilled() const noexcept;

private:
    struct CellC
    {
        float fDistance = std::numeric_limits<float>::infinity();
        std::uint32_t uiValue = 0;
    };

    PictureSizeC m_oSize;
    std::vector<CellC> m_vecCells;
};

} // namespace Tool
