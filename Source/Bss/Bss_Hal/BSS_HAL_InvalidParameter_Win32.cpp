// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C runtime's own hook. What it tells about expression, function and file is empty in release runtimes,
// so none of it is passed on.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>

namespace BSS::HAL {

namespace {

constinit std::atomic<InvalidParameterCallback> s_callback = nullptr;
constinit std::atomic<_invalid_parameter_handler> s_before = nullptr;

void RuntimeHandler(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t)
{
    InvokeInvalidParameterHandler();
}

} // namespace

void InstallInvalidParameterHandler(InvalidParameterCallback callback) noexcept
{
    if (s_callback.exchange(callback) == nullptr) s_before = _set_invalid_parameter_handler(&RuntimeHandler);
}

void RestoreInvalidParameterHandler() noexcept
{
    if (s_callback.exchange(nullptr) == nullptr) return;
    const _invalid_parameter_handler replaced = _set_invalid_parameter_handler(s_before.exchange(nullptr));
    // Whoever took the hook after us keeps it.
    if (replaced != &RuntimeHandler) _set_invalid_parameter_handler(replaced);
}

void InvokeInvalidParameterHandler()
{
    const InvalidParameterCallback callback = s_callback.load();
    if (callback != nullptr) callback();
}

} // namespace BSS::HAL
