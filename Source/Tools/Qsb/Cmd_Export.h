// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb export: writes the points of a scan file in another form, and tells what became of each field.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

void AddExport(CLI::App& app, VerbActionT& action);

} // namespace Tool
