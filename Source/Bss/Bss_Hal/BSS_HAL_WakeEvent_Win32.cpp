// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The event is the system's own; the opaque pointer is its handle.
#include "Bss/Bss_Hal/BSS_HAL_WakeEvent.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

WakeEvent* OpenWakeEvent() noexcept
{
    if (TakeFault(FaultT::LockEvent)) return nullptr;
    return static_cast<WakeEvent*>(static_cast<void*>(CreateEventW(nullptr, FALSE, FALSE, nullptr)));
}

void SignalWakeEvent(WakeEvent* event) noexcept
{
    SetEvent(event);
}

void AwaitWakeEvent(WakeEvent* event) noexcept
{
    WaitForSingleObject(event, INFINITE);
}

void CloseWakeEvent(WakeEvent* event) noexcept
{
    if (event != nullptr) CloseHandle(event);
}

} // namespace BSS::HAL
