// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// All that is configured about log consumers: what each line said last. Reads the file "logging.conf" of the
// configuration directory. One thread at a time; throws std::bad_alloc only.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConfigLine.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace BSS::DBG {

class LogConfigurationC
{
public:
    /// Remembers what the line sets. A line that says nothing is fine; false when it cannot be read.
    [[nodiscard]] bool Add(std::string_view line);

    /// Reads every line of a text. The numbers, from 1, of those that cannot be read; the others count.
    std::vector<std::size_t> AddText(std::string_view text);

    /// What is set for a consumer: its own line, else that of all; null when there is neither.
    const LogSettingsT* Find(const std::string& consumer) const;

private:
    std::map<std::string, LogSettingsT> m_settings;
};

/// Where the file is looked for; empty when there is no configuration directory.
std::wstring LogConfigurationFile();

/// The file's text; empty when there is none, and when it is larger than a megabyte.
std::string ReadLogConfigurationFile();

} // namespace BSS::DBG
