// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// All that is configured about log consumers, by the program and by the file "logging.conf" of the
// configuration directory. Of two lines for one consumer the later one counts; the lines of the file are
// those of its last reading, and one that is not in it any more does not count any more. One thread at a
// time; throws std::bad_alloc only.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConfigLine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace BSS::DBG {

/// A line of the file that is not as it should be.
struct LogConfigFaultT
{
    std::size_t line = 0; ///< its number, from 1
    bool bInPart = false; ///< its beginning counts; else none of it does

    bool operator==(const LogConfigFaultT&) const = default;
};

class LogConfigurationC
{
public:
    /// Remembers what a line of the program sets.
    void Add(const LogConfigLineT& line);

    /// Forgets the lines of the file and reads them anew from its text. Lines of the program for the same
    /// consumers count again when the file is read without them. What is wrong, in the order of the lines.
    std::vector<LogConfigFaultT> ReplaceFile(std::string_view text);

    /// What is set for a consumer: its own line, else that of all; null when there is neither.
    const LogSettingsT* Find(const std::string& consumer) const;

    /// Whether a consumer has a line of its own.
    bool HasOwn(const std::string& consumer) const { return FindLine(consumer) != nullptr; }

private:
    using LinesT = std::map<std::string, LogSettingsT>;

    const LogSettingsT* FindLine(const std::string& consumer) const;

    LinesT m_ofProgram;
    LinesT m_ofFile; // these count first: what the program says later is taken out of them
};

/// What came of reading the file. One that is not there is an empty one.
enum class LogConfigFileState
{
    Read,
    TooLarge, ///< more than MAX_LOG_CONFIG_BYTES
    Unreadable
};

inline constexpr std::uint64_t MAX_LOG_CONFIG_BYTES = 1 << 20;

struct LogConfigFileT
{
    LogConfigFileState state = LogConfigFileState::Read;
    std::string text; ///< empty unless it was read
};

/// Where the file is looked for: in the directory that the path map names. Empty when there is no
/// configuration directory.
std::wstring LogConfigurationFile();

LogConfigFileT ReadLogConfigurationFile();

} // namespace BSS::DBG
