// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The event a lock sleeps on: auto-reset, remembers one signal. A wait may end without a signal, so whoever
// waits looks again at what it waits for. Not an interruption point. Set and wait are safe from any thread;
// closing is not, while another thread still sets or waits.
#pragma once

namespace BSS::HAL {

struct WakeEvent;

/// A new event, not signalled; null when the system has none to give. The caller closes it.
WakeEvent* OpenWakeEvent() noexcept;

/// Signals the event: one waiting thread goes on, or the next one to wait.
void SignalWakeEvent(WakeEvent* event) noexcept;

/// Waits for a signal and takes it. Everything done before that signal is visible afterwards.
void AwaitWakeEvent(WakeEvent* event) noexcept;

/// Closes the event; null is allowed.
void CloseWakeEvent(WakeEvent* event) noexcept;

} // namespace BSS::HAL
