// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Runs something that writes where the system may answer a write by a signal that ends a process which does
// not expect it: a pipe that nobody reads any more, a file as large as the process may make files. The write
// fails then, and nothing else. A signal that was waiting for the thread before is left waiting. Safe from
// any thread; does nothing where there are no such signals.
#pragma once

#include <type_traits>

namespace BSS::HAL {

/// Calls `call` with `context` once, on this thread, which such signals do not reach meanwhile.
void RunWithoutWriteSignals(void (*call)(void* context), void* context);

/// The same for anything that can be called.
template<typename CallT>
void WithoutWriteSignals(CallT&& call)
{
    using ThingT = std::remove_reference_t<CallT>;
    RunWithoutWriteSignals([](void* context) { (*static_cast<ThingT*>(context))(); }, &call);
}

} // namespace BSS::HAL
