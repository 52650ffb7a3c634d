// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A network of the process's own, whose only interface can be switched. For one thread.
#pragma once

namespace NetTests {

/// Runs a scenario in a child process with a network of its own, whose loopback interface is up, and expects
/// 0 from it. Where the system does not permit that, the test is skipped, and fails under CI.
void ExpectInOwnNetwork(int (*scenario)());

/// Switches the loopback interface; false when that is not possible.
bool SwitchInterface(bool bUp);

} // namespace NetTests
