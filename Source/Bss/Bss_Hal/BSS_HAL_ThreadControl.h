// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What is done to threads from outside: their priority and their forced end. Threads go by the number that
// CurrentThreadId gives. Safe from any thread.
//
// The forced end is what it is called. The thread ends wherever it happens to be: nothing is unwound, no
// destructor and no thread-local cleanup runs, its stack stays allocated, and every lock that it holds stays
// locked for ever, those of the C library's heap included. On Windows the system ends the thread; on Linux a
// signal handler does, so a thread that blocks that signal, or sleeps in the kernel where no signal reaches
// it, goes on. The waits of this platform layer alone are made for it: on Linux a thread is never ended while
// it holds their lock, and one that is ended asleep in a wait hands the signal on that had just woken it. A
// signal that a wait has returned with is the thread's own and goes with it.
#pragma once

#include <cstdint>

namespace BSS::HAL {

inline constexpr int PRIORITY_TIME_CRITICAL = 15;

/// To be called before the start of a thread that somebody may wait for while the process ends. On Windows
/// exit() lets no other thread register anything for the end while it runs what has been registered; what the
/// language's support for thread-local objects registers at its first use is registered by this. Nothing on
/// Linux.
void PrepareThreadStart() noexcept;

/// Gives a living thread a priority of the Windows scale: 15, 2, 1, 0, -1, -2 or -15. On Linux 15 is
/// round-robin real time and the others are the nice values -10, -5, 0, 5, 10 and 19, counted from that of the
/// process but for the last, and closer together where there is no room. There, what is above normal needs
/// the permission to, and so does every way up: also the one from -1 to 0, which a thread has to go that has
/// inherited the nice value of a creator below normal. False, and the priority is as before, when the system
/// refuses.
bool ApplyThreadPriority(std::uint32_t threadId, int priority) noexcept;

/// The calling thread may be ended by force from now on.
void AllowForcedEnd() noexcept;

/// The calling thread is about to end and will not be ended by force any more. Nothing on Windows.
void ForbidForcedEnd() noexcept;

/// Puts off the forced end of the calling thread while it is in the middle of what other threads depend on;
/// one that was to be ended meanwhile ends when its last shield goes. On Linux only: Windows has no means to.
class EndShieldC
{
public:
    EndShieldC() noexcept;
    ~EndShieldC();
    EndShieldC(const EndShieldC&) = delete;
    EndShieldC& operator=(const EndShieldC&) = delete;
};

/// Ends a thread of this process. On Linux the exit code goes nowhere. False when there is no such thread, or
/// when it has not ended within a second; on Linux it then goes on and will not end later because of this.
bool EndThreadByForce(std::uint32_t threadId, std::uint32_t exitCode) noexcept;

/// Lets the calling thread's waits end as exactly as the system can; Linux otherwise takes up to 50
/// microseconds more to end several waits at once. Nothing on Windows.
void AskForExactWaits() noexcept;

/// Runs the calling thread at time-critical priority, if the system lets it, until the object goes.
class PriorityBoostC
{
public:
    PriorityBoostC() noexcept;
    ~PriorityBoostC();
    PriorityBoostC(const PriorityBoostC&) = delete;
    PriorityBoostC& operator=(const PriorityBoostC&) = delete;

private:
    int m_before = 0;
    bool m_bRaised = false;
};

} // namespace BSS::HAL
