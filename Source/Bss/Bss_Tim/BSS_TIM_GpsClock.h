// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Clocks of GPS time: the system's, and a simulated one that a program or a test sets. Safe from any thread.
#pragma once

#include "Bss/Bss_Tim/BSS_TIM_GpsTime.h"
#include "Bss/Bss_Tim/BSS_TIM_LeapSeconds.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include <atomic>
#include <cstdint>

namespace BSS::TIM {

class GpsClockI
{
public:
    virtual GpsTimeT now() = 0;

    /// Notified when the clock has been set, so that who waits for a time looks again.
    virtual UTI::SubjectC& getSubject() = 0;

    virtual ~GpsClockI();

protected:
    GpsClockI() = default;
    GpsClockI(const GpsClockI&) = delete;
    GpsClockI& operator=(const GpsClockI&) = delete;
};

/// The system's wall clock and the leap seconds that are known. A change of those sets it; that somebody has
/// set the wall clock is not noticed by itself, notifyTimeSet() tells.
class SystemGpsClockC final : public GpsClockI
{
public:
    GpsTimeT now() override;
    UTI::SubjectC& getSubject() override { return m_leapSeconds.getSubject(); }
    LeapSecondsC& getLeapSeconds() noexcept { return m_leapSeconds; }
    void notifyTimeSet();

private:
    LeapSecondsC m_leapSeconds;
};

/// A clock that stands still until it is set.
class SimulatedGpsClockC final : public GpsClockI
{
public:
    explicit SimulatedGpsClockC(const GpsTimeT& time = {}) : m_ms(GpsMilliseconds(time)) {}
    GpsTimeT now() override { return GpsTimeOf(m_ms.load()); }
    UTI::SubjectC& getSubject() override { return m_subject; }

    /// Sets the clock and tells who observes it.
    void set(const GpsTimeT& time);

    /// Lets time pass, which is nothing to tell.
    void pass(std::int64_t milliseconds) noexcept { m_ms.fetch_add(milliseconds); }

private:
    std::atomic<std::int64_t> m_ms;
    UTI::SubjectC m_subject;
};

/// The process's system clock.
SystemGpsClockC& GetSystemGpsClock();

} // namespace BSS::TIM
