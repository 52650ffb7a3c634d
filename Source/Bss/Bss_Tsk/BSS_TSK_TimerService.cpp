// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimerService.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"

namespace BSS::TSK::Timer {

namespace {

TimerEngineC& Engine()
{
    struct HolderC
    {
        HolderC()
        {
            // Made first, so that they are there for the engine's last reports.
            static_cast<void>(DBG::DbgLogMgrC::instance());
            static_cast<void>(ERR::GetPanicHandlerRegistry());
        }
        ~HolderC() { engine.stop(); }
        TimerEngineC engine;
    };
    static HolderC holder;
    return holder.engine;
}

} // namespace

TimerEngineC& GetProcessTimerEngine()
{
    TimerEngineC& engine = Engine();
    if (!engine.isRunning()) engine.start(0);
    return engine;
}

void StopProcessTimerEngine()
{
    Engine().stop();
}

std::uint32_t SetProcessTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                              std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs)
{
    return GetProcessTimerEngine().setTimer(periodMs, resolutionMs, target, user, flags, firstDelayMs);
}

ResultCodeT KillProcessTimer(std::uint32_t timerId)
{
    return Engine().killTimer(timerId);
}

} // namespace BSS::TSK::Timer
