// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_SubLogManager.h"

namespace BSS::DBG {

SubLogManagerC::~SubLogManagerC() = default;

} // namespace BSS::DBG
