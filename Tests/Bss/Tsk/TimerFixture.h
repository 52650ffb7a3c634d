// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// An engine on a clock that is turned by hand, and callbacks that keep what they are told.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"
#include "Support/LogCapture.h"
#include "Support/ManualTicks.h"
#include "Support/ReportCapture.h"

#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

namespace TaskTests {

inline std::mutex s_firedLock;
inline std::vector<std::uint32_t> s_fired; ///< the user values, in order
inline std::function<void(std::uint32_t id, std::uint32_t user)> s_inside;

inline void OnTimer(std::uint32_t id, std::uint32_t, std::uint32_t user, std::uint32_t, std::uint32_t)
{
    {
        const std::lock_guard<std::mutex> guard(s_firedLock);
        s_fired.push_back(user);
    }
    if (s_inside) s_inside(id, user);
}

class TimerTest : public testing::Test
{
protected:
    using TimersT = std::vector<std::uint32_t>;

    TimerTest()
    {
        s_fired.clear();
        s_inside = nullptr;
    }
    ~TimerTest() override
    {
        engine.stop();
        s_inside = nullptr;
    }

    void Start(std::uint32_t id = 1)
    {
        ASSERT_EQ(engine.start(id), 1);
        reports.Clear(); // a refused priority
    }
    std::uint32_t Set(std::uint32_t period, std::uint32_t user, std::uint16_t flags = 0,
                      std::uint32_t first = BSS::TSK::Timer::TIMER_FIRST_AFTER_PERIOD)
    {
        return engine.setTimer(period, 1, &OnTimer, user, flags, first);
    }
    TimersT Fired() const
    {
        const std::lock_guard<std::mutex> guard(s_firedLock);
        return s_fired;
    }
    std::string Report(std::size_t index = 0) const
    {
        const auto all = reports.Reports();
        if (index >= all.size()) return "none";
        return all[index].text + " " + std::to_string(all[index].line);
    }

    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    Support::ManualTicks ticks;
    BSS::TIM::TickClockC clock{ticks};
    BSS::TSK::Timer::TimerEngineC engine{clock};
};

} // namespace TaskTests
