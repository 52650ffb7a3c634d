// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C library here has no such hook, so the callback is only kept.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<InvalidParameterCallback> s_callback = nullptr;

} // namespace

void InstallInvalidParameterHandler(InvalidParameterCallback callback) noexcept
{
    s_callback.store(callback);
}

void RestoreInvalidParameterHandler() noexcept
{
    s_callback.store(nullptr);
}

void InvokeInvalidParameterHandler()
{
    const InvalidParameterCallback callback = s_callback.load();
    if (callback != nullptr) callback();
}

} // namespace BSS::HAL
