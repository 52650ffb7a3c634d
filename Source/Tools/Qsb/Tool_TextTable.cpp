// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Widths, then lines.
#include "Tools/Qsb/Tool_TextTable.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

std::string TextTableC::ToText(const std::string& indent) const
{
    std::vector<std::size_t> widths(m_strAlignment.size(), 0);
    for (const auto& row : m_vecRows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const auto& row : m_vecRows) {
        std::string line = indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i != 0) line += "  ";
            line += m_strAlignment[i] == 'r' ? fmt::format("{:>{}}", row[i], widths[i])
                                             : fmt::format("{:<{}}", row[i], widths[i]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace Tool
