// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Who the calling thread is: its number, its name and its priority. Names are kept in a slot of each thread
// that whoever owns the thread fills; the logger reads it here without knowing tasks. Safe from any thread,
// each call concerns the calling thread only.
#pragma once

#include <cstdint>

namespace BSS::HAL {

/// The system's number of the calling thread, unique among the living threads and never 0. Remembered per
/// thread, so it is cheap; the one thread of a forked child keeps the number it had in the parent.
std::uint32_t CurrentThreadId() noexcept;

/// The calling thread's name: what SetCurrentThreadName gave, else "Main Thread" for the process's main
/// thread, else "UnknownThread". The text lives as long as the thread or until its next SetCurrentThreadName.
const char* CurrentThreadName() noexcept;

/// Names the calling thread. The text is copied, at most 63 bytes of it; null or empty takes the name away.
void SetCurrentThreadName(const char* name) noexcept;

/// The calling thread's priority on the Windows scale: 0 normal, 1 and 2 above, -1 and -2 below, -15 idle, 15
/// time-critical.
int CurrentThreadPriority() noexcept;

/// A count that changes when SetCurrentThreadName or NoteThreadChanged is called on this thread, so that
/// texts made of name and priority can be kept as long as it stays. Never 0. One load.
std::uint32_t CurrentThreadVersion() noexcept;

/// To be called by whoever changes the calling thread's priority.
void NoteThreadChanged() noexcept;

/// A moment's pause inside a spin loop.
void SpinPause() noexcept;

} // namespace BSS::HAL
