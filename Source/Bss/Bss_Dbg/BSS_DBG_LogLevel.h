// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The levels of log lines, by number and by text.
#pragma once

namespace BSS::DBG {

// Not an enumeration: every log call takes a plain number, and texts in configuration name the same numbers.
inline constexpr int LEVEL_FATAL = 7;
inline constexpr int LEVEL_ERROR = 6;
inline constexpr int LEVEL_WARN = 5;
inline constexpr int LEVEL_INFO = 4;
inline constexpr int LEVEL_FINE = 3;
inline constexpr int LEVEL_FINER = 2;
inline constexpr int LEVEL_FINEST = 1;

/// The level's text, for example "ERROR"; empty for any other number.
const char* LevelText(int level) noexcept;

} // namespace BSS::DBG
