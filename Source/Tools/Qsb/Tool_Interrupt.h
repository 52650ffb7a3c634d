// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Ctrl-C and termination signals. The first one only sets a flag, which verbs look at once per batch; what
// they have begun is undone by their destructors on the way out. A second one ends the process at once. Safe
// from any thread.
#pragma once

namespace Tool {

/// From now on interrupts set the flag. For main.
void CatchInterrupts();

/// Throws ToolErrorC with s_iInterrupted once an interrupt has come. Call it at least several times a second
/// in any work that may take longer.
void StopIfInterrupted();

} // namespace Tool
