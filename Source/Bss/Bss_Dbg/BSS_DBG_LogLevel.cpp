// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <cstddef>
#include <iterator>

namespace BSS::DBG {

namespace {

struct LevelWordT
{
    std::string_view word;
    int level;
};

// The order matters: the first word that the text begins with counts, and FINE begins two others.
constexpr LevelWordT WORDS[] = {
    {"FATAL", LEVEL_FATAL},   {"ERROR", LEVEL_ERROR}, {"WARN", LEVEL_WARN}, {"INFO", LEVEL_INFO},
    {"FINEST", LEVEL_FINEST}, {"FINER", LEVEL_FINER}, {"FINE", LEVEL_FINE}, {"ALL", LEVEL_ALL},
};

} // namespace

const char* LevelText(int level) noexcept
{
    static constexpr const char* TEXTS[] = {"", "FINEST", "FINER", "FINE", "INFO", "WARN", "ERROR", "FATAL"};
    return level >= 0 && level < static_cast<int>(std::size(TEXTS)) ? TEXTS[static_cast<std::size_t>(level)]
                                                                    : "";
}

bool TakeLevelWord(std::string_view& text, int& level) noexcept
{
    for (const LevelWordT& each : WORDS) {
        if (!text.starts_with(each.word)) continue;
        text.remove_prefix(each.word.size());
        level = each.level;
        return true;
    }
    return false;
}

} // namespace BSS::DBG
