// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// For a process whose crash is part of a test.
#pragma once

namespace Support {

/// When this process crashes the system leaves no file, shows no window and calls no debugger.
void CrashQuietly();

} // namespace Support
