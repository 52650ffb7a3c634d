// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimeoutableLock.h"

namespace BSS::TSK {

TimeoutableLockC::~TimeoutableLockC() = default;

} // namespace BSS::TSK
