// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/EndProcess.h"

#include <windows.h>

namespace Support {

void EndProcess(int exitCode) noexcept
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    for (;;)
        Sleep(INFINITE); // the call above may return before it has its effect
}

} // namespace Support
