// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb check: says what is wrong with scan files, and what can still be read of them.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

void AddCheck(CLI::App& app, VerbActionT& action);

} // namespace Tool
