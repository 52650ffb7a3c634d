// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_ReaderWriterLock.h"

namespace BSS::TSK {

ReaderWriterLockC::~ReaderWriterLockC() = default;

} // namespace BSS::TSK
