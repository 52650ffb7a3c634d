// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_WakeUp.h"

namespace BSS::TSK::Timer {

EventC& GetWakeUpRequestedEvent()
{
    static EventC event(HAL::ResetMode::Manual, false, L"WakeUpRequested");
    return event;
}

} // namespace BSS::TSK::Timer
