// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The options of qsb synth, and the loop that measures column by column and writes batch by batch.
#include "Tools/Qsb/Cmd_Synth.h"

#include "Tools/Qsb/Synth_Scanner.h"
#include "Tools/Qsb/Tool_Encodings.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Json.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanWriter.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <memory>

namespace Tool {

namespace {

constexpr std::uint32_t s_uiMostLines = 1000000;
constexpr std::uint32_t s_uiMostUInt16Lines = 65536;
constexpr double s_dAnsweringShare = 0.976; ///< of all directions, in this room

constexpr char s_szFooter[] = R"(Examples:
  qsb synth room.qsb
      1000 x 2000 directions, with noise, grid and colour
  qsb synth big.qsb --points 20000000 --noise none --color none
  qsb synth exact.qsb --rows 300 --columns 600 --position double --range-noise 0

The same options give the same file, byte for byte, on every platform.)";

struct OptionsC
{
    std::string output;
    SynthSettingsC oSettings;
    std::uint64_t ullPoints = 0;
    double dRangeNoiseMm = 0.5;
    std::string position = "float", intensity = "uint16", noise = "uint8", grid = "uint16", color = "uint8";
    bool bOverwrite = false, bQuiet = false, bJson = false;
};

/// How many directions gave what, in the order of AnswerT.
using TallyT = std::array<std::uint64_t, 4>;

std::uint64_t CountOf(const TallyT& tally, AnswerT eAnswer)
{
    return tally[static_cast<std::size_t>(eAnswer)];
}

[[noreturn]] void Misuse(const std::string& text)
{
    throw ToolErrorC(s_iUsage, text + "; see qsb synth --help");
}

void ChooseLines(const OptionsC& options, SynthSettingsC& settings)
{
    if (options.ullPoints == 0) return;
    // Twice as many columns as rows, so that both steps are about the same angle.
    const double directions = static_cast<double>(options.ullPoints) / s_dAnsweringShare;
    const double rows = std::floor(std::sqrt(directions / 2.0) + 0.5);
    settings.uiRows = static_cast<std::uint32_t>(std::max(rows, 2.0));
    settings.uiColumns = static_cast<std::uint32_t>(std::max(std::floor(directions / rows + 0.5), 2.0));
}

SynthSettingsC SettingsOf(const OptionsC& options)
{
    SynthSettingsC settings = options.oSettings;
    ChooseLines(options, settings);
    // The range check of the option lets NaN through.
    if (std::isnan(options.dRangeNoiseMm)) Misuse("--range-noise is not a number");
    settings.dRangeNoiseM = options.dRangeNoiseMm * 1e-3;
    settings.oFormat.uiPosition = EncodingOf(SIO::PD_POSITION, options.position);
    settings.oFormat.uiIntensity = EncodingOf(SIO::PD_INTENSITY, options.intensity);
    settings.oFormat.uiNoise = EncodingOf(SIO::PD_LEVEL_OF_NOISE, options.noise);
    settings.oFormat.uiGrid = EncodingOf(SIO::PD_GRID, options.grid);
    settings.oFormat.uiColor = EncodingOf(SIO::PD_COLOR, options.color);
    const std::uint32_t uiMost = std::max(settings.uiRows, settings.uiColumns);
    if (options.grid == "uint16" && uiMost > s_uiMostUInt16Lines) {
        Misuse(
            fmt::format("{} rows or columns do not fit a grid of uint16, which ends at {}; use --grid uint32",
                        uiMost, s_uiMostUInt16Lines));
    }
    return settings;
}

void CheckSize(const SynthSettingsC& settings, std::uint64_t ullMaxPoints)
{
    const std::uint64_t ullDirections = std::uint64_t{settings.uiRows} * settings.uiColumns;
    if (ullDirections <= ullMaxPoints) return;
    Misuse(fmt::format(
        "{} x {} directions may give more than the {} points of this format that fit a file's 4 GiB",
        settings.uiRows, settings.uiColumns, ullMaxPoints));
}

TallyT WriteScan(const SynthScannerC& scanner, const SynthSettingsC& settings, ScanWriterC& writer,
                 bool bQuiet)
{
    constexpr std::size_t batch = 10000;
    TallyT tally{};
    std::vector<ScanPointC> points;
    points.reserve(batch);
    const auto flush = [&] {
        writer.Write(points);
        points.clear();
    };
    ProgressC progress("simulating", std::uint64_t{settings.uiRows} * settings.uiColumns, bQuiet);
    ScanPointC point;
    for (std::uint32_t uiColumn = 0; uiColumn < settings.uiColumns; ++uiColumn) {
        for (std::uint32_t uiRow = 0; uiRow < settings.uiRows; ++uiRow) {
            const AnswerT eAnswer = scanner.Measure(uiRow, uiColumn, point);
            ++tally[static_cast<std::size_t>(eAnswer)];
            if (eAnswer == AnswerT::Point) points.push_back(point);
            if (points.size() == batch) flush();
            if (uiRow % 1024 == 0) StopIfInterrupted();
        }
        progress.Advance(settings.uiRows);
    }
    flush();
    return tally;
}

JsonT Summary(const OptionsC& options, const SynthSettingsC& settings, const SIO::QsbScanInfoC& info,
              const TallyT& tally)
{
    JsonT json = NewJsonDocument("synth");
    json["file"] = options.output;
    json["points"] = CountOf(tally, AnswerT::Point);
    json["rows"] = settings.uiRows;
    json["columns"] = settings.uiColumns;
    json["seed"] = settings.ullSeed;
    json["range_noise_mm"] = options.dRangeNoiseMm;
    json["without_point"] = {{"nothing_there", CountOf(tally, AnswerT::Nothing)},
                             {"too_weak", CountOf(tally, AnswerT::TooWeak)},
                             {"drop_out", CountOf(tally, AnswerT::DropOut)}};
    json["block"] = settings.oFormat.uiBlockId;
    json["elements"] = {{"position", options.position},
                        {"intensity", options.intensity},
                        {"noise", options.noise},
                        {"grid", options.grid},
                        {"color", options.color}};
    JsonT pose = JsonT::array();
    for (int i = 0; i < 16; ++i)
        pose.push_back(info.oTransformation.At(i / 4, i % 4));
    json["pose"] = pose;
    json["instrument_height"] = info.dInstrumentHeight;
    return json;
}

std::string Text(const OptionsC& options, const SynthSettingsC& settings, const TallyT& tally)
{
    return fmt::format("{}: {} points from {} rows x {} columns\n"
                       "  no point: {} nothing there, {} too weak, {} drop-outs\n",
                       options.output, CountOf(tally, AnswerT::Point), settings.uiRows, settings.uiColumns,
                       CountOf(tally, AnswerT::Nothing), CountOf(tally, AnswerT::TooWeak),
                       CountOf(tally, AnswerT::DropOut));
}

void WarnOfOneLine(const OptionsC& options, const SynthSettingsC& settings)
{
    if (options.bQuiet || settings.oFormat.uiGrid == 0 || (settings.uiRows > 1 && settings.uiColumns > 1))
        return;
    fmt::print(stderr,
               "{}: a grid of one line cannot be told from none in the file; readers will see no grid\n",
               options.output);
}

int Synth(const OptionsC& options)
{
    const SynthSettingsC settings = SettingsOf(options);
    const SynthScannerC scanner(settings);
    const SIO::QsbScanInfoC info = scanner.GetInfo();
    OutputFileC output(options.output, options.bOverwrite);
    ScanWriterC writer(output.GetTemporaryPath(), settings.oFormat, info);
    CheckSize(settings, writer.GetMaxPoints());
    const TallyT tally = WriteScan(scanner, settings, writer, options.bQuiet);
    writer.Finish();
    output.Commit();
    WarnOfOneLine(options, settings);
    if (options.bJson) {
        PrintJson(Summary(options, settings, info, tally));
    } else if (!options.bQuiet) {
        PrintResult(Text(options, settings, tally));
    }
    return s_iDone;
}

void AddElementOption(CLI::App& verb, const std::string& name, std::string& value, std::uint32_t uiKind,
                      const std::string& what)
{
    verb.add_option(name, value, what)->check(CLI::IsMember(EncodingNames(uiKind)))->capture_default_str();
}

} // namespace

