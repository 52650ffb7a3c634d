// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"

namespace BSS::TSK {

LockC::~LockC() = default;

} // namespace BSS::TSK
