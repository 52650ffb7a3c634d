// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Runs a verb inside the test process, for tests that run one hundreds of times.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

namespace Support {

/// The verb's exit code; what it throws comes through.
inline int RunVerb(void (*add)(CLI::App&, Tool::VerbActionT&), std::vector<std::string> arguments)
{
    CLI::App app;
    app.allow_windows_style_options(false); // as the command does
    Tool::VerbActionT action;
    add(app, action);
    std::reverse(arguments.begin(), arguments.end()); // The parser takes them from the back.
    app.parse(arguments);
    return action();
}

} // namespace Support
