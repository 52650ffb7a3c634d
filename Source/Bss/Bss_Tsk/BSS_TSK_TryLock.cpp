// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TryLock.h"

namespace BSS::TSK {

TryLockI::~TryLockI() = default;

} // namespace BSS::TSK
