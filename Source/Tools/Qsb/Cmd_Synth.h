// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb synth: writes a simulated scan.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

/// Adds the verb to `app`; when it is chosen, `action` is what it does.
void AddSynth(CLI::App& app, VerbActionT& action);

} // namespace Tool
