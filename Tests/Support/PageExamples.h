// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The examples of a page of the documentation, so that a test can hold them against what the code does. Only
// for executables that define SCANREADER_DOCS.
#pragma once

#include "Support/Files.h"
#include "Support/LogLines.h"

#include <string>
#include <vector>

namespace Support {

/// A page's text.
inline std::string PageText(const std::string& page)
{
    return ReadAll(std::string(SCANREADER_DOCS) + "/" + page);
}

/// The lines of all blocks that are marked as being of that kind, one after the other.
inline std::vector<std::string> ExamplesOf(const std::string& page, const std::string& kind)
{
    const std::string text = PageText(page);
    const std::string begin = "\n```" + kind + "\n";
    std::string examples;
    for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at + 1)) {
        const std::size_t first = at + begin.size();
        examples += text.substr(first, text.find("```", first) - first);
    }
    return LinesOf(examples);
}

} // namespace Support
