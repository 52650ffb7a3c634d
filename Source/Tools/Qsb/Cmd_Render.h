// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb render: makes a picture of a scan.
#pragma once

#include "Tools/Qsb/Tool_Verb.h"

namespace Tool {

/// Adds the verb to `app`; when it is chosen, `action` is what it does.
void AddRender(CLI::App& app, VerbActionT& action);

} // namespace Tool
