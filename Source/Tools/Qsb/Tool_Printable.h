// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Text from a file, for a message: short, and without bytes that a terminal would obey.
#pragma once

#include <string>
#include <string_view>

namespace Tool {

/// At most 60 characters; what is not printable ASCII becomes '?'.
inline std::string Printable(std::string_view text)
{
    constexpr std::size_t nLongest = 60;
    std::string printable(text.substr(0, nLongest));
    for (char& c : printable) {
        if (c < ' ' || c > '~') c = '?';
    }
    if (text.size() > nLongest) printable += "...";
    return printable;
}

} // namespace Tool
