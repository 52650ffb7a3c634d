// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A lock for objects that exist before any code has run and after all destructors have: it is initialised by
// the compiler on every platform and has nothing to destroy, which std::mutex does not promise. Not
// recursive. For short sections on the lower floors; everything else uses the framework's mutex.
#pragma once

#include <atomic>

namespace BSS::HAL {

class StaticLockC
{
public:
    void lock() noexcept
    {
        // Acquire pairs with the release in unlock.
        while (m_held.test_and_set(std::memory_order_acquire))
            m_held.wait(true, std::memory_order_relaxed);
    }

    void unlock() noexcept
    {
        m_held.clear(std::memory_order_release);
        m_held.notify_one();
    }

private:
    std::atomic_flag m_held;
};

} // namespace BSS::HAL
