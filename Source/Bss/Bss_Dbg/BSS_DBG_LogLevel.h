// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The levels of log lines, by number and by text.
#pragma once

#include <string_view>

namespace BSS::DBG {

// Not an enumeration: every log call takes a plain number, and texts in configuration name the same numbers.
inline constexpr int LEVEL_FATAL = 7;
inline constexpr int LEVEL_ERROR = 6;
inline constexpr int LEVEL_WARN = 5;
inline constexpr int LEVEL_INFO = 4;
inline constexpr int LEVEL_FINE = 3;
inline constexpr int LEVEL_FINER = 2;
inline constexpr int LEVEL_FINEST = 1;
inline constexpr int LEVEL_ALL = 0; ///< a threshold only: everything is logged

/// The level's text, for example "ERROR"; empty for any other number.
const char* LevelText(int level) noexcept;

/// Reads the level word at the beginning of the text and takes it away. What follows the word is not looked
/// at. False, and nothing changed, when there is none. Case matters.
bool TakeLevelWord(std::string_view& text, int& level) noexcept;

} // namespace BSS::DBG
