// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/BSS_Startup.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Err/BSS_ERR_InvalidParameter.h"

namespace BSS {

void StartUp()
{
    DBG::InstallTcpIpLogConsumer();
    ERR::InstallInvalidParameterReport();
}

void ShutDown()
{
    ERR::RestoreInvalidParameterReport();
}

} // namespace BSS
