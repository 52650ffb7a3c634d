// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The platform's flag, as an exception.
#include "Tools/Qsb/Tool_Interrupt.h"

#include "Bss/Bss_Hal/BSS_HAL_Console.h"
#include "Tools/Qsb/Tool_Error.h"

namespace Tool {

void CatchInterrupts()
{
    BSS::HAL::InstallInterruptFlag();
}

void StopIfInterrupted()
{
    if (BSS::HAL::InterruptRequested()) throw ToolErrorC(s_iInterrupted, "interrupted; nothing was written");
}

} // namespace Tool
