// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Closing what the operating system has given, with an answer. Handles are plain numbers here: a descriptor
// on Linux, a handle on Windows. Safe from any thread; two threads must not close the same handle.
#pragma once

#include <cstdint>

namespace BSS::HAL {

using NativeHandleT = std::intptr_t;

/// No handle. What the system itself calls invalid.
inline constexpr NativeHandleT NO_HANDLE = -1;

/// False when the system refuses, for a handle that is not open, for example.
[[nodiscard]] bool CloseNativeHandle(NativeHandleT handle) noexcept;

} // namespace BSS::HAL
