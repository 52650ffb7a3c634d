// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimeRequest.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandPosting.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceContainer.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <map>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TimeServiceRequest)";

// Lines by which these reports have always been known.
constexpr std::int32_t LINE_CYCLE = 593;
constexpr std::int32_t LINE_RELATIVE = 638;
constexpr std::int32_t LINE_ABSOLUTE = 663;
constexpr std::int32_t LINE_OTHER_TYPE = 669;

constexpr std::uint32_t RESOLUTION_MS = 1;

// Which request a cookie stands for.
class CookiesC
{
public:
    std::uint32_t Add(const std::shared_ptr<TimeRequestT>& request)
    {
        const GuardC guard(m_lock);
        while (++m_last == 0 || m_requests.contains(m_last)) {
        }
        m_requests.emplace(m_last, request);
        return m_last;
    }
    void Remove(std::uint32_t cookie)
    {
        const GuardC guard(m_lock);
        m_requests.erase(cookie);
    }
    std::shared_ptr<TimeRequestT> Find(std::uint32_t cookie) const
    {
        const GuardC guard(m_lock);
        const auto found = m_requests.find(cookie);
        return found != m_requests.end() ? found->second.lock() : nullptr;
    }

private:
    mutable MutexC m_lock;
    std::map<std::uint32_t, std::weak_ptr<TimeRequestT>> m_requests;
    std::uint32_t m_last = 0;
};

// Never destroyed: timers may fire until the very end.
CookiesC& Cookies()
{
    static auto* const cookies = new CookiesC;
    return *cookies;
}

void OnEngineTimer(std::uint32_t, std::uint32_t, std::uint32_t cookie, std::uint32_t, std::uint32_t)
{
    const std::shared_ptr<TimeRequestT> request = Cookies().Find(cookie);
    if (request) request->OnTimer(request);
}

// The client's call. Whatever becomes of it, its end lets the next one through.
class TimeRequestMsgC final : public TimerMsgC
{
public:
    explicit TimeRequestMsgC(const TimeRequestT& request)
        : TimerMsgC("TimeServiceRequest"), m_handler(request.handler), m_param0(request.param0),
          m_generation(request.generation), m_posted(*request.generation), m_protector(request.protector)
    {
        setCmdReqId(request.cmdReqId);
    }
    ~TimeRequestMsgC() override { m_protector->free(); }

    void execute() override
    {
        if (*m_generation == m_posted) m_handler(m_param0);
    }

private:
    const TimeServiceHandlerT m_handler;
    const std::uint32_t m_param0;
    const std::shared_ptr<const std::atomic<std::uint32_t>> m_generation;
    const std::uint32_t m_posted;
    const UTI::RefPtrT<SlowClientProtectorC> m_protector;
};

} // namespace

TimeRequestT::TimeRequestT(Timer::TimerEngineC& timerEngine, TIM::GpsClockI& gpsClock,
                           std::shared_ptr<DBG::DbgLogConsumerC> requestLogger)
    : engine(timerEngine), clock(gpsClock), logger(std::move(requestLogger)),
      protector(UTI::MakeShared<SlowClientProtectorC>())
{}

std::shared_ptr<TimeRequestT> TimeRequestT::Make(Timer::TimerEngineC& timerEngine, TIM::GpsClockI& gpsClock,
                                                 std::shared_ptr<DBG::DbgLogConsumerC> requestLogger)
{
    auto request = std::make_shared<TimeRequestT>(timerEngine, gpsClock, std::move(requestLogger));
    request->cookie = Cookies().Add(request);
    return request;
}

TimeRequestT::~TimeRequestT()
{
    Cookies().Remove(cookie);
}

// How long the engine is to wait. Longer than it can is its longest; the rest is waited for afterwards.
std::uint32_t TimeRequestT::DelayMs(std::uint64_t now) const
{
    std::uint64_t delay = slotTime > now ? slotTime - now : 0;
    if (type == TIME_ONE_SHOT_ABSOLUTE) delay = TimeRequestDelayMs(target, clock.now());
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(delay, Timer::TIMER_LONGEST_MS));
}

