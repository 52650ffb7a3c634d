// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Both forms say the same.
#include "Tools/Qsb/Render_Report.h"

#include <fmt/format.h>

namespace Tool {

std::string TextOf(const RenderReportC& report)
{
    std::string text = fmt::format("{}: {} x {} pixels, {} {}\n", report.strPicture, report.oSize.uiWidth,
                                   report.oSize.uiHeight, report.strBy, report.strOrientation);
    text += fmt::format("  {} points in {} pixels", report.ullPoints, report.ullPixelsFilled);
    if (report.strBy != "color")
        text += fmt::format("; shown from {:.6g} to {:.6g}", report.dShownFrom, report.dShownTo);
    const auto leftOut = [&](std::uint64_t ullCount, const char* why) {
        if (ullCount != 0) text += fmt::format("; left out: {} {}", ullCount, why);
    };
    leftOut(report.ullInvalidPosition, "with an invalid position");
    leftOut(report.ullNoPlace,
            report.strView == "grid" ? "outside the grid or at the origin" : "at the origin");
    leftOut(report.ullNoValue, fmt::format("without a valid {}", report.strBy).c_str());
    return text + "\n";
}

JsonT JsonOf(const RenderReportC& report)
{
    const bool bScalar = report.strBy != "color";
    JsonT json = NewJsonDocument("render");
    json["file"] = report.strFile;
    json["picture"] = report.strPicture;
    json["width"] = report.oSize.uiWidth;
    json["height"] = report.oSize.uiHeight;
    json["by"] = report.strBy;
    json["view"] = report.strView;
    json["orientation"] = report.strOrientation;
    json["points"] = report.ullPoints;
    json["pixels_filled"] = report.ullPixelsFilled;
    json["left_out"] = {{"invalid_position", report.ullInvalidPosition},
                        {"no_place", report.ullNoPlace},
                        {"no_value", report.ullNoValue}};
    json["shown_from"] = bScalar ? JsonT(report.dShownFrom) : JsonT(nullptr);
    json["shown_to"] = bScalar ? JsonT(report.dShownTo) : JsonT(nullptr);
    json["warning"] = report.strWarning.empty() ? JsonT(nullptr) : JsonT(report.strWarning);
    json["damage"] = report.strDamage.empty() ? JsonT(nullptr) : JsonT(report.strDamage);
    return json;
}

} // namespace Tool
