// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Runs something that must not be left in the middle because somebody wants the thread to end. Cancellation
// of the thread waits until it is over; so does an interruption, where the thread belongs to a library that
// has such: that library says how by a runner, as this floor knows none. Nothing is swallowed: what was asked
// for stays asked for. Safe from any thread; cheap; may be nested.
#pragma once

#include <type_traits>

namespace BSS::HAL {

using UndisturbedCallT = void (*)(void* context);

/// Calls `call` with `context` once, on this thread, with interruptions disabled.
using UndisturbedRunnerT = void (*)(UndisturbedCallT call, void* context);

/// Says how interruptions are disabled; null takes the runner away. Threads that are in a runner at this
/// moment are still in it when this returns.
void SetUndisturbedRunner(UndisturbedRunnerT runner) noexcept;

/// Calls `call` with `context`, undisturbed. What it throws is thrown on.
void RunUndisturbed(UndisturbedCallT call, void* context);

/// The same for anything that can be called.
template<typename CallT>
void Undisturbed(CallT&& call)
{
    using ThingT = std::remove_reference_t<CallT>;
    RunUndisturbed([](void* context) { (*static_cast<ThingT*>(context))(); }, &call);
}

/// Disables cancellation of the calling thread while it lives.
class NoCancellation
{
public:
    NoCancellation() noexcept;
    ~NoCancellation();
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

private:
    const int m_before;
};

} // namespace BSS::HAL
