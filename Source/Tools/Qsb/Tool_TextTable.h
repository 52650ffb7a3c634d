// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Rows of text with columns as wide as their widest cell, for people to read.
#pragma once

#include <string>
#include <vector>

namespace Tool {

class TextTableC
{
public:
    /// One letter per column: 'l' left, 'r' right. Every row has as many cells, or fewer.
    explicit TextTableC(const std::string& alignment) : m_strAlignment(alignment) {}

    void AddRow(std::vector<std::string> cells) { m_vecRows.push_back(std::move(cells)); }

    /// The rows, each after `indent` and without blanks at its end. Two blanks stand between columns.
    std::string ToText(const std::string& indent) const;

private:
    std::string m_strAlignment;
    std::vector<std::vector<std::string>> m_vecRows;
};

} // namespace Tool
