// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_CommandPosting.h"

namespace BSS::TSK {

CommandPostingI::~CommandPostingI() = default;

} // namespace BSS::TSK
