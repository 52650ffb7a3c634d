// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How a thread that frees a lock only to take it again lets others have it in between: by itself it would
// leave them out for seconds where it runs at a higher priority. The others take the lock through this; the
// one waits, now and then, until one of them has it. The lock and the event are the user's.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

class GiveWayC
{
public:
    /// For the others: takes the lock, and then looks at the event. Throws what the lock throws.
    template<typename LockT>
    void lock(LockT& lock, const HAL::WaitHandleT& event)
    {
        m_nWanting.fetch_add(1);
        try {
            lock.lock();
        } catch (...) {
            m_nWanting.fetch_sub(1);
            throw;
        }
        m_nWanting.fetch_sub(1);
        if (m_bGivesWay.load()) HAL::SetWaitEvent(event);
    }

    /// For the one, without the lock.
    bool isWanted() const noexcept { return m_nWanting.load() != 0; }

    /// Waits until one of the others has the lock, 20 ms at most: one who was ended while he waited never
    /// comes. The event is an auto-reset one; if it was set for another reason, that is forgotten.
    void giveWay(HAL::WaitHandleT event) noexcept
    {
        constexpr std::uint32_t LIMIT_MS = 20;
        HAL::ResetWaitEvent(event);
        // Sequentially consistent, as in lock(): either this sees nobody, or that sees this.
        m_bGivesWay.store(true);
        if (isWanted()) HAL::WaitForOne(event, LIMIT_MS);
        m_bGivesWay.store(false);
    }

private:
    std::atomic<std::uint32_t> m_nWanting{0};
    std::atomic<bool> m_bGivesWay{false};
};

} // namespace BSS::TSK
