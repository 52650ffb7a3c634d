// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_SysComponent.h"

namespace BSS::TSK {

SysComponentC::~SysComponentC() = default;

ResultCodeT SysComponentC::init()
{
    return RC_OK;
}

void SysComponentC::cleanup() {}

const char* SysComponentC::getComponentName() const noexcept
{
    return "";
}

} // namespace BSS::TSK
