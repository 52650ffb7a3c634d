// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceRequest.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeRequest.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceContainer.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerService.h"

#include <algorithm>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TimeServiceRequest)";

template<typename... Arguments>
void Log(const TimeRequestT& request, const char* format, const Arguments&... arguments)
{
    if (request.logger) request.logger->Log(DBG::LEVEL_FINE, format, arguments...);
}

} // namespace

std::uint32_t TimeRequestDelayMs(const TIM::GpsTimeT& target, const TIM::GpsTimeT& now) noexcept
{
    const std::int64_t delay = TIM::GpsMilliseconds(target) - TIM::GpsMilliseconds(now);
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(delay, 0, 0xFFFFFFFF));
}

std::uint64_t NextSlot(std::uint64_t now, std::uint32_t cycleMs, std::uint32_t offsetMs) noexcept
{
    if (cycleMs == 0) return now;
    const std::uint64_t offset = offsetMs % cycleMs;
    // How far the time is behind a slot.
    const std::uint64_t behind = (now % cycleMs + cycleMs - offset) % cycleMs;
    return now + cycleMs - behind;
}

TimeServiceRequestC::TimeServiceRequestC(Timer::TimerEngineC& engine, TIM::GpsClockI& clock,
                                         std::shared_ptr<DBG::DbgLogConsumerC> logger)
    : m_request(TimeRequestT::Make(engine, clock, std::move(logger)))
{
    clock.getSubject().attach(*this);
}

TimeServiceRequestC::TimeServiceRequestC()
    : TimeServiceRequestC(Timer::GetProcessTimerEngine(), TIM::GetSystemGpsClock())
{}

TimeServiceRequestC::~TimeServiceRequestC()
{
    m_request->clock.getSubject().detach(*this);
    detachAll();
    if (!isRunning()) return;
    BSS_ASSERT(!"Time service request not stopped before deleting the object!");
    TimeServiceRequestC::stop();
}

ResultCodeT TimeServiceRequestC::addCycleRequest(CommandPostingI* pCmdClient, std::uint32_t cycleMs,
                                                 std::uint32_t offsetMs, TimeServiceHandlerT handler,
                                                 std::uint32_t param0)
{
    const ResultCodeT rc =
        Start(TIME_CYCLE, pCmdClient, std::move(handler), param0, [&](TimeRequestT& request) {
            request.cycleMs = cycleMs;
            request.offsetMs = offsetMs;
            request.slotTime = NextSlot(request.engine.getClock().now(), cycleMs, offsetMs);
        });
    if (rc == RC_OK) {
        Log(*m_request, "[BSS::TSK::TimeServiceRequestC] Added Cycle (%d ms) request (CmdReqId:%d)\n",
            cycleMs, m_request->cmdReqId);
    }
    return rc;
}

ResultCodeT TimeServiceRequestC::addOneShotRelativeRequest(CommandPostingI* pCmdClient, std::uint32_t delayMs,
                                                           TimeServiceHandlerT handler, std::uint32_t param0)
{
    const ResultCodeT rc =
        Start(TIME_ONE_SHOT_RELATIVE, pCmdClient, std::move(handler), param0,
              [&](TimeRequestT& request) { request.slotTime = request.engine.getClock().now() + delayMs; });
    if (rc == RC_OK) {
        Log(*m_request,
            "[BSS::TSK::TimeServiceRequestC] Added one-shot relative (%d ms) request (CmdReqId:%d)\n",
            delayMs, m_request->cmdReqId);
    }
    return rc;
}

ResultCodeT TimeServiceRequestC::addOneShotAbsoluteRequest(CommandPostingI* pCmdClient,
                                                           const TIM::GpsTimeT& target,
                                                           TimeServiceHandlerT handler, std::uint32_t param0)
{
    const ResultCodeT rc = Start(TIME_ONE_SHOT_ABSOLUTE, pCmdClient, std::move(handler), param0,
                                 [&](TimeRequestT& request) { request.target = target; });
    if (rc == RC_OK) {
        Log(*m_request, "[BSS::TSK::TimeServiceRequestC] Added one-shot absolute request (CmdReqId:%d)\n",
            m_request->cmdReqId);
    }
    return rc;
}

