// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Options, and the files one after another.
#include "Tools/Qsb/Cmd_Check.h"

#include "Tools/Qsb/Tool_CheckReport.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Progress.h"
#include "Tools/Qsb/Tool_ScanCheck.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <vector>

namespace Tool {

namespace {

struct CheckOptionsC
{
    std::vector<std::string> vecFiles;
    bool bDeep = false;
    bool bJson = false;
    bool bQuiet = false;
};

constexpr char s_szFooter[] = R"(Examples:
  qsb check scan.qsb              every rule of the format, without the points
  qsb check --deep *.qsb          decodes every point as well
  qsb check --json scan.qsb | jq '.files[].findings[].id'

Exit code: 0 no errors, 1 a file could not be opened or read, 3 a file is damaged;
with several files the largest. What each id means: Docs/check-findings.md)";

ScanCheckC CheckFile(const std::string& path, const CheckOptionsC& options)
{
    FileInputC input(path);
    // The points are most of a file, and a deep check passes them twice.
    ProgressC progress("checking " + path, input.GetSize() * (options.bDeep ? 2 : 1), options.bQuiet);
    return CheckScan(input, options.bDeep, [&](std::uint64_t ullBytes) {
        StopIfInterrupted();
        progress.Advance(ullBytes);
    });
}

JsonT UnreadableJson(const std::string& path, const std::string& reason)
{
    JsonT json;
    json["file"] = path;
    json["status"] = "unreadable";
    json["reason"] = reason;
    return json;
}

int RunCheck(const CheckOptionsC& options)
{
    JsonT document = NewJsonDocument("check");
    document["deep"] = options.bDeep;
    document["files"] = JsonT::array();
    int iExitCode = s_iDone;
    for (const std::string& path : options.vecFiles) {
        try {
            const ScanCheckC check = CheckFile(path, options);
            if (options.bJson) {
                document["files"].push_back(CheckJson(path, check));
            } else {
                PrintResult(CheckText(path, check, options.bQuiet));
            }
            if (check.oFindings.HasErrors()) iExitCode = s_iDamaged;
        } catch (const ToolErrorC& error) {
            // The other files are checked all the same.
            if (error.GetExitCode() != s_iFailed) throw;
            fmt::print(stderr, "qsb: {}\n", error.what());
            if (options.bJson) document["files"].push_back(UnreadableJson(path, error.what()));
            iExitCode = std::max<int>(iExitCode, s_iFailed);
        }
    }
    if (options.bJson) PrintJson(document);
    return iExitCode;
}

} // namespace

void AddCheck(CLI::App& app, VerbActionT& action)
{
    auto options = std::make_shared<CheckOptionsC>();
    CLI::App* verb =
        app.add_subcommand("check", "Say what is wrong with scan files and what can still be read");
    verb->add_option("FILE", options->vecFiles, "QSB files")->required();
    verb->add_flag("--deep", options->bDeep, "Decode every point as well");
    verb->add_flag("--json", options->bJson, "Print the result as JSON");
    verb->add_flag("--quiet", options->bQuiet, "Print errors only, and no progress");
    verb->footer(s_szFooter);
    verb->callback([options, &action] { action = [options] { return RunCheck(*options); }; });
}

} // namespace Tool
