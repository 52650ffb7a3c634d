// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The framework's recursive mutex. All of its state but the owner's is in one word: free, held, and how many
// threads wait. An uncontended lock is one exchange on that word; a thread that has to wait spins briefly and
// then sleeps on an event that is made when it is first needed. Unfair: whoever comes first when the mutex is
// released takes it. Not an interruption point. Any thread may lock it; it may be destroyed as soon as nobody
// holds or awaits it, even if the thread that released it last is still on its way out of unlock(). A thread
// that is ended by force inside lock() or unlock() may leave it locked for ever, and undestroyable, as one
// that is ended while it holds it does.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_ThreadIdCache.h"
#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"

#include <atomic>
#include <cstdint>

namespace BSS::HAL {
struct WakeEvent;
} // namespace BSS::HAL

namespace BSS::TSK {

class MutexC final : public LockC
{
public:
    MutexC() noexcept;

    /// Waits without limit. The owner may lock again and must unlock as often. Throws SysServiceErrorC with
    /// RC_SERVICE_FAILED when the system cannot give the event to wait on; the mutex is not held then.
    void lock() override
    {
        const std::uint32_t self = HAL::CachedThreadId();
        // Relaxed: only this thread ever stores its own id here, so no other value can be mistaken for it.
        if (m_ownerId.load(std::memory_order_relaxed) == self) {
            ++m_recursionCount;
            return;
        }
        std::uint32_t free = 0;
        // Acquire here and in TryAcquire pairs with the release in unlock and Release: what the last owner
        // did is visible.
        if (!m_lockWord.compare_exchange_strong(free, LOCKED, std::memory_order_acquire,
                                                std::memory_order_relaxed)) {
            AcquireSlowly();
        }
        m_ownerId.store(self, std::memory_order_relaxed);
        m_recursionCount = 1;
    }

    /// Releases the mutex once it has been called as often as lock(). A call by a thread that does not own it
    /// is reported by an assertion and changes nothing.
    void unlock() override
    {
        if (m_ownerId.load(std::memory_order_relaxed) != HAL::CachedThreadId()) {
            ReportNotOwner();
            return;
        }
        if (--m_recursionCount > 0) return;
        m_ownerId.store(0, std::memory_order_relaxed);
        std::uint32_t held = LOCKED;
        if (!m_lockWord.compare_exchange_strong(held, 0, std::memory_order_release,
                                                std::memory_order_relaxed)) {
            Release();
        }
    }

    ~MutexC() override;

private:
    static constexpr std::uint32_t LOCKED = 0x80000000u;

    enum class Caller
    {
        New,
        Waiting
    };

    bool TryAcquire(Caller caller) noexcept;
    bool SpinToAcquire(Caller caller) noexcept;
    void AcquireSlowly();
    void Release() noexcept;
    static void ReportNotOwner();
    HAL::WakeEvent* Event();

    std::atomic<std::uint32_t> m_ownerId{0};
    std::uint32_t m_recursionCount = 0; // the owner's alone
    std::atomic<std::uint32_t> m_lockWord{0};
    std::atomic<HAL::WakeEvent*> m_event{nullptr};
};

} // namespace BSS::TSK
