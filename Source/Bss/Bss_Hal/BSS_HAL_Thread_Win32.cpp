// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system keeps the thread id where a load finds it, so nothing is remembered here.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include "Bss/Bss_Hal/BSS_HAL_ThreadName.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <tlhelp32.h>

namespace BSS::HAL {

namespace {

bool CreationTime(DWORD threadId, ULONGLONG& created) noexcept
{
    const HANDLE thread = OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, threadId);
    if (thread == nullptr) return false;
    FILETIME start = {};
    FILETIME ignored = {};
    const BOOL known = GetThreadTimes(thread, &start, &ignored, &ignored, &ignored);
    CloseHandle(thread);
    created = (static_cast<ULONGLONG>(start.dwHighDateTime) << 32) | start.dwLowDateTime;
    return known != 0;
}

// The system does not say which thread is the main one; it is the oldest.
DWORD OldestThread() noexcept
{
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (all == INVALID_HANDLE_VALUE) return 0;
    DWORD oldest = 0;
    ULONGLONG oldestCreated = ~0ULL;
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry)) {
        ULONGLONG created = 0;
        if (entry.th32OwnerProcessID != GetCurrentProcessId()) continue;
        if (!CreationTime(entry.th32ThreadID, created) || created >= oldestCreated) continue;
        oldest = entry.th32ThreadID;
        oldestCreated = created;
    }
    CloseHandle(all);
    return oldest;
}

bool IsMainThread() noexcept
{
    static const DWORD mainThread = OldestThread();
    return GetCurrentThreadId() == mainThread;
}

} // namespace

std::uint32_t CurrentThreadId() noexcept
{
    return GetCurrentThreadId();
}

const char* CurrentThreadName() noexcept
{
    return ThreadNameOr(IsMainThread() ? "Main Thread" : "UnknownThread");
}

int CurrentThreadPriority() noexcept
{
    return GetThreadPriority(GetCurrentThread());
}

void SpinPause() noexcept
{
    YieldProcessor();
}

} // namespace BSS::HAL