void AddSynth(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<OptionsC>();
    CLI::App& verb = *app.add_subcommand("synth", "Write a simulated scan of a furnished room");
    verb.add_option("OUT", options->output, "QSB file to write")->required();
    CLI::Option* rows =
        verb.add_option("--rows", options->oSettings.uiRows, "Directions from below to above");
    CLI::Option* columns = verb.add_option("--columns", options->oSettings.uiColumns, "Directions around");
    for (CLI::Option* lines : {rows, columns})
        lines->check(CLI::Range(1u, s_uiMostLines))->capture_default_str();
    verb.add_option("--points", options->ullPoints, "About this many points: chooses rows and columns")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{400000000}))
        ->excludes(rows)
        ->excludes(columns);
    verb.add_option("--seed", options->oSettings.ullSeed, "Another number, another scan")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    verb.add_option("--range-noise", options->dRangeNoiseMm, "Deviation of ranges of middling strength, mm")
        ->check(CLI::Range(0.0, 1000.0))
        ->capture_default_str();
    AddElementOption(verb, "--position", options->position, SIO::PD_POSITION, "Encoding of positions");
    AddElementOption(verb, "--intensity", options->intensity, SIO::PD_INTENSITY, "Encoding of intensities");
    AddElementOption(verb, "--noise", options->noise, SIO::PD_LEVEL_OF_NOISE,
                     "Encoding of the level of noise");
    AddElementOption(verb, "--grid", options->grid, SIO::PD_GRID, "Encoding of rows and columns");
    AddElementOption(verb, "--color", options->color, SIO::PD_COLOR, "Encoding of colours");
    verb.add_option("--block", options->oSettings.oFormat.uiBlockId, "Identifier of the block of points")
        ->check(CLI::IsMember({SIO::QsbFormat::s_uiPointCloudId, SIO::QsbFormat::s_uiCountedPointCloudId}))
        ->capture_default_str();
    verb.add_flag("--overwrite", options->bOverwrite, "Replace OUT if it exists");
    verb.add_flag("--quiet", options->bQuiet, "Say nothing but errors");
    verb.add_flag("--json", options->bJson, "Print what was written as JSON");
    verb.footer(s_szFooter);
    verb.callback([options, &action] { action = [options] { return Synth(*options); }; });
}

} // namespace Tool
