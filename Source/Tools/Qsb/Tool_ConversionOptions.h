// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the verbs that convert have in common: their options, and how they tell what became of the scan.
#pragma once

#include "Tools/Qsb/Tool_Report.h"

#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace Tool {

struct ConversionOptionsC
{
    std::string strInput;
    std::string strOutput;
    bool bOverwrite = false;
    bool bStrict = false;
    bool bJson = false;
    bool bQuiet = false;
};

/// Adds the flags; the verb adds the two files itself.
void AddConversionFlags(CLI::App& verb, ConversionOptionsC& options);

/// With --strict, throws ToolErrorC with s_iFailed and every loss when there is one.
void RefuseLoss(const ConversionOptionsC& options, const ConversionReportC& report);

/// Prints the report to stdout: as JSON, or as text unless quiet is wanted; losses are told on stderr then.
void PrintConversion(const ConversionOptionsC& options, const ConversionReportC& report);

} // namespace Tool