std::uint32_t TimeRequestT::Arm(std::uint32_t ofGeneration)
{
    std::uint32_t period = 1;
    std::uint64_t dueTick = 0;
    std::uint16_t flags = Timer::TIMER_ONE_SHOT | Timer::TIMER_CALLBACK;
    {
        const GuardC guard(lock);
        if (*generation != ofGeneration) return 0;
        const std::uint32_t m_iCycle = cycleMs;
        const std::uint32_t m_iOffset = offsetMs;
        switch (type) {
        case TIME_CYCLE:
            if (m_iCycle == 0) ERR::AssertFailed("m_iCycle>0", 0, 0, BSS_SOURCE_NAME, LINE_CYCLE);
            // The engine repeats what it can. Longer cycles are armed anew each time.
            if (m_iCycle <= Timer::TIMER_LONGEST_MS) {
                period = m_iCycle;
                flags |= Timer::TIMER_PERIODIC;
            }
            break;
        case TIME_ONE_SHOT_RELATIVE:
            BSS_ASSERT_AT(m_iCycle == 0, LINE_RELATIVE);
            break;
        case TIME_ONE_SHOT_ABSOLUTE:
            BSS_ASSERT_AT(m_iCycle == 0 && m_iOffset == 0, LINE_ABSOLUTE);
            break;
        default:
            BSS_ASSERT_AT(false, LINE_OTHER_TYPE);
            return 0;
        }
        // A time and not a delay: the engine looks at its clock later than this.
        const std::uint64_t now = engine.getClock().now();
        dueTick = now + DelayMs(now);
    }
    return engine.setTimerAt(period, RESOLUTION_MS, &OnEngineTimer, cookie, flags, dueTick);
}

bool TimeRequestT::ArmAndKeep(std::uint32_t ofGeneration)
{
    for (;;) {
        std::uint32_t nSeen = 0;
        bool bStopped = false;
        {
            const GuardC guard(lock);
            nSeen = nClockChanges;
        }
        const std::uint32_t id = Arm(ofGeneration);
        if (id == 0) return false;
        {
            const GuardC guard(lock);
            bStopped = *generation != ofGeneration;
            if (!bStopped && nClockChanges == nSeen) {
                // It may have fired before this comes to keep the id; then there is nothing to keep, or it
                // has a new one.
                if (type != TIME_UNKNOWN && timerId == 0) timerId = id;
                return true;
            }
        }
        // Nobody else knows of this timer. If it is not found it has fired, and has seen to what comes next.
        if (engine.killTimer(id) != RC_OK || bStopped) return true;
    }
}

// On the engine's thread, with the engine's lock held.
void TimeRequestT::OnTimer(const std::shared_ptr<TimeRequestT>& self)
{
    const GuardC guard(lock);
    if (type == TIME_UNKNOWN) return;
    const std::uint64_t now = engine.getClock().now();
    const bool bPeriodic = type == TIME_CYCLE && cycleMs <= Timer::TIMER_LONGEST_MS;
    if (!bPeriodic && DelayMs(now) > 0) {
        timerId = Arm(*generation); // a piece of a long wait is over, or the clock has been put back
        return;
    }
    lastTick = now;
    if (type != TIME_CYCLE) {
        type = TIME_UNKNOWN;
        timerId = 0;
        if (pAttachedAt != nullptr) std::exchange(pAttachedAt, nullptr)->detach(self);
        Post();
        return;
    }
    if (!bPeriodic) {
        // One firing for all slots that have come: it is for the last of them, the others are past.
        nDropped.fetch_add(static_cast<std::uint32_t>((now - slotTime) / cycleMs), std::memory_order_relaxed);
        slotTime = NextSlot(now, cycleMs, offsetMs);
        timerId = Arm(*generation);
        Post();
        return;
    }
    // One firing for each slot. When the next slot has come as well, this one is past.
    slotTime += cycleMs;
    if (now >= slotTime) {
        nDropped.fetch_add(1, std::memory_order_relaxed);
    } else {
        Post();
    }
}

void TimeRequestT::Post()
{
    if (!protector->occupy()) return;
    TimerMsgPtrT message;
    try {
        message = UTI::MakeShared<TimeRequestMsgC>(*this);
    } catch (...) {
        protector->free();
        throw;
    }
    // A message that is refused lets the next one through when it goes.
    static_cast<void>(pCmdClient->postTimerMsg(message, bHigh.load()));
}

std::string TimeRequestT::Dump() const
{
    const auto address = [](const void* pointer) {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
    };
    const GuardC guard(lock);
    std::string text = UTI::Format("\nRequestType = %d\n", static_cast<int>(type));
    text += UTI::Format("Time-service-request at 0x%lx\n", address(this));
    text += UTI::Format("AttachedAt  = 0x%lx\n", address(pAttachedAt));
    text += UTI::Format("CmdClient = 0x%lx\n", address(pCmdClient));
    text += UTI::Format("TimerId   = 0x%lx\n", timerId);
    text += UTI::Format("Param0    = 0x%lx\n", param0);
    text += UTI::Format("Cycle    = %lu\n", cycleMs);
    text += UTI::Format("Offset   = %lu\n", offsetMs);
    text += UTI::Format("GPS time = %u, %lu\n", target.week, target.milliseconds);
    text += UTI::Format("LastTick = %lld\n", static_cast<std::int64_t>(lastTick));
    text += UTI::Format("SlotTime = %lld\n", static_cast<std::int64_t>(slotTime));
    text += UTI::Format("Skipped  = %lu\n", protector->getSkippedCount());
    text += UTI::Format("Dropped  = %lu\n", nDropped.load());
    return text;
}

} // namespace BSS::TSK
