// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tim/BSS_TIM_GpsClock.h"

#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

namespace BSS::TIM {

GpsClockI::~GpsClockI() = default;

GpsTimeT SystemGpsClockC::now()
{
    const HAL::WallTime utc = HAL::WallTimeNow();
    return GpsTimeOfUtc(utc.seconds * 1000 + utc.millisecond, m_leapSeconds.get());
}

void SystemGpsClockC::notifyTimeSet()
{
    getSubject().notify(static_cast<std::uint32_t>(m_leapSeconds.get()));
}

void SimulatedGpsClockC::set(const GpsTimeT& time)
{
    m_ms.store(GpsMilliseconds(time));
    m_subject.notify(0);
}

SystemGpsClockC& GetSystemGpsClock()
{
    static SystemGpsClockC clock;
    return clock;
}

} // namespace BSS::TIM
