// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Through the C stream, so that lines stand in the right place between what the program itself prints.
#include "Bss/Bss_Dbg/BSS_DBG_LogPrintfConsumer.h"

#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"

#include <cstdio>
#include <utility>

namespace BSS::DBG {

DbgLogPrintfConsumerC::DbgLogPrintfConsumerC(std::string name)
    : DbgLogConsumerC(std::move(name), PrefixKind::Full)
{}

DbgLogPrintfConsumerC::~DbgLogPrintfConsumerC() = default;

bool DbgLogPrintfConsumerC::write(std::string_view lines)
{
    bool written = false;
    HAL::WithoutWriteSignals([&] {
        written = std::fwrite(lines.data(), 1, lines.size(), stdout) == lines.size();
        written = std::fflush(stdout) == 0 && written;
    });
    return written;
}

} // namespace BSS::DBG
