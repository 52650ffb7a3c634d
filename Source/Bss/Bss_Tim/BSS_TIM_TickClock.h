// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The clock that timers run on: milliseconds in 64 bits, made of the system's 32-bit tick counter, which
// wraps after 49.7 days. The counter can be another one than the system's, so that a test turns it by hand.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <cstdint>

namespace BSS::TIM {

/// A counter of milliseconds that wraps. Safe from any thread.
class TickSourceI
{
public:
    virtual std::uint32_t getTick() noexcept = 0;

    /// Waits until the event is signalled or the counter has come to `dueTick`, which is less than 2^31 ahead
    /// or past.
    virtual void waitUntil(HAL::WaitHandleT event, std::uint32_t dueTick) noexcept = 0;

    /// Waits for the event without limit.
    virtual void wait(HAL::WaitHandleT event) noexcept = 0;

    virtual ~TickSourceI();

protected:
    TickSourceI() = default;
    TickSourceI(const TickSourceI&) = delete;
    TickSourceI& operator=(const TickSourceI&) = delete;
};

/// Extends a counter to 64 bits. It must be asked at least once in 49 days for that. Safe from any thread.
class TickClockC
{
public:
    /// The source must outlive the clock.
    explicit TickClockC(TickSourceI& source) noexcept : m_source(source) {}

    std::uint64_t now();

    /// Waits for the event, until the clock has reached `dueTick` at the latest.
    void waitUntil(HAL::WaitHandleT event, std::uint64_t dueTick);
    void wait(HAL::WaitHandleT event) { m_source.wait(event); }

private:
    TickSourceI& m_source;
    TSK::MutexC m_lock;
    std::uint64_t m_tick = 0;
};

/// The system's counter, and the clock made of it that the whole process shares.
TickSourceI& GetSystemTickSource() noexcept;
TickClockC& GetTickClock() noexcept;

} // namespace BSS::TIM
