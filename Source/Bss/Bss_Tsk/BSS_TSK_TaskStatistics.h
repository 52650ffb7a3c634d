// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a command task has done so far. Reads no clock: marks are single stores, counts are single increments
// of the task's own thread. Any thread may look; the values of one look need not belong to one moment.
#pragma once

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

class TaskStatisticsC
{
public:
    /// For the task's thread.
    void markIdle() noexcept
    {
        m_bBusy.store(false, std::memory_order_relaxed);
        Increment(m_nWaits);
    }
    void markBusy() noexcept
    {
        m_bBusy.store(true, std::memory_order_relaxed);
        Increment(m_nExecuted);
    }

    bool isBusy() const noexcept { return m_bBusy.load(std::memory_order_relaxed); }
    std::uint64_t getExecutedCount() const noexcept { return m_nExecuted.load(std::memory_order_relaxed); }
    std::uint64_t getWaitCount() const noexcept { return m_nWaits.load(std::memory_order_relaxed); }

private:
    // One thread writes, so no read-modify-write is needed.
    static void Increment(std::atomic<std::uint64_t>& count) noexcept
    {
        count.store(count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    std::atomic<bool> m_bBusy{false};
    std::atomic<std::uint64_t> m_nExecuted{0};
    std::atomic<std::uint64_t> m_nWaits{0};
};

} // namespace BSS::TSK
