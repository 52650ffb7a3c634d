// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a time service request, the timer engine and the messages in a client's queue have together; the last
// of them frees it. For the sources of BSS_TSK_TimeService* and tests only.
//
// The engine calls with its lock held and then takes the request's; so nobody calls the engine with the
// request's lock held but the engine's own thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_SlowClientProtector.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceRequest.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace BSS::TSK {

struct TimeRequestT
{
    TimeRequestT(Timer::TimerEngineC& timerEngine, TIM::GpsClockI& gpsClock,
                 std::shared_ptr<DBG::DbgLogConsumerC> requestLogger);
    ~TimeRequestT();
    TimeRequestT(const TimeRequestT&) = delete;
    TimeRequestT& operator=(const TimeRequestT&) = delete;

    /// Made known to the engine's callback.
    static std::shared_ptr<TimeRequestT> Make(Timer::TimerEngineC& timerEngine, TIM::GpsClockI& gpsClock,
                                              std::shared_ptr<DBG::DbgLogConsumerC> requestLogger);

    /// Sets the engine's timer for what comes next, unless the request has been stopped since. With the lock
    /// free, or on the engine's thread. The timer's id, or 0.
    std::uint32_t Arm(std::uint32_t ofGeneration);

    /// Arms and keeps the timer's id; does so again if the clock is set meanwhile. With the lock free. False
    /// when the engine has no timer to give.
    bool ArmAndKeep(std::uint32_t ofGeneration);

    /// The engine's call.
    void OnTimer(const std::shared_ptr<TimeRequestT>& self);

    std::string Dump() const;

    Timer::TimerEngineC& engine;
    TIM::GpsClockI& clock;
    const std::shared_ptr<DBG::DbgLogConsumerC> logger;
    std::uint32_t cookie = 0; ///< what the engine hands back: timers carry 32 bits, which are no pointer
    const UTI::RefPtrT<SlowClientProtectorC> protector;
    std::atomic<bool> bHigh{true};
    std::atomic<std::uint32_t> nDropped{0};

    /// Counts add and stop: a message of an older one is nobody's business any more. Changed under the lock.
    const std::shared_ptr<std::atomic<std::uint32_t>> generation =
        std::make_shared<std::atomic<std::uint32_t>>(0);

    mutable MutexC lock; ///< guards all below
    TimeRequestType type = TIME_UNKNOWN;
    CommandPostingI* pCmdClient = nullptr;
    TimeServiceContainerC* pAttachedAt = nullptr;
    TimeServiceHandlerT handler;
    std::uint32_t param0 = 0;
    std::int32_t cmdReqId = 0;
    std::uint32_t timerId = 0;
    std::uint32_t cycleMs = 0;
    std::uint32_t offsetMs = 0;
    TIM::GpsTimeT target;
    std::uint32_t nClockChanges = 0; ///< that the request has been told of
    std::uint64_t lastTick = 0;      ///< when it last fired
    std::uint64_t slotTime = 0;      ///< when it is to fire next, for relative requests too

private:
    std::uint32_t DelayMs(std::uint64_t now) const;
    void Post();
};

} // namespace BSS::TSK
