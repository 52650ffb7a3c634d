// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <cstddef>
#include <iterator>

namespace BSS::DBG {

const char* LevelText(int level) noexcept
{
    static constexpr const char* TEXTS[] = {"", "FINEST", "FINER", "FINE", "INFO", "WARN", "ERROR", "FATAL"};
    return level >= 0 && level < static_cast<int>(std::size(TEXTS)) ? TEXTS[static_cast<std::size_t>(level)]
                                                                    : "";
}

} // namespace BSS::DBG
