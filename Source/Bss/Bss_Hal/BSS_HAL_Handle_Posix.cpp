// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// An interrupted close has closed all the same: trying again could close what another thread has just opened.
#include "Bss/Bss_Hal/BSS_HAL_Handle.h"

#include <cerrno>
#include <unistd.h>

namespace BSS::HAL {

bool CloseNativeHandle(NativeHandleT handle) noexcept
{
    return ::close(static_cast<int>(handle)) == 0 || errno == EINTR;
}

} // namespace BSS::HAL
