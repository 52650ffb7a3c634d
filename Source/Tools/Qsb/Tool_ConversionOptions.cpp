// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Flags, refusal, report.
#include "Tools/Qsb/Tool_ConversionOptions.h"

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Json.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fmt/format.h>

namespace Tool {

void AddConversionFlags(CLI::App& verb, ConversionOptionsC& options)
{
    verb.add_flag("--strict", options.bStrict, "Refuse to lose anything: no output then, exit code 1");
    verb.add_flag("--overwrite", options.bOverwrite, "Replace an existing output");
    verb.add_flag("--json", options.bJson, "Print the report as JSON");
    verb.add_flag("--quiet", options.bQuiet, "Print nothing but losses and errors, to stderr");
}

void RefuseLoss(const ConversionOptionsC& options, const ConversionReportC& report)
{
    if (!options.bStrict || report.IsLossless()) return;
    std::string text = fmt::format("{}: not written, because --strict refuses loss\n", options.strOutput);
    text += report.GetLossText("  ");
    text.pop_back(); // Whoever prints it ends the line.
    throw ToolErrorC(s_iFailed, text);
}

void PrintConversion(const ConversionOptionsC& options, const ConversionReportC& report)
{
    if (options.bJson) {
        PrintJson(report.GetJson());
    } else if (options.bQuiet) {
        fmt::print(stderr, "{}", report.GetLossText(fmt::format("qsb: {}: ", options.strOutput)));
    } else {
        PrintResult(report.GetText());
    }
}

} // namespace Tool
