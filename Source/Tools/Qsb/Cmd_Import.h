// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb import: makes a scan file from points in another form, and tells what became of each field.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

void AddImport(CLI::App& app, VerbActionT& action);

} // namespace Tool
