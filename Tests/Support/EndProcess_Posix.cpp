// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/EndProcess.h"

#include <unistd.h>

namespace Support {

void EndProcess(int exitCode) noexcept
{
    ::_exit(exitCode);
}

} // namespace Support
