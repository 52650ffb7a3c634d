// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The options of qsb import, and the loop from source to file.
#include "Tools/Qsb/Cmd_Import.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Tools/Qsb/Tool_ConversionOptions.h"
#include "Tools/Qsb/Tool_Encodings.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Numerals.h"
#include "Tools/Qsb/Tool_OpenSource.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanImport.h"
#include "Tools/Qsb/Tool_ScanWriter.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <fmt/format.h>
#include <memory>

namespace Tool {

namespace {

constexpr char s_szFooter[] = R"(Examples:
  qsb import room.json room.qsb          the raw form: room.json and room.bin
  qsb import --strict cloud.ply cloud.qsb
  qsb import cloud.ply cloud.qsb --intensity uint16 --intensity-scale 65535

Without options each element gets the smallest encoding that loses nothing, judged by the
types of the source. Where a value still does not fit it is rounded and clamped, and told
with counts. Field names and the comments that carry pose, grid and height in PLY files:
Docs/tool.md; the raw form: Docs/raw-form.md.

Exit code: 0 done, 1 failed or loss refused, 2 usage, 3 the input is damaged.)";

struct ImportOptionsC
{
    ConversionOptionsC oCommon;
    std::string strPosition = "auto";
    std::string strIntensity = "auto";
    std::string strNoise = "auto";
    std::string strGrid = "auto";
    std::string strColor = "auto";
    double dIntensityScale = 1.0;
    double dColorMax = 0.0; ///< 0: told by the source
};

ImportChoicesC ChoicesOf(const ImportOptionsC& options)
{
    ImportChoicesC choices;
    choices.oPosition = TypeNamed(options.strPosition); // "auto" and "none" name no type
    choices.oIntensity = TypeNamed(options.strIntensity);
    choices.oNoise = TypeNamed(options.strNoise);
    choices.oGrid = TypeNamed(options.strGrid);
    choices.bNoNoise = options.strNoise == "none";
    choices.bNoGrid = options.strGrid == "none";
    choices.bNoColor = options.strColor == "none";
    choices.dIntensityScale = options.dIntensityScale;
    if (options.dColorMax > 0.0) choices.oColorMax = options.dColorMax;
    return choices;
}

ConversionReportC ReportOf(const ImportOptionsC& options, const PointSourceI& source,
                           const ScanImportC& import)
{
    ConversionReportC report("import", options.oCommon.strInput, options.oCommon.strOutput);
    report.SetPoints(source.GetNumberOfPoints(), source.GetNumberOfPoints());
    import.AddTo(report);
    return report;
}

void CheckRoom(const ImportOptionsC& options, std::uint64_t ullPoints, std::uint64_t ullMost)
{
    if (ullPoints <= ullMost) return;
    throw ToolErrorC(
        s_iFailed,
        fmt::format("{}: {} points do not fit a scan file, which holds {} of this kind; smaller encodings "
                    "or fewer elements make room for more",
                    options.oCommon.strInput, ullPoints, ullMost));
}

int Import(const ImportOptionsC& options)
{
    OutputFileC output(options.oCommon.strOutput, options.oCommon.bOverwrite,
                       SourceFiles(options.oCommon.strInput));
    const std::unique_ptr<PointSourceI> poSource = OpenSource(options.oCommon.strInput);
    // The work is counted twice, since the source may be read once more for a first look.
    ProgressC progress("importing", 2 * poSource->GetNumberOfPoints(), options.oCommon.bQuiet);
    const auto batchDone = [&](std::size_t nPoints) {
        progress.Advance(nPoints);
        StopIfInterrupted();
    };
    ScanImportC import(*poSource, ChoicesOf(options), batchDone);
    RefuseLoss(options.oCommon, ReportOf(options, *poSource, import));

    ScanWriterC writer(output.GetTemporaryPath(), import.GetFormat(), import.GetInfo());
    CheckRoom(options, poSource->GetNumberOfPoints(), writer.GetMaxPoints());
    std::vector<ScanPointC> points;
    for (import.Read(points); !points.empty(); import.Read(points)) {
        writer.Write(points);
        batchDone(points.size());
    }
    writer.Finish();
    const ConversionReportC report = ReportOf(options, *poSource, import);
    RefuseLoss(options.oCommon, report);
    output.Commit();
    PrintConversion(options.oCommon, report);
    return s_iDone;
}

/// A check of an option's text; the library's own lets NaN pass.
std::string CheckPositive(const std::string& text)
{
    const auto oNumber = ParseNumber(text, NumberTypeT::Double);
    const bool bPositive = oNumber && *oNumber > 0.0 && std::isfinite(*oNumber);
    return bPositive ? "" : fmt::format("{} is not a number above 0", text);
}

void AddEncodingOption(CLI::App& verb, const std::string& name, std::string& value, SIO::PointDataKindT eKind,
                       const std::string& what)
{
    std::vector<std::string> names = EncodingNames(eKind);
    names.insert(names.begin(), "auto");
    verb.add_option(name, value, what)->check(CLI::IsMember(names))->capture_default_str();
}

} // namespace

void AddImport(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<ImportOptionsC>();
    CLI::App& verb = *app.add_subcommand("import", "Make a scan file from a PLY file or the raw form");
    verb.add_option("IN", options->oCommon.strInput, "PLY file, or .json or .bin of the raw form")
        ->required();
    verb.add_option("OUT", options->oCommon.strOutput, "Scan file to write")->required();
    AddEncodingOption(verb, "--position", options->strPosition, SIO::PD_POSITION, "Encoding of positions");
    AddEncodingOption(verb, "--intensity", options->strIntensity, SIO::PD_INTENSITY,
                      "Encoding of intensities");
    AddEncodingOption(verb, "--noise", options->strNoise, SIO::PD_LEVEL_OF_NOISE,
                      "Encoding of levels of noise");
    AddEncodingOption(verb, "--grid", options->strGrid, SIO::PD_GRID, "Encoding of grid indices");
    AddEncodingOption(verb, "--color", options->strColor, SIO::PD_COLOR, "Encoding of colours");
    verb.add_option("--intensity-scale", options->dIntensityScale, "Multiply intensities by this")
        ->check(CheckPositive)
        ->capture_default_str();
    verb.add_option("--color-max", options->dColorMax,
                    "Value of full colour in the source; told by its values if not given")
        ->check(CheckPositive);
    AddConversionFlags(verb, options->oCommon);
    verb.footer(s_szFooter);
    verb.callback([options, &action] { action = [options] { return Import(*options); }; });
}

} // namespace Tool
