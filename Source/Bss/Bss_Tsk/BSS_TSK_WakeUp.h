// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The application's word that the system is awake again: the manual-reset event "WakeUpRequested", which
// timer engines wait for when they are told to. Whoever resets it before the system goes to sleep sets it
// afterwards. Safe from any thread. On Windows other processes find the event by its name.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Event.h"

namespace BSS::TSK::Timer {

/// Reset at first. Throws SysServiceErrorC, once, when the system has no event to give.
EventC& GetWakeUpRequestedEvent();

} // namespace BSS::TSK::Timer
