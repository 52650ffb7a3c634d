// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Options, and the one file. A damaged one is described as far as it can be read, and then named damaged.
#include "Tools/Qsb/Cmd_Info.h"

#include "Tools/Qsb/Tool_CheckReport.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_InfoReport.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanCheck.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <memory>
#include <string>

namespace Tool {

namespace {

struct InfoOptionsC
{
    std::string strFile;
    std::uint64_t ullBlocks = 100;
    bool bStatistics = false;
    bool bJson = false;
    bool bQuiet = false;
};

constexpr char s_szFooter[] = R"(Examples:
  qsb info scan.qsb               what the headers say
  qsb info --stats scan.qsb       and what the points really are
  qsb info --json scan.qsb | jq .scan.points

Exit code: 0 done, 1 the file could not be opened or read, 3 the file is damaged;
what could be read of it is printed all the same.)";

int RunInfo(const InfoOptionsC& options)
{
    FileInputC input(options.strFile);
    ProgressC progress("reading " + options.strFile, input.GetSize() * (options.bStatistics ? 2 : 1),
                       options.bQuiet);
    const ScanCheckC check = CheckScan(input, options.bStatistics, [&](std::uint64_t ullBytes) {
        StopIfInterrupted();
        progress.Advance(ullBytes);
    });
    if (options.bJson) {
        PrintJson(InfoJson(options.strFile, check, options.ullBlocks));
    } else {
        PrintResult(InfoText(options.strFile, check, options.ullBlocks));
    }
    if (!check.oFindings.HasErrors()) return s_iDone;
    const FindingC& first = check.oFindings.GetKept().front();
    throw ToolErrorC(
        s_iDamaged, fmt::format("{}: damaged, {}; qsb check says more", options.strFile, FindingLine(first)));
}

} // namespace

void AddInfo(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<InfoOptionsC>();
    CLI::App* verb = app.add_subcommand("info", "Say what a scan file holds");
    verb->add_option("FILE", options->strFile, "QSB file")->required();
    verb->add_flag("--stats", options->bStatistics, "Read the points and say what they really are");
    verb->add_option("--blocks", options->ullBlocks, "List at most so many blocks")->capture_default_str();
    verb->add_flag("--json", options->bJson, "Print the result as JSON");
    verb->add_flag("--quiet", options->bQuiet, "Show no progress");
    verb->footer(s_szFooter);
    verb->callback([options, &action] { action = [options] { return RunInfo(*options); }; });
}

} // namespace Tool
