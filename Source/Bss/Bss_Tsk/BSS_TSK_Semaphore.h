// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A counting semaphore: a count, and a mutex and a condition variable for those who find it 0. Taking and
// giving while nobody waits is one compare-and-swap on the count; a thread that finds it 0 looks for a moment
// before it sleeps. Any thread may post. Not an interruption point. It must outlive every call.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_TimeoutableLock.h"

#include <atomic>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <cstdint>
#include <limits>

namespace BSS::TSK {

/// When a wait is over, on a clock of microseconds: `clockUs` plus the time-out. A negative time-out is no
/// limit and gives SEMAPHORE_NO_DEADLINE. The clock's special values, its two largest and its smallest, stay
/// what they are.
inline constexpr std::int64_t SEMAPHORE_NO_DEADLINE = -1;

constexpr std::int64_t SemaphoreDeadlineUs(std::int64_t clockUs, std::int32_t timeoutMs) noexcept
{
    constexpr std::int64_t INFINITE_TIME = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t NO_TIME = INFINITE_TIME - 1;
    constexpr std::int64_t INFINITE_PAST = std::numeric_limits<std::int64_t>::min();
    if (timeoutMs < 0) return SEMAPHORE_NO_DEADLINE;
    if (clockUs == INFINITE_TIME || clockUs == NO_TIME || clockUs == INFINITE_PAST) return clockUs;
    return clockUs + static_cast<std::int64_t>(timeoutMs) * 1000;
}

class SemaphoreC final : public TimeoutableLockC
{
public:
    explicit SemaphoreC(std::uint32_t count = 0);

    /// Waits without limit and takes one. Throws ErrorBaseC with RC_SERVICE_FAILED when the wait fails.
    void lock() override
    {
        if (!tryLock()) WaitOrThrow();
    }

    /// Posts: adds one to the count and wakes one waiting thread.
    void unlock() override
    {
        // Sequentially consistent, as the other side counts itself as waiting and then looks at the count:
        // one of the two sees the other.
        m_count.fetch_add(1);
        if (m_nWaiting.load() != 0) WakeOne();
    }

    ~SemaphoreC() override;

    /// Waits that many milliseconds at most, without limit when negative. Whether one was taken. Throws as
    /// lock() does.
    [[nodiscard]] bool lock(int timeoutMs) override;

    [[nodiscard]] bool tryLock() override { return Take(m_count.load(std::memory_order_relaxed)); }

    void wait() { lock(); }
    [[nodiscard]] bool wait(int timeoutMs) { return lock(timeoutMs); }
    void post() { unlock(); }

private:
    // `count` is what was last seen.
    bool Take(std::uint32_t count) noexcept
    {
        while (count != 0) {
            // Acquire pairs with the increment in unlock.
            if (m_count.compare_exchange_weak(count, count - 1)) return true;
        }
        return false;
    }
    void WaitOrThrow();
    bool SpinToTake() noexcept;
    void WakeOne();
    bool WaitUntil(std::int64_t deadlineUs);

    std::atomic<std::uint32_t> m_count;
    std::atomic<std::uint32_t> m_nWaiting{0};
    boost::mutex m_mutex;
    boost::condition_variable m_posted;
};

} // namespace BSS::TSK
