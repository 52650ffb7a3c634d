// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The options of qsb render and its two passes over the points: the first finds out what there is to see, the
// second draws it. A file that ends early is drawn as far as it goes.
#include "Tools/Qsb/Cmd_Render.h"

#include "Tools/Qsb/Render_Picture.h"
#include "Tools/Qsb/Render_Png.h"
#include "Tools/Qsb/Render_Report.h"
#include "Tools/Qsb/Render_Survey.h"
#include "Tools/Qsb/Render_Tone.h"
#include "Tools/Qsb/Render_View.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
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

constexpr char s_szFooter[] = R"(Views:
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
  qsb render strip.qsb heights.png --by range --view top

Exit code: 0 done, 1 failed, 2 usage, 3 the file is damaged; of a file that ends
early the picture shows what there is.)";

struct OptionsC
{
    std::string input, output;
    std::string by = "intensity", view = "auto";
    std::uint32_t uiWidth = 0;
    bool bOverwrite = false, bQuiet = false, bJson = false;
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

/// The view to take; why the grid is not used although there is one goes into `warning`.
ViewKindT ChooseView(const OptionsC& options, const SurveyC& survey, const GridC& grid, std::string& warning)
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
    if (grid.rows != 0) warning = problem + "; it is not used";
    return survey.OriginIsStation() ? ViewKindT::Direction : ViewKindT::Top;
}

void CheckSomethingToSee(const OptionsC& options, std::uint64_t ullPoints, const std::string& damage)
{
    if (ullPoints != 0) return;
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
          RenderReportC& report)
{
    PixelC pixel;
    std::uint32_t uiValue = 0;
    for (const ScanPointC& point : points) {
        if (!IsUsableRange(RangeOf(point))) continue;
        if (!view.Find(point, pixel)) {
            ++report.ullNoPlace;
        } else if (!ValueOf(by, point, pixel, uiValue)) {
            ++report.ullNoValue;
        } else {
            picture.Offer(pixel.x, pixel.y, static_cast<float>(pixel.dDistance), uiValue);
            ++report.ullPoints;
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

const char* NameOf(ViewKindT eView)
{
    return eView == ViewKindT::Grid ? "grid" : eView == ViewKindT::Direction ? "direction" : "top";
}

/// The second pass, and the picture's file.
void MakePicture(ScanReaderC& reader, ProgressC& progress, const ViewI& view, const OutputFileC& output,
                 RenderReportC& report)
{
    PictureC picture(view.GetSize());
    reader.Rewind();
    // What damage there is, the first pass has told.
    (void)ForEachBatch(reader, progress,
                       [&](const auto& points) { Draw(report.strBy, view, points, picture, report); });
    const ToneC tone(ToneOf(report.strBy), picture);
    WritePicture(output, picture, tone, view.GetZoom());
    report.oSize = {view.GetSize().uiWidth * view.GetZoom(), view.GetSize().uiHeight * view.GetZoom()};
    report.ullPixelsFilled = picture.CountFilled();
    report.dShownFrom = tone.GetLow();
    report.dShownTo = tone.GetHigh();
    report.strOrientation = view.Describe();
}

RenderReportC RenderScan(const OptionsC& options)
{
    RenderReportC report;
    report.strFile = options.input;
    report.strPicture = options.output;
    report.strBy = options.by;
    ScanReaderC reader(options.input);
    OutputFileC output(options.output, options.bOverwrite, {options.input});
    CheckElement(options, reader);

    const GridC grid = GridOf(reader);
    ProgressC progress("rendering", 2 * reader.GetNumberOfPoints(), options.bQuiet);
    SurveyC survey(grid.rows, grid.columns);
    report.strDamage = ForEachBatch(reader, progress, [&](const auto& points) { survey.Take(points); });
    report.ullInvalidPosition = survey.GetInvalid();
    CheckSomethingToSee(options, survey.GetPoints(), report.strDamage);
    const ViewKindT eView = ChooseView(options, survey, grid, report.strWarning);
    report.strView = NameOf(eView);
    if (eView != ViewKindT::Top)
        CheckSomethingToSee(options, survey.GetPoints() - survey.GetAtOrigin(), report.strDamage);

    const auto view = MakeView(eView, survey, grid.rows, grid.columns, options.uiWidth);
    MakePicture(reader, progress, *view, output, report);
    output.Commit();
    return report;
}

int Render(const OptionsC& options)
{
    const RenderReportC report = RenderScan(options);
    if (!options.bQuiet && !report.strWarning.empty())
        fmt::print(stderr, "{}: {}\n", options.input, report.strWarning);
    if (options.bJson) {
        PrintJson(JsonOf(report));
    } else if (!options.bQuiet) {
        PrintResult(TextOf(report));
    }
    if (report.strDamage.empty()) return s_iDone;
    throw ToolErrorC(s_iDamaged, report.strDamage + "; the picture shows these");
}

} // namespace

void AddRender(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<OptionsC>();
    CLI::App& verb = *app.add_subcommand("render", "Make a picture of a scan, as a PNG file");
    verb.add_option("FILE", options->input, "QSB file")->required();
    verb.add_option("OUT", options->output, "Picture to write")->required();
    verb.add_option("--by", options->by, "What to show; from above, range is the height")
        ->check(CLI::IsMember({"intensity", "range", "color", "noise"}))
        ->capture_default_str();
    verb.add_option("--view", options->view, "How to look at the scan")
        ->check(CLI::IsMember({"auto", "grid", "direction", "top"}))
        ->capture_default_str();
    verb.add_option("--width", options->uiWidth, "Pixels across; grids are enlarged in whole steps")
        ->check(CLI::Range(1u, s_uiLongestSide));
    verb.add_flag("--overwrite", options->bOverwrite, "Replace OUT if it exists");
    verb.add_flag("--quiet", options->bQuiet, "Say nothing but errors");
    verb.add_flag("--json", options->bJson, "Print what was drawn as JSON");
    verb.footer(s_szFooter);
    verb.callback([options, &action] { action = [options] { return Render(*options); }; });
}

} // namespace Tool
