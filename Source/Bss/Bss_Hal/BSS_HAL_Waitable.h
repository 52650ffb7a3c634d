// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Events and the one wait that everything above is made of: for any of up to 62 handles, with a time limit.
// On Linux a handle that is closed is known to be closed, whoever closed it, and never stands for another
// object; on Windows the system may give its number to the next object that is made. Set, reset, pulse and
// wait are safe from any thread and never an interruption point; a signal is never lost: what one thread did
// before it set an event is visible to the thread whose wait or reset takes that signal.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Handle.h"

#include <cstddef>
#include <cstdint>

namespace BSS::HAL {

using WaitHandleT = std::uintptr_t;

inline constexpr WaitHandleT NO_WAIT_HANDLE = 0;
inline constexpr std::size_t MAX_WAIT_HANDLES = 62;
inline constexpr std::uint32_t WAIT_WITHOUT_LIMIT = 0xFFFFFFFF;

// Why a wait failed, in the numbers of Windows on every platform.
inline constexpr std::uint32_t WAIT_ERROR_INVALID_HANDLE = 6;
inline constexpr std::uint32_t WAIT_ERROR_NO_MEMORY = 8;
inline constexpr std::uint32_t WAIT_ERROR_INVALID_PARAMETER = 87;

enum class ResetMode
{
    Auto,  ///< a signal releases one wait and is gone
    Manual ///< stays signalled until it is reset
};

/// A new event; NO_WAIT_HANDLE when the system has none to give. The caller closes it. On Windows processes
/// can share an event by its name; elsewhere a name has no meaning.
WaitHandleT MakeWaitEvent(ResetMode mode, bool signalled, const wchar_t* name = nullptr) noexcept;

/// A handle that is signalled while the descriptor can be read or is at its end, on Windows a second handle
/// of the same object. The descriptor stays the caller's and must outlive the handle; one that is closed
/// before is found out by the next wait, unless its number belongs to another one by then.
WaitHandleT MakeNativeWaitable(NativeHandleT native) noexcept;

// Each answers false for a handle that is not open.

/// Signals: one wait ends for an auto-reset event, all do for a manual-reset one, now or later.
bool SetWaitEvent(WaitHandleT handle) noexcept;

/// The same for a caller that has just done a sequentially consistent read-modify-write on what the waiting
/// thread looks at with one after it has reset the event: costs a load when the event is signalled already.
bool SetWaitEventIfClear(WaitHandleT handle) noexcept;

bool ResetWaitEvent(WaitHandleT handle) noexcept;

/// Ends the waits of this moment, all for a manual-reset event, one for an auto-reset one, and leaves the
/// event reset.
bool PulseWaitEvent(WaitHandleT handle) noexcept;

/// Waits for it that are still going on fail as one for a closed handle does.
bool CloseWaitHandle(WaitHandleT handle) noexcept;

/// On Linux also whether the descriptor behind it is open.
bool IsWaitHandleOpen(WaitHandleT handle) noexcept;

struct WaitAnswerT
{
    enum class Kind
    {
        Signalled, ///< the one at `index`, the first of several
        TimedOut,
        Failed, ///< because of `error`
        Other   ///< anything else that a system may answer
    };

    Kind kind = Kind::Failed;
    std::size_t index = 0;
    std::uint32_t error = 0;
};

/// Waits for 1 to 62 handles. With a limit of 0 it only looks.
WaitAnswerT WaitForAny(const WaitHandleT* handles, std::size_t count, std::uint32_t limitMs) noexcept;

/// Waits until TickCount64 has reached `dueTick`, and not to the end of that millisecond.
WaitAnswerT WaitForAnyUntil(const WaitHandleT* handles, std::size_t count, std::uint64_t dueTick) noexcept;

/// For one handle; true when it was signalled.
inline bool WaitForOne(WaitHandleT handle, std::uint32_t limitMs) noexcept
{
    return WaitForAny(&handle, 1, limitMs).kind == WaitAnswerT::Kind::Signalled;
}

} // namespace BSS::HAL
