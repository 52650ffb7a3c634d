// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A tick counter that a test turns by hand. turn() returns when the thread that waits on it has done all that
// was due and waits again. One waiting thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"
#include "Bss/Bss_Tim/BSS_TIM_TickClock.h"
#include "Support/Eventually.h"

#include <atomic>
#include <cstdint>

namespace Support {

class ManualTicks final : public BSS::TIM::TickSourceI
{
public:
    explicit ManualTicks(std::uint32_t tick = 1000)
        : m_tick(tick), m_turned(BSS::HAL::MakeWaitEvent(BSS::HAL::ResetMode::Auto, false))
    {}
    ~ManualTicks() override { BSS::HAL::CloseWaitHandle(m_turned); }

    std::uint32_t getTick() noexcept override { return m_tick.load(); }

    void waitUntil(BSS::HAL::WaitHandleT event, std::uint32_t dueTick) noexcept override
    {
        Wait(event, [&] { return static_cast<std::int32_t>(dueTick - m_tick.load()) <= 0; });
    }
    void wait(BSS::HAL::WaitHandleT event) noexcept override
    {
        Wait(event, [] { return false; });
    }

    /// Lets time pass in one step, and waits for what comes of it. False when nobody waits on this counter.
    bool turn(std::uint32_t milliseconds)
    {
        m_tick.fetch_add(milliseconds);
        const std::uint32_t turn = m_turns.fetch_add(1) + 1;
        BSS::HAL::SetWaitEvent(m_turned);
        return Eventually([&] { return m_seen.load() == turn; });
    }
    /// Lets time pass when nobody waits.
    void add(std::uint32_t milliseconds) { m_tick.fetch_add(milliseconds); }

    /// Lets time pass millisecond by millisecond.
    bool turnStepwise(std::uint32_t milliseconds)
    {
        bool all = true;
        for (std::uint32_t i = 0; i < milliseconds; ++i)
            all = turn(1) && all;
        return all;
    }

private:
    template<typename IsDueT>
    void Wait(BSS::HAL::WaitHandleT event, const IsDueT& isDue) noexcept
    {
        for (;;) {
            const std::uint32_t turn = m_turns.load();
            // What is signalled already comes before the word that all is done.
            if (isDue() || BSS::HAL::WaitForOne(event, 0)) return;
            m_seen.store(turn);
            const BSS::HAL::WaitHandleT handles[] = {event, m_turned};
            if (BSS::HAL::WaitForAny(handles, 2, BSS::HAL::WAIT_WITHOUT_LIMIT).index == 0) return;
        }
    }

    std::atomic<std::uint32_t> m_tick;
    std::atomic<std::uint32_t> m_turns{0};
    std::atomic<std::uint32_t> m_seen{0};
    const BSS::HAL::WaitHandleT m_turned;
};

} // namespace Support
