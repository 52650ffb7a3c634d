// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The text that BSS_HAL_CrashDump_Posix.cpp leaves behind. Only calls that a signal handler may make; static
// buffers, so that it needs little of a stack that may be nearly used up: for one thread, once.
#pragma once

#include <csignal>

namespace BSS::HAL {

/// Writes all of it to a descriptor.
void WriteCrashReport(int file, const char* program, const char* signalName, const siginfo_t& info,
                      const void* context) noexcept;

} // namespace BSS::HAL
