// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What is told of a picture that was made: lines for people and JSON for programs.
#pragma once

#include "Tools/Qsb/Render_Picture.h"
#include "Tools/Qsb/Tool_Json.h"

#include <cstdint>
#include <string>

namespace Tool {

struct RenderReportC
{
    std::string strFile, strPicture;
    std::string strBy, strView;
    std::string strOrientation; ///< what up and right mean, for people
    PictureSizeC oSize;
    std::uint64_t ullPoints = 0; ///< drawn, also those that something nearer hides
    std::uint64_t ullPixelsFilled = 0;
    std::uint64_t ullInvalidPosition = 0;
    std::uint64_t ullNoPlace = 0; ///< outside the grid or at the origin
    std::uint64_t ullNoValue = 0; ///< what was to be shown is NaN or an infinity
    double dShownFrom = 0.0, dShownTo = 0.0;
    std::string strWarning; ///< empty when there is nothing to warn of
    std::string strDamage;  ///< why the file ends early; empty for a whole one
};

/// A line for the picture and one for what is in it.
std::string TextOf(const RenderReportC& report);

JsonT JsonOf(const RenderReportC& report);

} // namespace Tool
