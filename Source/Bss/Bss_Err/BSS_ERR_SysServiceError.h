// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Thrown when a service of the operating system fails behind a task, a lock or an event. Threads: as its
// base.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ErrorBase.h"

namespace BSS {

class SysServiceErrorC : public ERR::ErrorBaseC
{
public:
    explicit SysServiceErrorC(const char* message, ResultCodeT code = RC_SERVICE_UNSPECIFIED);
    SysServiceErrorC(const SysServiceErrorC&) noexcept = default;
    SysServiceErrorC& operator=(const SysServiceErrorC&) noexcept = default;
    ~SysServiceErrorC() override;
};

} // namespace BSS
