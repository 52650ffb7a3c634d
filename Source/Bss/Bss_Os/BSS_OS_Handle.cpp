// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_Handle.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"

#include <exception>

namespace BSS::OS {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Os\BSS_OS_Handle)";

} // namespace

ResultCodeT CloseHandleChecked(std::atomic<HAL::NativeHandleT>& handle)
{
    const HAL::NativeHandleT taken = handle.exchange(HAL::NO_HANDLE);
    if (taken == HAL::NO_HANDLE || HAL::CloseNativeHandle(taken)) return RC_OK;
    BSS_ASSERT(!"Failed closing handle!");
    return RC_FAILED;
}

HandleC::~HandleC()
{
    try {
        static_cast<void>(Close());
    } catch (const std::exception&) {
        // The report's text could not be made.
    }
}

} // namespace BSS::OS
