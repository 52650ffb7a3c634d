// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lines that tell whether they are whole: who wrote them, their number, and a sum over both.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace Support {

inline std::uint32_t SumOf(const std::string& text)
{
    std::uint32_t sum = 2166136261u;
    for (const char character : text)
        sum = (sum ^ static_cast<unsigned char>(character)) * 16777619u;
    return sum;
}

/// "<name> <number> some words ... <sum>"
inline std::string CheckedLine(const std::string& name, unsigned number)
{
    const std::string text = BSS::UTI::Format("%s %u some words of a usual length", name, number);
    return BSS::UTI::Format("%s %08x", text, SumOf(text));
}

/// The number of the line if it is one of that name and whole behind whatever prefix; -1 if not.
inline long NumberOf(const std::string& line, const std::string& name)
{
    const std::size_t begin = line.find(" INFO " + name + " ");
    if (begin == std::string::npos) return -1;
    const std::string text = line.substr(begin + 6);
    const long number = std::atol(text.c_str() + name.size() + 1);
    return text == CheckedLine(name, static_cast<unsigned>(number)) ? number : -1;
}

/// The text of a log file without the spaces that its lines are filled up with.
inline std::string WithoutFilling(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\n')
            while (!result.empty() && result.back() == ' ')
                result.pop_back();
        result += character;
    }
    return result;
}

/// Whether lines end where each page of the file does.
inline bool PagesEndWithLines(const std::string& file)
{
    constexpr std::size_t PAGE = 4096;
    for (std::size_t at = PAGE; at <= file.size(); at += PAGE)
        if (file[at - 1] != '\n') return false;
    return true;
}

/// The lines of a log file, without what they are filled up with. A last one without its end counts as a
/// line too.
inline std::vector<std::string> LinesOf(const std::string& file)
{
    const std::string text = WithoutFilling(file);
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

} // namespace Support
