// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/QuietCrash.h"

#include <sys/resource.h>

namespace Support {

void CrashQuietly()
{
    const rlimit none = {0, 0};
    static_cast<void>(::setrlimit(RLIMIT_CORE, &none));
}

} // namespace Support
