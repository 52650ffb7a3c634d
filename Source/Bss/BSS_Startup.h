// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The composition root of the base services: the one place that knows what must be set up before the
// framework is used and taken back afterwards. A program says StartUp and ShutDown itself; a shared library
// links BSS_AutoStart, which says them when it is loaded and unloaded. Everything else is made on first use.
// Calls are counted and may come from any thread.
#pragma once

namespace BSS {

/// Reports the C runtime's complaints about invalid arguments from now on.
void StartUp();

/// Takes one StartUp back.
void ShutDown();

} // namespace BSS
