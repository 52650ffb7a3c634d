// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Threads cannot be cancelled here.
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"

namespace BSS::HAL {

NoCancellation::NoCancellation() noexcept = default;

NoCancellation::~NoCancellation()
{
    static_cast<void>(m_state);
}

void NoCancellation::End()
{
    m_ended = true;
}

} // namespace BSS::HAL
