// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Thrown by the binary persistency when reading or writing would pass the end of its buffer. Threads: as its
// base.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"

namespace BSS::BIO {

class OverflowExceptionC : public SysServiceErrorC
{
public:
    explicit OverflowExceptionC(const char* message, ResultCodeT code = RC_BUFFER_BOUNDS);
    OverflowExceptionC(const OverflowExceptionC&) noexcept = default;
    OverflowExceptionC& operator=(const OverflowExceptionC&) noexcept = default;
    ~OverflowExceptionC() override;
};

} // namespace BSS::BIO
