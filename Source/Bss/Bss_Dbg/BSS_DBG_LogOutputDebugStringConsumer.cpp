// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogOutputDebugStringConsumer.h"

#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

#include <utility>

namespace BSS::DBG {

DbgLogOutputDebugStringConsumerC::DbgLogOutputDebugStringConsumerC(std::string name)
    : DbgLogConsumerC(std::move(name), PrefixKind::Time)
{}

DbgLogOutputDebugStringConsumerC::~DbgLogOutputDebugStringConsumerC() = default;

bool DbgLogOutputDebugStringConsumerC::write(std::string_view lines)
{
    HAL::DebugOutput(HAL::WideFromUtf8(lines).c_str());
    return true;
}

} // namespace BSS::DBG
