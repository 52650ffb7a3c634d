// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A command client's wish to be called: in a cycle, once after a while, or once at a GPS time. The call is a
// timer message in the client's queue and runs on the client's thread. There is never more than one such
// message of a request that has not been executed or dropped; what falls due meanwhile is counted and left
// out.
//
// Cyclic requests fire at multiples of the cycle plus the offset on the tick clock. Slots that have passed
// while the computer was asleep are left out too, where that clock counts the sleep. Delays may be of any
// length: the request waits for long ones in pieces of two hours, and looks again when its GPS clock has been
// set.
//
// A request belongs to one thread, which adds, stops and destroys it; its messages run on the client's. It
// must be stopped before the client or the request goes. After stop() nothing that was posted before it is
// called any more, unless it is running on the client's thread at that moment.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Tim/BSS_TIM_GpsClock.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

class CommandPostingI;
class TimeServiceContainerC;
struct TimeRequestT;

/// Called on the client's thread with the request's Param0.
using TimeServiceHandlerT = std::function<void(std::uint32_t param0)>;

enum TimeRequestType : std::uint8_t
{
    TIME_UNKNOWN = 0,
    TIME_CYCLE = 1,
    TIME_ONE_SHOT_RELATIVE = 2,
    TIME_ONE_SHOT_ABSOLUTE = 3
};

/// How long it is until a GPS time, in milliseconds: 0 when it is past, and 0xFFFFFFFF when it is more than
/// that.
std::uint32_t TimeRequestDelayMs(const TIM::GpsTimeT& target, const TIM::GpsTimeT& now) noexcept;

/// The next slot behind `now`: the smallest number above it that is `offsetMs` more than a multiple of
/// `cycleMs`.
std::uint64_t NextSlot(std::uint64_t now, std::uint32_t cycleMs, std::uint32_t offsetMs) noexcept;

class TimeServiceRequestC final : public UTI::ObserverC
{
public:
    /// Engine and clock must outlive the request. The logger may be null.
    TimeServiceRequestC(Timer::TimerEngineC& engine, TIM::GpsClockI& clock,
                        std::shared_ptr<DBG::DbgLogConsumerC> logger = {});

    /// On the process's engine and clock.
    TimeServiceRequestC();

    /// An assertion tells when it has not been stopped.
    ~TimeServiceRequestC() override;

    // Each answers RC_OK; RC_INVALID_ARGUMENT, after an assertion, without a client, after two while the
    // request is attached, and without an assertion for an empty handler; RC_FAILED when the engine has no
    // timer to give, as for a cycle of 0. The request is as before then.

    ResultCodeT addCycleRequest(CommandPostingI* pCmdClient, std::uint32_t cycleMs, std::uint32_t offsetMs,
                                TimeServiceHandlerT handler, std::uint32_t param0 = 0);
    ResultCodeT addOneShotRelativeRequest(CommandPostingI* pCmdClient, std::uint32_t delayMs,
                                          TimeServiceHandlerT handler, std::uint32_t param0 = 0);
    ResultCodeT addOneShotAbsoluteRequest(CommandPostingI* pCmdClient, const TIM::GpsTimeT& target,
                                          TimeServiceHandlerT handler, std::uint32_t param0 = 0);

    /// Whether a firing is still to come.
    bool isRunning() const;

    /// Waits for a firing that is under way in the engine. The request can be added again.
    void stop();

    /// Whether messages are posted with high priority; they are unless this is called.
    void setHighPriority(bool bHigh);

    /// How many firings were left out because the client had not yet taken the one before, and how many slots
    /// because they were past.
    std::uint32_t getSkippedCount() const;
    std::uint32_t getDroppedCount() const;

    std::string dump() const;

    /// The clock has been set.
    void update(UTI::SubjectC& subject, std::uint32_t code,
                const UTI::RefPtrT<UTI::SharedObjectC>& payload) override;

private:
    ResultCodeT Start(TimeRequestType type, CommandPostingI* pCmdClient, TimeServiceHandlerT handler,
                      std::uint32_t param0, const std::function<void(TimeRequestT&)>& fill);

    const std::shared_ptr<TimeRequestT> m_request;
};

} // namespace BSS::TSK
