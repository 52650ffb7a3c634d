// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"

namespace BSS::BIO {

OverflowExceptionC::OverflowExceptionC(const char* message, ResultCodeT code)
    : SysServiceErrorC(message, code)
{}

OverflowExceptionC::~OverflowExceptionC() = default;

} // namespace BSS::BIO
