// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's own lock of one pointer. What the library would wait with here is a table of mutexes that its
// first user makes and exit() destroys: a thread that is that first user while the process ends waits for
// exit() to be over, and nobody could use the table afterwards.
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

PSRWLOCK SystemLock(std::atomic<std::uintptr_t>& state) noexcept
{
    static_assert(sizeof(SRWLOCK) == sizeof state &&
                  alignof(SRWLOCK) <= alignof(std::atomic<std::uintptr_t>));
    return reinterpret_cast<PSRWLOCK>(&state); // both begin as zero
}

} // namespace

void StaticLockC::lock() noexcept
{
    AcquireSRWLockExclusive(SystemLock(m_state));
}

void StaticLockC::unlock() noexcept
{
    ReleaseSRWLockExclusive(SystemLock(m_state));
}

} // namespace BSS::HAL
