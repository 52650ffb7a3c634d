// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The options of qsb render and its two passes over the points: the first finds out what there is to see, the
// second draws it. A file that ends early is drawn as far as it goes.
#include "Tools/Qsb/Cmd_Render.h"

#include "Tools/Qsb/Render_Picture.h"
#include "Tools/Qsb/Render_Png.h"
#include "Tools/Qsb/Render_Survey.h"
#include "Tools/Qsb/Render_Tone.h"
#include "Tools/Qsb/Render_View.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Json.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanReader.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <memory>

namespace Tool {

namespace {

constexpr const char* s_pszExamples = R"(Views:
  grid       a pixel per row and column of the scan, turned so that up is up
  direction  a panorama around the scanner
  top        from above, x to the right and y upwards
  auto       grid where the points have one; else direction; else, when the
             points lie far from the origin as in projected coordinates, top
Of several points in one pixel the nearest is shown, from above the highest.
Pixels without a point are transparent.

Examples:
  qsb render room.qsb room.png
  qsb render room.qsb colors.png --by color --width 1000
  qsb render strip.qsb heights.png --by range --view top)";

struct OptionsC
{
    std::string input, output;
    std::string by = "intensity", view = "auto";
    std::uint32_t uiWidth = 0;
    bool bOverwrite = false, bQuiet = false, bJson = false;
};

/// What came of the second pass.
struct DrawnC
{
    std::uint64_t ullDrawn = 0;
    std::uint64_t ullUnplaced = 0; ///< outside the grid or at the origin
    std::uint64_t ullNoValue = 0;  ///< intensity or noise is NaN or an infinity
};

struct GridC
{
    std::uint64_t rows = 0, columns = 0; ///< 0: none
};

GridC GridOf(const ScanReaderC& reader)
{
    if (!reader.HasGridSize() || reader.GetFormat().uiGrid == 0) return {};
    const auto& largest = reader.GetInfo().auiGridSize;
    return {std::uint64_t{largest[0]} + 1, std::uint64_t{largest[1]} + 1};
}

/// Calls `use` with every batch there is. The reason when the file ends early, else empty.
std::string ForEachBatch(ScanReaderC& reader, ProgressC& progress,
                         const std::function<void(const std::vector<ScanPointC>&)>& use)
{
    std::vector<ScanPointC> points;
    try {
        for (reader.Read(points); !points.empty(); reader.Read(points)) {
            use(points);
            progress.Advance(points.size());
            StopIfInterrupted();
        }
    } catch (const ToolErrorC& error) {
        if (error.GetExitCode() != s_iDamaged) throw;
        return error.what();
    }
    return {};
}

void CheckElement(const OptionsC& options, const ScanReaderC& reader)
{
    const ScanFormatC& format = reader.GetFormat();
    const char* missing = options.by == "intensity" && format.uiIntensity == 0 ? "intensities"
                          : options.by == "color" && format.uiColor == 0       ? "colours"
                          : options.by == "noise" && format.uiNoise == 0       ? "level of noise"
                                                                               : nullptr;
    if (missing == nullptr) return;
    throw ToolErrorC(s_iFailed,
                     fmt::format("{}: the points have no {}; choose another --by", options.input, missing));
}

ViewKindT ChooseView(const OptionsC& options, const SurveyC& survey, const GridC& grid)
{
    if (options.view == "direction") return ViewKindT::Direction;
    if (options.view == "top") return ViewKindT::Top;
    if (survey.GridFits()) return ViewKindT::Grid;
    const std::string problem =
        grid.rows == 0
            ? "the scan has no grid"
            : fmt::format("the grid of {} x {} does not fit the points' indices, {} of {} lie in it",
                          grid.rows, grid.columns, survey.GetWithinGrid(), survey.GetPoints());
    if (options.view == "grid") {
        throw ToolErrorC(s_iFailed, fmt::format("{}: {}; choose another --view", options.input, problem));
    }
    if (grid.rows != 0 && !options.bQuiet)
        fmt::print(stderr, "{}: {}; it is not used\n", options.input, problem);
    return survey.OriginIsStation() ? ViewKindT::Direction : ViewKindT::Top;
}

void CheckSomethingToSee(const OptionsC& options, const SurveyC& survey, ViewKindT eView,
                         const std::string& damage)
{
    const std::uint64_t ullSeen = survey.GetPoints() - (eView == ViewKindT::Top ? 0 : survey.GetAtOrigin());
    if (ullSeen != 0) return;
    if (!damage.empty()) throw ToolErrorC(s_iDamaged, damage);
    throw ToolErrorC(s_iFailed, fmt::format("{}: there is no point to draw", options.input));
}

/// What stands in the picture for a point; false when its value is NaN or infinite.
bool ValueOf(const std::string& by, const ScanPointC& point, const PixelC& pixel, std::uint32_t& uiValue)
{
    if (by == "color") {
        uiValue = ColorPixel(point.adColor);
        return true;
    }
    const double value = by == "intensity" ? point.dIntensity : by == "noise" ? point.dNoise : pixel.dDepth;
    uiValue = ScalarPixel(value);
    return std::isfinite(value);
}

void Draw(const std::string& by, const ViewI& view, const std::vector<ScanPointC>& points, PictureC& picture,
          DrawnC& drawn)
{
    PixelC pixel;
    std::uint32_t uiValue = 0;
    for (const ScanPointC& point : points) {
        if (!HasFinitePosition(point)) continue;
        if (!view.Find(point, pixel)) {
            ++drawn.ullUnplaced;
        } else if (!ValueOf(by, point, pixel, uiValue)) {
            ++drawn.ullNoValue;
        } else {
            picture.Offer(pixel.x, pixel.y, static_cast<float>(pixel.dDistance), uiValue);
            ++drawn.ullDrawn;
        }
    }
}

void WritePicture(const OutputFileC& output, const PictureC& picture, const ToneC& tone, std::uint32_t uiZoom)
{
    const PictureSizeC size = picture.GetSize();
    const auto fill = [&](std::uint32_t y, std::vector<std::uint8_t>& row) {
        StopIfInterrupted();
        const std::size_t nFirst = std::size_t{y / uiZoom} * size.uiWidth;
        auto out = row.begin();
        for (std::size_t x = 0; x < size.uiWidth; ++x) {
            const RgbaT rgba = tone.Show(picture, nFirst + x);
            for (std::uint32_t i = 0; i < uiZoom; ++i)
                out = std::copy(rgba.begin(), rgba.end(), out);
        }
    };
    WritePng(output.GetTemporaryPath(), output.GetTarget(), size.uiWidth * uiZoom, size.uiHeight * uiZoom,
             fill);
}

ToneKindT ToneOf(const std::string& by)
{
    if (by == "color") return ToneKindT::Color;
    return by == "intensity" ? ToneKindT::Grey : ToneKindT::Ramp;
}

} // namespace

