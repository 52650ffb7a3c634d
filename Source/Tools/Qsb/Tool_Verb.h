// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How a verb joins the command: it adds its subcommand with its options and examples, and what to do once the
// command line has been read. One Add function per verb, one file per verb.
#pragma once

#include <functional>

namespace CLI {
class App;
} // namespace CLI

namespace Tool {

/// Does the work of the chosen verb and returns the exit code; failures may be thrown as ToolErrorC.
using VerbActionT = std::function<int()>;

} // namespace Tool
