// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How the sources of command tasks log, with one load and a branch where a level is off, and how they call
// what belongs to others. For those sources only.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"

#include <boost/thread/exceptions.hpp>
#include <exception>

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

template<typename ActionT>
void CommandCoreC::Guarded(const char* pszWhat, const ActionT& action) const
{
    try {
        action();
    } catch (const boost::thread_interrupted&) {
        throw;
    } catch (const std::exception& error) {
        Log(DBG::LEVEL_ERROR, "[BSS::TSK::CommandTaskC] exception in %s: %s\n", pszWhat, error.what());
    } catch (...) {
        Log(DBG::LEVEL_ERROR, "[BSS::TSK::CommandTaskC] unknown exception in %s\n", pszWhat);
    }
}

} // namespace BSS::TSK
