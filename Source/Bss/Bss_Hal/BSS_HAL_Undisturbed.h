// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Runs something that must not be left in the middle because somebody wants the thread to end. Cancellation
// of the thread waits until it is over; so do an interruption and a forced end, where the thread belongs to a
// library that has such: that library says how by a runner, as this floor knows neither. Cancellation and
// interruption that were asked for stay asked for; whoever wants a forced end may give up. Safe from any thread; cheap; may be nested.
#pragma once

#include <atomic>
#include <type_traits>

namespace BSS::HAL {

using UndisturbedCallT = void (*)(void* context);

/// Calls `call` with `context` once, on this thread, with interruptions disabled.
using UndisturbedRunnerT = void (*)(UndisturbedCallT call, void* context);

/// Says how interruptions are disabled; null takes the runner away. Threads that are in a runner at this
/// moment are still in it when this returns.
void SetUndisturbedRunner(UndisturbedRunnerT runner) noexcept;

/// Disables cancellation of the calling thread while it lives, or up to End().
class NoCancellation
{
public:
    NoCancellation() noexcept;
    ~NoCancellation();
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

    /// Where cancellation takes effect at any time, one that was asked for meanwhile ends the thread in here,
    /// by unwinding. No destructor lets that through: it would end the process.
    void End();

private:
    int m_state = 0; // as it was
    bool m_ended = false;
};

/// What SetUndisturbedRunner was given last; for the function below.
extern constinit std::atomic<UndisturbedRunnerT> g_undisturbedRunner;

/// Calls something that can be called, undisturbed. What it throws is thrown on.
template<typename CallT>
void Undisturbed(CallT&& call)
{
    using ThingT = std::remove_reference_t<CallT>;
    NoCancellation scope;
    if (const UndisturbedRunnerT runner = g_undisturbedRunner.load(std::memory_order_relaxed)) {
        runner([](void* context) { (*static_cast<ThingT*>(context))(); }, &call);
    } else {
        call();
    }
    scope.End();
}

} // namespace BSS::HAL
