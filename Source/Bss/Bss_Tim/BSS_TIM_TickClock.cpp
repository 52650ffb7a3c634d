// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tim/BSS_TIM_TickClock.h"

#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <algorithm>

namespace BSS::TIM {

namespace {

class SystemTickSourceC final : public TickSourceI
{
public:
    std::uint32_t getTick() noexcept override { return HAL::TickCount32(); }

    void waitUntil(HAL::WaitHandleT event, std::uint32_t dueTick) noexcept override
    {
        const std::uint64_t now = HAL::TickCount64();
        const auto left = static_cast<std::int32_t>(dueTick - static_cast<std::uint32_t>(now));
        HAL::WaitForAnyUntil(&event, 1, left > 0 ? now + static_cast<std::uint32_t>(left) : 0);
    }

    void wait(HAL::WaitHandleT event) noexcept override { HAL::WaitForOne(event, HAL::WAIT_WITHOUT_LIMIT); }
};

} // namespace

TickSourceI::~TickSourceI() = default;

std::uint64_t TickClockC::now()
{
    const TSK::GuardC guard(m_lock);
    m_tick = HAL::ExtendTick(m_tick, m_source.getTick());
    return m_tick;
}

void TickClockC::waitUntil(HAL::WaitHandleT event, std::uint64_t dueTick)
{
    constexpr std::uint64_t LONGEST = 0x7FFFFFFF; // what the source can tell from the past
    m_source.waitUntil(event, static_cast<std::uint32_t>(std::min(dueTick, now() + LONGEST)));
}

// Both are never destroyed: timers may run until the very end.
TickSourceI& GetSystemTickSource() noexcept
{
    static auto* const source = new SystemTickSourceC;
    return *source;
}

TickClockC& GetTickClock() noexcept
{
    static auto* const clock = new TickClockC(GetSystemTickSource());
    return *clock;
}

} // namespace BSS::TIM
