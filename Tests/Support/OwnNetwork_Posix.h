// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A network of the process's own, whose interfaces can be switched. It takes no rights but those to make
// namespaces, as root or with one for users. For one thread.
#pragma once

#include <functional>

namespace Support {

/// What a scenario answers that the system does not permit.
inline constexpr int NOT_PERMITTED = 77;

/// Runs a scenario in a child process with a network of its own, whose loopback interface is up, and expects
/// 0 from it. Where the system does not permit that, the test is skipped, and fails under CI.
void ExpectInOwnNetwork(const std::function<int()>& scenario);

/// Switches an interface of this thread's network; false when that is not possible.
bool SwitchInterface(bool bUp, const char* name = "lo");

/// Whether an interface is switched on and its cable leads to another one that is.
bool IsInterfaceRunning(const char* name);

} // namespace Support
