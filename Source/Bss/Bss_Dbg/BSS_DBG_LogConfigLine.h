// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One line of log configuration: which consumer, and what is set there.
//
//     name = LEVEL [PREFIX-KIND [SIZE [COUNT]]]
//
// The name is that of a consumer, or * for all that have no line of their own. SIZE counts KiB and is how
// large its file may grow (0: without limit), COUNT is how many older files are kept. Empty lines and lines
// that begin with '#' or ';' say nothing. Safe from any thread; throws std::bad_alloc only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace BSS::DBG {

/// What a line sets. Numbers that it does not give are left as they are.
struct LogSettingsT
{
    int level = 0;
    std::optional<std::int32_t> prefixKind;
    std::optional<std::uint32_t> limitKib;
    std::optional<std::uint32_t> nOlderFiles;

    bool operator==(const LogSettingsT&) const = default;
};

struct LogConfigLineT
{
    std::string consumer;
    LogSettingsT settings;
    std::string notUnderstood; ///< where the reading ended too early: the rest of the line
};

/// Stands for all consumers without a line of their own.
inline constexpr char EVERY_CONSUMER[] = "*";

/// Reads the part behind the equals sign: a level word and up to three numbers, white space before each. The
/// first thing that is no such number ends the reading; a number that its 32 bits do not hold is none.
/// Nothing when there is no level word.
std::optional<LogSettingsT> ParseLogSettings(std::string_view text);

/// True for a line that says nothing.
bool IsEmptyLogConfigLine(std::string_view line) noexcept;

/// Reads a line. Nothing when it has no name, no equals sign or no level word.
std::optional<LogConfigLineT> ParseLogConfigLine(std::string_view line);

} // namespace BSS::DBG
