// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A write that fails says so here, and no more.
#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"

namespace BSS::HAL {

void RunWithoutWriteSignals(void (*call)(void* context), void* context)
{
    call(context);
}

} // namespace BSS::HAL
