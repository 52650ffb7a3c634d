// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The hooks of the C runtimes. They are looked up, since the function of that name which MinGW-w64 links in
// sets a variable of its own that no runtime reads. What a runtime tells about expression, function and file
// is empty in release runtimes, so none of it is passed on.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>

namespace BSS::HAL {

namespace {

using SetHandlerT = _invalid_parameter_handler(__cdecl*)(_invalid_parameter_handler);

struct RuntimeT
{
    const wchar_t* pName;
    bool bTaken = false;
    _invalid_parameter_handler pBefore = nullptr; ///< null is what a runtime has by itself
};

constinit std::atomic<InvalidParameterCallback> s_callback = nullptr;
constinit RuntimeT s_aRuntimes[] = {{L"msvcrt.dll"}, {L"ucrtbase.dll"}};

void RuntimeHandler(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t)
{
    InvokeInvalidParameterHandler();
}

/// Null where the runtime is not loaded, or has no hook. Looked up for each use: a runtime may have gone
/// meanwhile.
SetHandlerT FindSetHandler(const RuntimeT& rRuntime) noexcept
{
    const HMODULE hModule = GetModuleHandleW(rRuntime.pName);
    if (hModule == nullptr) return nullptr;
    return std::bit_cast<SetHandlerT>(GetProcAddress(hModule, "_set_invalid_parameter_handler"));
}

void Take(RuntimeT& rRuntime) noexcept
{
    const SetHandlerT pSet = FindSetHandler(rRuntime);
    rRuntime.bTaken = pSet != nullptr;
    if (rRuntime.bTaken) rRuntime.pBefore = pSet(&RuntimeHandler);
}

void GiveBack(RuntimeT& rRuntime) noexcept
{
    const SetHandlerT pSet = rRuntime.bTaken ? FindSetHandler(rRuntime) : nullptr;
    rRuntime.bTaken = false;
    if (pSet == nullptr) return;
    const _invalid_parameter_handler pReplaced = pSet(rRuntime.pBefore);
    // Whoever took the hook after us keeps it.
    if (pReplaced != &RuntimeHandler) pSet(pReplaced);
}

} // namespace

void InstallInvalidParameterHandler(InvalidParameterCallback callback) noexcept
{
    if (s_callback.exchange(callback) != nullptr) return;
    for (RuntimeT& rRuntime : s_aRuntimes)
        Take(rRuntime);
}

void RestoreInvalidParameterHandler() noexcept
{
    if (s_callback.exchange(nullptr) == nullptr) return;
    for (RuntimeT& rRuntime : s_aRuntimes)
        GiveBack(rRuntime);
}

void InvokeInvalidParameterHandler()
{
    const InvalidParameterCallback callback = s_callback.load();
    if (callback != nullptr) callback();
}

} // namespace BSS::HAL
