// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_SysPanicHandler.h"

namespace BSS::ERR {

SysPanicHandlerI::~SysPanicHandlerI() = default;

bool SysPanicHandlerI::Assert(const char*, std::uint32_t, std::uint32_t, const char*, std::int32_t)
{
    return true;
}

bool SysPanicHandlerI::Query(std::uint32_t, std::uint32_t)
{
    return false;
}

void SysPanicHandlerI::SetAssertEnabled(bool) {}

} // namespace BSS::ERR
