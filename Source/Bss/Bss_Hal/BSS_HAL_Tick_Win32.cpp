// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The 64-bit clock is looked up at run time: where the system has none, the 32-bit one is extended, which
// needs that somebody asks at least once in 49 days.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <cstring>
#include <mutex>

namespace BSS::HAL {

namespace {

using TickFunctionT = ULONGLONG(WINAPI*)();

TickFunctionT LookUp() noexcept
{
    TickFunctionT function = nullptr;
    const HMODULE kernel = GetModuleHandleW(L"KERNEL32.DLL");
    if (kernel == nullptr) return nullptr;
    const FARPROC found = GetProcAddress(kernel, "GetTickCount64");
    static_assert(sizeof function == sizeof found);
    std::memcpy(&function, &found, sizeof function);
    return function;
}

constinit StaticLockC s_lock;
constinit std::uint64_t s_extended = 0;

} // namespace

std::uint32_t TickCount32() noexcept
{
    return GetTickCount();
}

std::uint64_t TickCount64() noexcept
{
    static const TickFunctionT function = LookUp();
    if (function != nullptr) return function();
    const std::lock_guard<StaticLockC> guard(s_lock);
    s_extended = ExtendTick(s_extended, GetTickCount());
    return s_extended;
}

std::int64_t TickMicroseconds() noexcept
{
    return static_cast<std::int64_t>(TickCount64()) * 1000;
}

} // namespace BSS::HAL
