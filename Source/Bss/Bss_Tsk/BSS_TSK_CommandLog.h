// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How the sources of command tasks log: one load and a branch where a level is off. For those sources only.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"

namespace BSS::TSK {

inline bool CommandCoreC::IsLogged(int level) const noexcept
{
    return logger != nullptr && logger->isEnabled(level);
}

template<typename... Arguments>
void CommandCoreC::Log(int level, const char* format, const Arguments&... arguments) const
{
    if (IsLogged(level)) logger->Log(level, format, arguments...);
}

} // namespace BSS::TSK
