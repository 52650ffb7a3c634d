// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the C runtime calls when one of its functions is given an invalid argument. On Windows some runtimes have such
// a hook and some have none: it is looked up in those that the process has loaded, msvcrt.dll, which this library uses
// itself, and ucrtbase.dll, which a host may use. Where there is none, and on Linux, the callback is kept and only
// InvokeInvalidParameterHandler calls it. Knows nothing of reports. Installing and restoring belong to one thread; the
// callback may come on any.
#pragma once

namespace BSS::HAL {

using InvalidParameterCallback = void (*)();

/// Makes `callback` what the loaded C runtimes call, of those that have a hook. What they called before is remembered
/// once, however often this is called.
void InstallInvalidParameterHandler(InvalidParameterCallback callback) noexcept;

/// Gives each hook that was taken back to whoever had it before, unless somebody else has taken it since; does nothing
/// when nothing is installed.
void RestoreInvalidParameterHandler() noexcept;

/// Calls the installed callback, as the C runtime would; does nothing when none is installed.
void InvokeInvalidParameterHandler();

} // namespace BSS::HAL
