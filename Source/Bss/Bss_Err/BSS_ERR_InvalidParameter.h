// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reports the C runtime's complaints about invalid arguments as assertions. Installing and restoring may come
// from any thread, in pairs.
#pragma once

namespace BSS::ERR {

/// From now on the C runtime's complaints are reported. Calls are counted.
void InstallInvalidParameterReport();

/// Takes one call back; the last one gives the C runtime's hook back to whoever had it before.
void RestoreInvalidParameterReport();

} // namespace BSS::ERR