ResultCodeT TimeServiceRequestC::Start(TimeRequestType requestType, CommandPostingI* pCmdClient,
                                       TimeServiceHandlerT handler, std::uint32_t param0,
                                       const std::function<void(TimeRequestT&)>& fill)
{
    BSS_ASSERT(pCmdClient);
    if (pCmdClient == nullptr || !handler) return RC_INVALID_ARGUMENT;
    std::uint32_t generation = 0;
    {
        const GuardC guard(m_request->lock);
        const TimeServiceContainerC* const m_pAttachedAt = m_request->pAttachedAt;
        const std::uint32_t m_TimerId = m_request->timerId;
        const std::uint8_t m_iRequestType = m_request->type;
        // A request has a type as long as it is attached: both tell of one that has not been stopped.
        BSS_ASSERT(m_pAttachedAt == 0 && m_TimerId == 0);
        BSS_ASSERT(m_iRequestType == static_cast<uint8_t>(TIME_UNKNOWN));
        if (m_pAttachedAt != nullptr || m_TimerId != 0 || m_iRequestType != TIME_UNKNOWN)
            return RC_INVALID_ARGUMENT;
        m_request->pCmdClient = pCmdClient;
        m_request->handler = std::move(handler);
        m_request->param0 = param0;
        m_request->cmdReqId = NextCmdReqId();
        m_request->cycleMs = 0;
        m_request->offsetMs = 0;
        m_request->target = {};
        m_request->slotTime = 0;
        m_request->lastTick = 0;
        m_request->type = requestType;
        fill(*m_request);
        m_request->pAttachedAt = &TimeServiceContainerC::instance();
        m_request->pAttachedAt->attach(m_request);
        generation = ++*m_request->generation;
    }
    if (m_request->ArmAndKeep(generation)) return RC_OK;
    TimeServiceRequestC::stop();
    return RC_FAILED;
}

bool TimeServiceRequestC::isRunning() const
{
    const GuardC guard(m_request->lock);
    return m_request->type != TIME_UNKNOWN;
}

void TimeServiceRequestC::stop()
{
    std::uint32_t timerId = 0;
    TimeServiceContainerC* pAttachedAt = nullptr;
    {
        const GuardC guard(m_request->lock);
        ++*m_request->generation;
        m_request->type = TIME_UNKNOWN;
        timerId = std::exchange(m_request->timerId, 0);
        pAttachedAt = std::exchange(m_request->pAttachedAt, nullptr);
    }
    if (timerId != 0) static_cast<void>(m_request->engine.killTimer(timerId));
    if (pAttachedAt != nullptr) pAttachedAt->detach(m_request);
}

void TimeServiceRequestC::setHighPriority(bool bHigh)
{
    m_request->bHigh.store(bHigh);
}

std::uint32_t TimeServiceRequestC::getSkippedCount() const
{
    return m_request->protector->getSkippedCount();
}

std::uint32_t TimeServiceRequestC::getDroppedCount() const
{
    return m_request->nDropped.load();
}

std::string TimeServiceRequestC::dump() const
{
    return m_request->Dump();
}

void TimeServiceRequestC::update(UTI::SubjectC&, std::uint32_t, const UTI::RefPtrT<UTI::SharedObjectC>&)
{
    std::uint32_t timerId = 0;
    std::uint32_t generation = 0;
    {
        const GuardC guard(m_request->lock);
        if (m_request->type != TIME_ONE_SHOT_ABSOLUTE) return;
        ++m_request->nClockChanges;
        if (m_request->timerId == 0) return; // whoever is arming it sees the change
        timerId = std::exchange(m_request->timerId, 0);
        generation = *m_request->generation;
    }
    // If it is not found it has just fired.
    if (m_request->engine.killTimer(timerId) == RC_OK) m_request->ArmAndKeep(generation);
}

} // namespace BSS::TSK
