// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_InvalidParameter.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"

#include <mutex>
#include <new>

namespace BSS::ERR {

namespace {

// The report bears the name and line of the tasking source: readers of logs look for it there.
constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_Task)";
constexpr std::int32_t LINE_INVALID_PARAMETER = 446;

constinit HAL::StaticLockC s_lock;
constinit int s_installed = 0;

void OnInvalidParameter()
try {
    BSS_ASSERT_AT(!"Invalid parameter handler called!", LINE_INVALID_PARAMETER);
} catch (...) {
    // A handler may throw what it likes. The C runtime cannot carry an exception.
}

} // namespace

void InstallInvalidParameterReport()
{
    const std::lock_guard<HAL::StaticLockC> guard(s_lock);
    if (s_installed++ == 0) HAL::InstallInvalidParameterHandler(&OnInvalidParameter);
}

void RestoreInvalidParameterReport()
{
    const std::lock_guard<HAL::StaticLockC> guard(s_lock);
    if (s_installed > 0 && --s_installed == 0) HAL::RestoreInvalidParameterHandler();
}

} // namespace BSS::ERR