namespace {

/// All that is to be told of a picture.
struct ReportC
{
    std::string view; ///< the view's name
    PictureSizeC oSize;
    std::uint64_t ullFilled;
    DrawnC oDrawn;
};

void TellPeople(const OptionsC& options, const ViewI& view, const SurveyC& survey, const ToneC& tone,
                const ReportC& report)
{
    fmt::print(stderr, "{}: {} x {} pixels, {} {}\n", options.output, report.oSize.uiWidth,
               report.oSize.uiHeight, options.by, view.Describe());
    fmt::print(stderr, "{}: {} points in {} pixels", options.output, report.oDrawn.ullDrawn,
               report.ullFilled);
    const std::uint64_t ullSkipped =
        survey.GetInvalid() + report.oDrawn.ullUnplaced + report.oDrawn.ullNoValue;
    if (ullSkipped != 0) {
        fmt::print(stderr,
                   "; left out: {} with an invalid position, {} outside the grid or at the origin, {} "
                   "without a value",
                   survey.GetInvalid(), report.oDrawn.ullUnplaced, report.oDrawn.ullNoValue);
    }
    if (options.by != "color")
        fmt::print(stderr, "; shown from {:.6g} to {:.6g}", tone.GetLow(), tone.GetHigh());
    fmt::print(stderr, "\n");
}

JsonT Summary(const OptionsC& options, const ViewI& view, const SurveyC& survey, const ToneC& tone,
              const ReportC& report, const std::string& damage)
{
    JsonT json = NewJsonDocument("render");
    json["file"] = options.input;
    json["picture"] = options.output;
    json["width"] = report.oSize.uiWidth;
    json["height"] = report.oSize.uiHeight;
    json["by"] = options.by;
    json["view"] = report.view;
    json["orientation"] = view.Describe();
    json["points"] = report.oDrawn.ullDrawn;
    json["pixels_filled"] = report.ullFilled;
    json["left_out"] = {{"invalid_position", survey.GetInvalid()},
                        {"no_place", report.oDrawn.ullUnplaced},
                        {"no_value", report.oDrawn.ullNoValue}};
    const bool bScalar = options.by != "color";
    json["shown_from"] = bScalar ? JsonT(tone.GetLow()) : JsonT(nullptr);
    json["shown_to"] = bScalar ? JsonT(tone.GetHigh()) : JsonT(nullptr);
    json["damage"] = damage.empty() ? JsonT(nullptr) : JsonT(damage);
    return json;
}

const char* NameOf(ViewKindT eView)
{
    return eView == ViewKindT::Grid ? "grid" : eView == ViewKindT::Direction ? "direction" : "top";
}

int Render(const OptionsC& options)
{
    ScanReaderC reader(options.input);
    OutputFileC output(options.output, options.bOverwrite, {options.input});
    CheckElement(options, reader);
    const GridC grid = GridOf(reader);
    ProgressC progress("rendering", 2 * reader.GetNumberOfPoints(), options.bQuiet);
    SurveyC survey(grid.rows, grid.columns);
    const std::string damage =
        ForEachBatch(reader, progress, [&](const auto& points) { survey.Take(points); });
    const ViewKindT eView = ChooseView(options, survey, grid);
    CheckSomethingToSee(options, survey, eView, damage);

    const auto view = MakeView(eView, survey, grid.rows, grid.columns, options.uiWidth);
    PictureC picture(view->GetSize());
    DrawnC drawn;
    reader.Rewind();
    (void)ForEachBatch(reader, progress,
                       [&](const auto& points) { Draw(options.by, *view, points, picture, drawn); });

    const ToneC tone(ToneOf(options.by), picture);
    WritePicture(output, picture, tone, view->GetZoom());
    output.Commit();
    const PictureSizeC shown{view->GetSize().uiWidth * view->GetZoom(),
                             view->GetSize().uiHeight * view->GetZoom()};
    const ReportC report{NameOf(eView), shown, picture.CountFilled(), drawn};
    if (!options.bQuiet) TellPeople(options, *view, survey, tone, report);
    if (options.bJson) PrintJson(Summary(options, *view, survey, tone, report, damage));
    if (damage.empty()) return s_iDone;
    fmt::print(stderr, "qsb: {}; the picture shows these\n", damage);
    return s_iDamaged;
}

} // namespace

void AddRender(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<OptionsC>();
    CLI::App& verb = *app.add_subcommand("render", "Makes a picture of a scan, as a PNG file.");
    verb.add_option("FILE", options->input, "the scan")->required();
    verb.add_option("OUT", options->output, "the picture to write")->required();
    verb.add_option("--by", options->by, "what to show; from above, range is the height")
        ->check(CLI::IsMember({"intensity", "range", "color", "noise"}))
        ->capture_default_str();
    verb.add_option("--view", options->view, "how to look at the scan")
        ->check(CLI::IsMember({"auto", "grid", "direction", "top"}))
        ->capture_default_str();
    verb.add_option("--width", options->uiWidth, "pixels across; grids are enlarged in whole steps")
        ->check(CLI::Range(1u, s_uiLongestSide));
    verb.add_flag("--overwrite", options->bOverwrite, "replace OUT if it exists");
    verb.add_flag("--quiet", options->bQuiet, "say nothing but errors");
    verb.add_flag("--json", options->bJson, "print what was drawn as JSON");
    verb.footer(s_pszExamples);
    verb.callback([options, &action] { action = [options] { return Render(*options); }; });
}

} // namespace Tool
