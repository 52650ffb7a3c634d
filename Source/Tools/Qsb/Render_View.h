// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// From a point to its pixel and its distance from the eye: by the scan's own grid, by the direction seen from
// the scanner, or from above. A view is fixed once chosen and knows nothing of values and colours.
#pragma once

#include "Tools/Qsb/Render_Picture.h"
#include "Tools/Qsb/Render_Survey.h"

#include <memory>
#include <string>

namespace Tool {

enum class ViewKindT
{
    Grid,
    Direction,
    Top,
};

struct PixelC
{
    std::uint32_t x = 0, y = 0;
    double dDistance = 0.0; ///< from the eye; not negative
    double dDepth = 0.0;    ///< what --by range shows: the range, from above the height
};

class ViewI
{
public:
    virtual ~ViewI() = default;

    virtual PictureSizeC GetSize() const noexcept = 0;

    /// How often each pixel is to be repeated to the right and downwards.
    virtual std::uint32_t GetZoom() const noexcept { return 1; }

    /// Where a point with a finite position shows. False when it is outside the picture or in no direction.
    virtual bool Find(const ScanPointC& point, PixelC& pixel) const noexcept = 0;

    /// What up and right mean in it, for people.
    virtual std::string Describe() const = 0;
};

/// A view of a surveyed scan that has points. `uiWidth` is the wanted width, 0 for what suits the scan.
/// `rows` and `columns` are the grid's; the grid view is for surveys whose grid fits.
std::unique_ptr<ViewI> MakeView(ViewKindT eKind, const SurveyC& survey, std::uint64_t rows,
                                std::uint64_t columns, std::uint32_t uiWidth);

} // namespace Tool
