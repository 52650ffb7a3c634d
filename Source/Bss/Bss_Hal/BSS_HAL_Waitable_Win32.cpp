// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's own objects. A handle that was closed may come to stand for another object here; that is the
// system's way.
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <algorithm>
#include <array>

namespace BSS::HAL {

namespace {

HANDLE SystemHandle(WaitHandleT handle) noexcept
{
    return reinterpret_cast<HANDLE>(handle);
}

} // namespace

WaitHandleT MakeWaitEvent(ResetMode mode, bool signalled, const wchar_t* name) noexcept
{
    if (TakeFault(FaultT::Event)) return NO_WAIT_HANDLE;
    return reinterpret_cast<WaitHandleT>(CreateEventW(nullptr, mode == ResetMode::Manual, signalled, name));
}

WaitHandleT MakeNativeWaitable(NativeHandleT native) noexcept
{
    HANDLE copy = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, reinterpret_cast<HANDLE>(native), process, &copy, 0, FALSE,
                         DUPLICATE_SAME_ACCESS))
        return NO_WAIT_HANDLE;
    return reinterpret_cast<WaitHandleT>(copy);
}

bool SetWaitEvent(WaitHandleT handle) noexcept
{
    return SetEvent(SystemHandle(handle)) != 0;
}

bool SetWaitEventIfClear(WaitHandleT handle) noexcept
{
    return SetEvent(SystemHandle(handle)) != 0;
}

bool ResetWaitEvent(WaitHandleT handle) noexcept
{
    return ResetEvent(SystemHandle(handle)) != 0;
}

bool PulseWaitEvent(WaitHandleT handle) noexcept
{
    return PulseEvent(SystemHandle(handle)) != 0;
}

bool CloseWaitHandle(WaitHandleT handle) noexcept
{
    return handle != NO_WAIT_HANDLE && CloseHandle(SystemHandle(handle)) != 0;
}

bool IsWaitHandleOpen(WaitHandleT handle) noexcept
{
    DWORD flags = 0;
    return handle != NO_WAIT_HANDLE && GetHandleInformation(SystemHandle(handle), &flags) != 0;
}

WaitAnswerT WaitForAny(const WaitHandleT* handles, std::size_t count, std::uint32_t limitMs) noexcept
{
    using KindT = WaitAnswerT::Kind;
    if (count == 0 || count > MAX_WAIT_HANDLES) return {KindT::Failed, 0, WAIT_ERROR_INVALID_PARAMETER};
    std::array<HANDLE, MAX_WAIT_HANDLES> system = {};
    std::transform(handles, handles + count, system.begin(), &SystemHandle);
    const DWORD answer = WaitForMultipleObjects(static_cast<DWORD>(count), system.data(), FALSE, limitMs);
    if (answer == WAIT_TIMEOUT) return {KindT::TimedOut, 0, 0};
    if (answer == WAIT_FAILED) return {KindT::Failed, 0, GetLastError()};
    if (answer < WAIT_OBJECT_0 + count) return {KindT::Signalled, answer - WAIT_OBJECT_0, 0};
    return {KindT::Other, answer, 0};
}

WaitAnswerT WaitForAnyUntil(const WaitHandleT* handles, std::size_t count, std::uint64_t dueTick) noexcept
{
    // A wait may end before the clock has come so far, and takes no more than 49.7 days.
    for (;;) {
        const std::uint64_t now = TickCount64();
        const std::uint64_t left = dueTick > now ? dueTick - now : 0;
        const WaitAnswerT answer =
            WaitForAny(handles, count,
                       static_cast<std::uint32_t>(std::min<std::uint64_t>(left, WAIT_WITHOUT_LIMIT - 1)));
        if (answer.kind != WaitAnswerT::Kind::TimedOut || TickCount64() >= dueTick) return answer;
    }
}

} // namespace BSS::HAL
