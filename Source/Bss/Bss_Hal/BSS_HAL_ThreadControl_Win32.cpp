// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The scale of priorities is the system's own.
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<unsigned> s_nEnded = 0;

// Has an end of its own, as thread-local objects have that need the language's support. With this compiler a
// thread's memory for such objects is freed before their ends come, so the end must not touch the object.
struct ThreadLocalC
{
    ~ThreadLocalC() { s_nEnded.fetch_add(1, std::memory_order_relaxed); }
    volatile bool bUsed = false;
};

} // namespace

void PrepareThreadStart() noexcept
{
    static thread_local ThreadLocalC t_first;
    t_first.bUsed = true;
}

bool ApplyThreadPriority(std::uint32_t threadId, int priority) noexcept
{
    const HANDLE thread = OpenThread(THREAD_SET_INFORMATION, FALSE, threadId);
    if (thread == nullptr) return false;
    const BOOL done = SetThreadPriority(thread, priority);
    CloseHandle(thread);
    return done != 0;
}

void AllowForcedEnd() noexcept {}

void ForbidForcedEnd() noexcept {}

EndShieldC::EndShieldC() noexcept = default;

EndShieldC::~EndShieldC() = default;

bool EndThreadByForce(std::uint32_t threadId, std::uint32_t exitCode) noexcept
{
    constexpr DWORD LIMIT_MS = 1000;
    if (threadId == GetCurrentThreadId()) return false;
    const HANDLE thread = OpenThread(THREAD_TERMINATE | SYNCHRONIZE, FALSE, threadId);
    if (thread == nullptr) return false;
    const bool ended =
        TerminateThread(thread, exitCode) != 0 && WaitForSingleObject(thread, LIMIT_MS) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return ended;
}

void AskForExactWaits() noexcept {}

PriorityBoostC::PriorityBoostC() noexcept : m_before(GetThreadPriority(GetCurrentThread()))
{
    if (m_before == PRIORITY_TIME_CRITICAL || m_before == static_cast<int>(THREAD_PRIORITY_ERROR_RETURN))
        return;
    m_bRaised = SetThreadPriority(GetCurrentThread(), PRIORITY_TIME_CRITICAL) != 0;
}

PriorityBoostC::~PriorityBoostC()
{
    if (m_bRaised) SetThreadPriority(GetCurrentThread(), m_before);
}

} // namespace BSS::HAL
