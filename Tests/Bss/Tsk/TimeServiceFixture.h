// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A request for time with a client that has no thread: what it was posted it executes when it is told to, or
// at once. Clocks are turned by hand.
#pragma once

#include "Bss/Bss_Tim/BSS_TIM_GpsClock.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceRequest.h"
#include "Support/LogRecorder.h"
#include "TimerFixture.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace TaskTests {

// A client that executes what it is posted when it is told to, or at once.
class TimeClientC final : public BSS::TSK::CommandPostingI
{
public:
    BSS::ResultCodeT postCommand(const BSS::TSK::SmartCommandPtrT&,
                                 const BSS::TSK::SharedObjectPtrT&) override
    {
        return BSS::RC_FAILED;
    }
    BSS::ResultCodeT postCommand(const BSS::TSK::CommandPtrT&) override { return BSS::RC_FAILED; }
    std::int32_t getMsgCount() const override { return 0; }
    std::uint32_t getMaxMsgCount() const override { return 1; }
    bool isInOverflow() const override { return false; }
    std::int32_t getLastLevel() const override { return 0; }
    std::uint32_t getPostCount() const override { return posts; }
    BSS::ResultCodeT postTimerMsg(const BSS::TSK::TimerMsgPtrT& message, bool bHigh) override
    {
        ++posts;
        lastHigh = bHigh;
        lastReqId = message->getCmdReqId();
        if (refuses) return BSS::RC_FAILED;
        if (executesAtOnce) {
            message->execute();
        } else {
            waiting.push_back(message);
        }
        return BSS::RC_OK;
    }
    BSS::ResultCodeT attachEvent(BSS::HAL::WaitHandleT, BSS::TSK::ExtraEventHandlerT) override
    {
        return BSS::RC_FAILED;
    }
    BSS::ResultCodeT detachEvent(BSS::HAL::WaitHandleT) override { return BSS::RC_FAILED; }

    void ExecuteAll()
    {
        for (const BSS::TSK::TimerMsgPtrT& message : waiting)
            message->execute();
        waiting.clear();
    }

    std::vector<BSS::TSK::TimerMsgPtrT> waiting;
    std::uint32_t posts = 0;
    bool lastHigh = false;
    int lastReqId = 0;
    bool refuses = false;
    bool executesAtOnce = true;
};

class TimeServiceTest : public TimerTest
{
protected:
    TimeServiceTest() { Start(); }
    ~TimeServiceTest() override { request.stop(); }

    BSS::TSK::TimeServiceHandlerT Keep()
    {
        return [this](std::uint32_t param) {
            calls.push_back(param);
            callTicks.push_back(ticks.getTick());
        };
    }
    // Both clocks go together, as they do in the world.
    bool Pass(std::uint32_t milliseconds)
    {
        gps.pass(milliseconds);
        return ticks.turn(milliseconds);
    }

    TimeClientC client;
    BSS::TIM::SimulatedGpsClockC gps{BSS::TIM::GpsTimeT{2300, 1000}};
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    BSS::TSK::TimeServiceRequestC request{engine, gps, log};
    std::vector<std::uint32_t> calls;
    std::vector<std::uint32_t> callTicks;
};

} // namespace TaskTests
