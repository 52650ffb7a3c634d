// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb info: says what a scan file holds.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

void AddInfo(CLI::App& app, VerbActionT& action);

} // namespace Tool
