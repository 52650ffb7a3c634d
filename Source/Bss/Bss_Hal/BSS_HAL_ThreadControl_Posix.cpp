// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The signal is the last real-time one that nobody else had taken when the first thread allowed its end. The
// handler ends the thread with the bare system call: the C library would unwind, and unwinding through a
// noexcept function ends the whole process.
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"

#include "Bss/Bss_Hal/BSS_HAL_Niceness_Posix.h"
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Hal/BSS_HAL_WaitSlot_Posix.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constinit thread_local volatile int t_shields = 0;
constinit thread_local volatile bool t_endPending = false;

constinit StaticLockC s_endLock; // one forced end at a time
constexpr std::uint32_t END_BEGUN =
    0xFFFFFFFF; // no thread's number: the thread is ending, nobody can call it back
constinit std::atomic<std::uint32_t> s_threadToEnd{0};

// Returns if whoever wanted the end has given up by now.
void EndThisThread() noexcept
{
    std::uint32_t self = CurrentThreadId();
    if (!s_threadToEnd.compare_exchange_strong(self, END_BEGUN)) return;
    AbandonWait();
    for (;;)
        ::syscall(SYS_exit, 0);
}

void OnEndSignal(int) noexcept
{
    const int saved = errno;
    // Somebody else may send the signal too; that means nothing.
    if (s_threadToEnd.load() == CurrentThreadId()) {
        if (t_shields == 0) EndThisThread();
        t_endPending = true;
    }
    errno = saved;
}

int InstallEndSignal() noexcept
{
    for (int number = SIGRTMAX; number > SIGRTMIN; --number) {
        struct sigaction before = {};
        if (::sigaction(number, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) continue;
        struct sigaction action = {};
        action.sa_handler = &OnEndSignal;
        action.sa_flags = SA_RESTART;
        ::sigfillset(&action.sa_mask);
        if (::sigaction(number, &action, nullptr) == 0) return number;
    }
    return 0;
}

int EndSignal() noexcept
{
    static const int number = InstallEndSignal();
    return number;
}

// One that has no priorities of its own.
bool EnterClass(pid_t id, int before, int after) noexcept
{
    const sched_param parameter = {0};
    return before == after || ::sched_setscheduler(id, after, &parameter) == 0;
}

bool IsAlive(std::uint32_t threadId) noexcept
{
    return ::syscall(SYS_tgkill, ::getpid(), threadId, 0) == 0;
}

} // namespace

EndShieldC::EndShieldC() noexcept
{
    t_shields = t_shields + 1;
}

EndShieldC::~EndShieldC()
{
    t_shields = t_shields - 1;
    if (t_shields != 0 || !t_endPending) return;
    t_endPending = false;
    EndThisThread();
}

void PrepareThreadStart() noexcept {}

bool ApplyThreadPriority(std::uint32_t threadId, int priority) noexcept
{
    const auto id = static_cast<pid_t>(threadId);
    if (priority == PRIORITY_TIME_CRITICAL) {
        const sched_param parameter = {::sched_get_priority_min(SCHED_RR)};
        return ::sched_setscheduler(id, SCHED_RR, &parameter) == 0;
    }
    int nice = 0;
    if (!NiceOfPriority(priority, ProcessNice(), nice)) return false;
    const int policy = ::sched_getscheduler(id);
    if (policy < 0) return false;
    // Real time may always be left but not always be entered again, so it is left last; the other classes are
    // the other way round.
    const bool bRealTime = policy == SCHED_RR || policy == SCHED_FIFO;
    if (!bRealTime && !EnterClass(id, policy, SCHED_OTHER)) return false;
    if (::setpriority(PRIO_PROCESS, static_cast<id_t>(id), nice) != 0) {
        if (!bRealTime) EnterClass(id, SCHED_OTHER, policy);
        return false;
    }
    return !bRealTime || EnterClass(id, policy, SCHED_OTHER);
}

void AllowForcedEnd() noexcept
{
    const int number = EndSignal();
    if (number == 0) return;
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, number);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void ForbidForcedEnd() noexcept
{
    t_shields = t_shields + 1; // for good
}

bool EndThreadByForce(std::uint32_t threadId, std::uint32_t) noexcept
{
    constexpr std::uint64_t LIMIT_MS = 1000;
    const int number = EndSignal();
    if (number == 0 || threadId == CurrentThreadId()) return false;
    const std::lock_guard<StaticLockC> guard(s_endLock);
    s_threadToEnd.store(threadId);
    bool sent = ::syscall(SYS_tgkill, ::getpid(), threadId, number) == 0;
    const std::uint64_t end = TickCount64() + LIMIT_MS;
    while (sent && IsAlive(threadId)) {
        const timespec pause = {0, 100000};
        ::nanosleep(&pause, nullptr);
        if (TickCount64() < end) continue;
        // Either the thread goes on for good, or it has begun to end and will be gone in a moment.
        std::uint32_t wanted = threadId;
        sent = !s_threadToEnd.compare_exchange_strong(wanted, 0);
    }
    s_threadToEnd.store(0);
    return sent;
}

void AskForExactWaits() noexcept
{
    ::prctl(PR_SET_TIMERSLACK, 1UL); // nanoseconds; 0 would ask for the usual
}

PriorityBoostC::PriorityBoostC() noexcept : m_before(::sched_getscheduler(0))
{
    if (m_before != SCHED_OTHER && m_before != SCHED_BATCH && m_before != SCHED_IDLE) return;
    const sched_param parameter = {::sched_get_priority_min(SCHED_RR)};
    m_bRaised = ::sched_setscheduler(0, SCHED_RR, &parameter) == 0;
}

PriorityBoostC::~PriorityBoostC()
{
    const sched_param parameter = {0};
    if (m_bRaised) ::sched_setscheduler(0, m_before, &parameter);
}

} // namespace BSS::HAL
