// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"

namespace BSS {

SysServiceErrorC::SysServiceErrorC(const char* message, ResultCodeT code) : ErrorBaseC(message, code) {}

SysServiceErrorC::~SysServiceErrorC() = default;

} // namespace BSS
