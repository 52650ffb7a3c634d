// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The timers of the process: one engine, number 0, started when the first timer is set and stopped by
// StopProcessTimerEngine or at the end of the process. Safe from any thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"

namespace BSS::TSK::Timer {

/// Started already, if the system has let it. A library stops it before it is unloaded.
TimerEngineC& GetProcessTimerEngine();
void StopProcessTimerEngine();

/// As TimerEngineC::setTimer and TimerEngineC::killTimer, on the process's engine.
std::uint32_t SetProcessTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                              std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs);
ResultCodeT KillProcessTimer(std::uint32_t timerId);

} // namespace BSS::TSK::Timer
