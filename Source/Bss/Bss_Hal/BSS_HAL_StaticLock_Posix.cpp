// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The library waits with the system's own means here, which hold nothing that ends before the process does.
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"

namespace BSS::HAL {

void StaticLockC::lock() noexcept
{
    // Acquire pairs with the release in unlock.
    while (m_state.exchange(1, std::memory_order_acquire) != 0)
        m_state.wait(1, std::memory_order_relaxed);
}

void StaticLockC::unlock() noexcept
{
    m_state.store(0, std::memory_order_release);
    m_state.notify_one();
}

} // namespace BSS::HAL
