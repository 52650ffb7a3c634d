// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_WakeUp.h"

namespace BSS::TSK::Timer {

EventC& GetWakeUpRequestedEvent()
{
    // Never destroyed: engines may run until the very end.
    static auto* const event = new EventC(HAL::ResetMode::Manual, false, L"WakeUpRequested");
    return *event;
}

} // namespace BSS::TSK::Timer
