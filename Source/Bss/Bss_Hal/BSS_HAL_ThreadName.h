// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The slot that holds a thread's name, for the two halves of BSS_HAL_Thread only.
#pragma once

namespace BSS::HAL {

/// The calling thread's name, or `fallback` when it has none.
const char* ThreadNameOr(const char* fallback) noexcept;

} // namespace BSS::HAL
