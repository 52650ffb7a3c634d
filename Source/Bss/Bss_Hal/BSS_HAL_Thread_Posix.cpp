// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Thread ids are the kernel's, so that they match what system tools show.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include "Bss/Bss_Hal/BSS_HAL_Niceness_Posix.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadIdCache.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadName.h"

#include <cerrno>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

std::uint32_t AskThreadId() noexcept
{
    return static_cast<std::uint32_t>(::syscall(SYS_gettid));
}

bool IsMainThread() noexcept
{
    return CurrentThreadId() == static_cast<std::uint32_t>(::getpid());
}

} // namespace

constinit thread_local std::uint32_t t_threadId = 0;

std::uint32_t CurrentThreadId() noexcept
{
    if (t_threadId == 0) t_threadId = AskThreadId();
    return t_threadId;
}

const char* CurrentThreadName() noexcept
{
    return ThreadNameOr(IsMainThread() ? "Main Thread" : "UnknownThread");
}

int CurrentThreadPriority() noexcept
{
    const int policy = ::sched_getscheduler(0);
    if (policy == SCHED_FIFO || policy == SCHED_RR) return 15;
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(AskThreadId()));
    return errno != 0 ? 0 : PriorityOfNice(nice, ProcessNice());
}

void SpinPause() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#else
    static_cast<void>(::sched_yield());
#endif
}

} // namespace BSS::HAL
