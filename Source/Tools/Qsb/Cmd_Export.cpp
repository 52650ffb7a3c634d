// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The options of qsb export, and the loop from file to sink.
#include "Tools/Qsb/Cmd_Export.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Tools/Qsb/Tool_ConversionOptions.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_FileKind.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_PointSink.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanExport.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <memory>

namespace Tool {

namespace {

constexpr char s_szFooter[] = R"(Examples:
  qsb export room.qsb room.ply
  qsb export room.qsb room.csv           room.csv.json has the pose and the grid
  qsb export room.qsb room.json          the raw form: room.json and room.bin
  qsb export --apply-pose room.qsb world.ply

Positions are written as they are stored, with the pose beside them. A scan whose data is
torn is exported as far as it can be read, and the exit code is 3.

Exit code: 0 done, 1 failed or loss refused, 2 usage, 3 the input is damaged.)";

struct ExportOptionsC
{
    ConversionOptionsC oCommon;
    std::string strFormat = "auto";
    std::string strPosition = "auto";
    bool bApplyPose = false;
};

using OutputsT = std::vector<std::unique_ptr<OutputFileC>>;

FileKindT KindOf(const ExportOptionsC& options)
{
    if (options.strFormat == "ply") return FileKindT::Ply;
    if (options.strFormat == "csv") return FileKindT::Csv;
    if (options.strFormat == "raw") return FileKindT::Raw;
    const FileKindT eKind = FileKindOf(options.oCommon.strOutput);
    if (eKind != FileKindT::Unknown) return eKind;
    throw ToolErrorC(
        s_iUsage,
        fmt::format("{}: its name tells no form; end it in .ply, .csv, .json or .bin, or use --format",
                    options.oCommon.strOutput));
}

/// The points first, so that a header or sidecar never names points that are not there.
std::vector<std::string> TargetsOf(FileKindT eKind, const std::string& output)
{
    if (eKind == FileKindT::Ply) return {output};
    if (eKind == FileKindT::Csv) return {output, output + ".json"};
    const auto [header, data] = RawPaths(output);
    return {data, header};
}

std::string ScanName(const std::string& output)
{
    const auto path = BSS::HAL::FilesystemPath(BSS::HAL::WidePath(output)).stem();
    return BSS::HAL::NarrowPath(BSS::HAL::WidePathOf(path));
}

std::unique_ptr<PointSinkI> MakeSink(FileKindT eKind, const OutputsT& outputs, const RawHeaderC& header,
                                     const std::string& name)
{
    if (eKind == FileKindT::Ply) return MakePlySink(*outputs[0], header);
    if (eKind == FileKindT::Csv) return MakeCsvSink(*outputs[0], *outputs[1], header, name);
    return MakeRawSink(*outputs[0], *outputs[1], header, name);
}

ConversionReportC ReportOf(const ExportOptionsC& options, const ScanReaderC& reader, const ScanExportC& scan)
{
    ConversionReportC report("export", options.oCommon.strInput, options.oCommon.strOutput);
    report.SetPoints(scan.GetHeader().ullPoints, reader.GetNumberOfPoints());
    scan.AddTo(report);
    return report;
}

[[noreturn]] void TellTorn(const ExportOptionsC& options, const ScanReaderC& reader, const ScanExportC& scan)
{
    throw ToolErrorC(s_iDamaged,
                     fmt::format("{}: the data is torn; {} of {} points are readable, {}",
                                 options.oCommon.strInput, scan.GetHeader().ullPoints,
                                 reader.GetNumberOfPoints(),
                                 options.oCommon.bStrict ? "nothing was written" : "these were exported"));
}

int Export(const ExportOptionsC& options)
{
    const FileKindT eKind = KindOf(options);
    OutputsT outputs;
    for (const std::string& target : TargetsOf(eKind, options.oCommon.strOutput)) {
        outputs.push_back(std::make_unique<OutputFileC>(target, options.oCommon.bOverwrite,
                                                        std::vector<std::string>{options.oCommon.strInput}));
    }
    ScanReaderC reader(options.oCommon.strInput);
    ScanExportC scan(reader, {options.bApplyPose, TypeNamed(options.strPosition)});
    if (options.oCommon.bStrict && scan.IsTorn()) TellTorn(options, reader, scan);
    RefuseLoss(options.oCommon, ReportOf(options, reader, scan));

    const auto poSink = MakeSink(eKind, outputs, scan.GetHeader(), ScanName(options.oCommon.strOutput));
    ProgressC progress("exporting", scan.GetHeader().ullPoints, options.oCommon.bQuiet);
    while (const std::size_t nPoints = scan.Forward(*poSink)) {
        progress.Advance(nPoints);
        StopIfInterrupted();
    }
    poSink->Finish();
    const ConversionReportC report = ReportOf(options, reader, scan);
    RefuseLoss(options.oCommon, report);
    for (const auto& poOutput : outputs)
        poOutput->Commit();
    PrintConversion(options.oCommon, report);
    if (scan.IsTorn()) TellTorn(options, reader, scan);
    return s_iDone;
}

} // namespace

void AddExport(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<ExportOptionsC>();
    CLI::App& verb = *app.add_subcommand("export", "Write a scan's points as PLY, CSV or in the raw form");
    verb.add_option("IN", options->oCommon.strInput, "Scan file")->required();
    verb.add_option("OUT", options->oCommon.strOutput,
                    "File to write: .ply, .csv, or .json or .bin of the raw form")
        ->required();
    verb.add_option("--format", options->strFormat, "Form to write, whatever the name says")
        ->check(CLI::IsMember({"auto", "ply", "csv", "raw"}))
        ->capture_default_str();
    verb.add_option("--position", options->strPosition, "Type of positions; auto: as they are stored")
        ->check(CLI::IsMember({"auto", "float", "double"}))
        ->capture_default_str();
    verb.add_flag("--apply-pose", options->bApplyPose, "Map positions by the pose, in double precision");
    AddConversionFlags(verb, options->oCommon);
    verb.footer(s_szFooter);
    verb.callback([options, &action] { action = [options] { return Export(*options); }; });
}

} // namespace Tool
