// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The debugger output: the last place a text can go when nothing else works. It needs no logger, no lock of
// ours above this floor and no start-up, and it never throws. On Windows the debugger shows it; on Linux it
// is silent unless the environment variable SCANREADER_DEBUG_OUTPUT is "stderr". Safe from any thread.
#pragma once

namespace BSS::HAL {

/// Receives debugger output. `context` is what was given together with the function.
using DebugOutputSink = void (*)(const wchar_t* text, void* context);

/// Sends `text` to the sink if one is set, otherwise to the system; null is shown as "(null)". Texts from
/// several threads do not mix. A text that the sink itself sends is dropped.
void DebugOutput(const wchar_t* text) noexcept;

/// Sets the sink that receives all further debugger output; null gives it back to the system. When this
/// returns, the sink that was set before is not running any more, unless it is the one that called. Not
/// owned.
void SetDebugOutputSink(DebugOutputSink sink, void* context) noexcept;

/// The system's half of DebugOutput; nothing else calls it.
void SystemDebugOutput(const wchar_t* text) noexcept;

} // namespace BSS::HAL
