// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_WakeUp.h"

#include <algorithm>
#include <boost/thread/thread_only.hpp>
#include <exception>

namespace BSS::TSK::Timer {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TimerEngine)";

// Lines by which these reports have always been known.
constexpr std::int32_t LINE_NO_KIND = 820;
constexpr std::int32_t LINE_OTHER_RECORD = 836;
constexpr std::int32_t LINE_NO_RECORD = 841;
constexpr std::int32_t LINE_ID_IN_USE = 903;
constexpr std::int32_t LINE_ENGINE_ID = 1092;
constexpr std::int32_t LINE_PRIORITY = 1142;
constexpr std::int32_t LINE_FLAGS = 1534;
constexpr std::int32_t LINE_LONG_PERIOD = 1543;
constexpr std::int32_t LINE_NO_PERIOD = 1550;
constexpr std::int32_t LINE_FIRST_DELAY = 1564;
constexpr std::int32_t LINE_NO_ID = 1605;

constexpr std::uint16_t FLAGS_ALLOWED = 0x1F1;
constexpr std::uint16_t FLAGS_KIND = 0x0F0;
constexpr std::uint32_t ID_LIMIT = 0x10000000; // sequence numbers are below
constexpr unsigned ENGINE_SHIFT = 28;
constexpr std::uint16_t MOST_USES = 65535;

void Report(bool condition, const char* expression, std::int32_t line)
{
    if (!condition) ERR::AssertFailed(expression, 0, 0, BSS_SOURCE_NAME, line);
}

void LogThrown(const char* what)
{
    const DBG::DbgLogMgrC::ConsumerPtrT logger = DBG::DbgLogMgrC::instance().getSystemErrorLogger();
    if (logger)
        logger->Log(DBG::LEVEL_ERROR, "[BSS::TSK::Timer::TimerEngineC] exception in a timer callback: %s\n",
                    what);
}

} // namespace

TimerEngineC::TimerEngineC(TIM::TickClockC& clock) : m_clock(clock) {}

TimerEngineC::~TimerEngineC()
{
    if (isRunning()) {
        Report(false, "m_hTimerEvent == 0 && m_hTimerThread == 0", __LINE__);
        stop(); // which reports what is left
    } else {
        ReportLeftOver();
    }
}

void TimerEngineC::ReportLeftOver()
{
    const GuardC guard(m_timerLock);
    BSS_ASSERT(m_ID2IdxMap.empty());
    Report(m_wheel.isEmpty(), "m_lpTimerList == 0", __LINE__);
    BSS_ASSERT(m_ulNbActiveTimers == 0);
}

int TimerEngineC::start(std::uint32_t engineId)
{
    const GuardC guard(m_startLock);
    Report(engineId < 16, "dwID <= (0xf0000000 >> 28)", LINE_ENGINE_ID);
    if (m_hTimerThread) return 1;
    m_hTimerEvent = HAL::MakeWaitEvent(HAL::ResetMode::Auto, false);
    m_hArrived = HAL::MakeWaitEvent(HAL::ResetMode::Auto, false);
    if (m_hTimerEvent == HAL::NO_WAIT_HANDLE || m_hArrived == HAL::NO_WAIT_HANDLE) {
        CloseEvents();
        return 0;
    }
    {
        const GuardC timers(m_timerLock);
        m_engineId = engineId & 15;
        m_resolutionUses = {};
        m_minResolution = RESOLUTION_NONE;
        m_wakeTime = TimerWheelC::NEVER;
        m_ID2IdxMap.clear();
        m_wheel.reset(m_clock.now());
        m_ulNbActiveTimers = 0;
        m_Timers.clear();
        m_pFree = nullptr;
        for (std::size_t i = 0; i < RESERVED_TIMERS; ++i)
            ReleaseRecord(m_Timers.emplace_back());
    }
    m_bRunning.store(true);
    m_threadId.store(0);
    try {
        if (HAL::TakeFault(HAL::FaultT::Thread)) throw boost::thread_resource_error();
        m_hTimerThread = std::make_unique<boost::thread>([this] { Run(); });
    } catch (const boost::thread_resource_error&) {
        CloseEvents();
        m_bRunning.store(false);
        return 0;
    }
    HAL::WaitForOne(m_hArrived, HAL::WAIT_WITHOUT_LIMIT);
    Report(HAL::ApplyThreadPriority(m_threadId.load(), HAL::PRIORITY_TIME_CRITICAL), "0", LINE_PRIORITY);
    return 1;
}

int TimerEngineC::stop()
{
    if (m_threadId.load() == HAL::CurrentThreadId()) {
        Report(false, "false", __LINE__);
        return 0;
    }
    const GuardC guard(m_startLock);
    if (!m_hTimerThread) return 1;
    ReportLeftOver();
    m_bRunning.store(false);
    HAL::SetWaitEvent(m_hTimerEvent);
    const boost::this_thread::disable_interruption undisturbed;
    m_hTimerThread->join();
    m_hTimerThread.reset();
    CloseEvents();
    const GuardC timers(m_timerLock);
    m_threadId.store(0);
    // Whatever was left has been told of and is gone.
    m_wheel.reset(0);
    m_ID2IdxMap.clear();
    m_ulNbActiveTimers = 0;
    return 1;
}

void TimerEngineC::CloseEvents()
{
    const GuardC guard(m_timerLock);
    for (HAL::WaitHandleT* const handle : {&m_hTimerEvent, &m_hArrived}) {
        HAL::CloseWaitHandle(*handle);
        *handle = HAL::NO_WAIT_HANDLE;
    }
}

bool TimerEngineC::isRunning() const
{
    const GuardC guard(m_startLock);
    return m_hTimerThread != nullptr;
}

std::uint32_t TimerEngineC::setTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                                     std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs)
{
    if ((flags & ~FLAGS_ALLOWED) != 0) {
        Report(false, "false", LINE_FLAGS);
        return 0;
    }
    if (periodMs > TIMER_LONGEST_MS) {
        Report(false, "false", LINE_LONG_PERIOD);
        periodMs = TIMER_LONGEST_MS;
    }
    if (periodMs == 0) {
        Report(false, "false", LINE_NO_PERIOD);
        return 0;
    }
    if (firstDelayMs > TIMER_LONGEST_MS && firstDelayMs != TIMER_FIRST_AFTER_PERIOD) {
        Report(false, "false", LINE_FIRST_DELAY);
        firstDelayMs = TIMER_LONGEST_MS;
    }
    resolutionMs = std::clamp(resolutionMs, 1u, RESOLUTION_NONE);
    // The order of these two is as intended: it may end up above the period.
    if (resolutionMs > periodMs) resolutionMs = RESOLUTION_NONE;
    std::uint32_t dwTimerId = 0;
    {
        const HAL::PriorityBoostC boost;
        dwTimerId = Add(periodMs, resolutionMs, target, user, flags, firstDelayMs);
    }
    Report((dwTimerId & ~0xf0000000) != 0, "dwTimerId & (~0xf0000000)", LINE_NO_ID);
    return dwTimerId;
}

std::uint32_t TimerEngineC::Add(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                                std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs)
{
    if (!UseResolution(resolutionMs)) return 0;
    AwaitWakeUp();
    const GuardC guard(m_timerLock);
    if (m_hTimerEvent == HAL::NO_WAIT_HANDLE) {
        ReleaseResolution(resolutionMs);
        return 0;
    }
    TimerRecordT* timer = nullptr;
    try {
        timer = &TakeRecord();
        timer->uId = DrawId();
        m_ID2IdxMap.insert(timer->uId, *timer);
    } catch (const std::bad_alloc&) {
        if (timer != nullptr) ReleaseRecord(*timer);
        ReleaseResolution(resolutionMs);
        return 0;
    }
    timer->period = periodMs;
    timer->resolution = resolutionMs;
    timer->target = target.get();
    timer->user = user;
    timer->flags = flags;
    timer->bActive = true;
    timer->dueTime = m_clock.now() + (firstDelayMs == TIMER_FIRST_AFTER_PERIOD ? periodMs : firstDelayMs);
    ++m_ulNbActiveTimers;
    m_wheel.insert(*timer);
    if (timer->dueTime < m_wakeTime) {
        m_wakeTime = timer->dueTime; // those who come behind need not wake the thread again
        HAL::SetWaitEvent(m_hTimerEvent);
    }
    return timer->uId;
}

ResultCodeT TimerEngineC::killTimer(std::uint32_t timerId)
{
    const GuardC guard(m_timerLock);
    TimerRecordT* const timer = m_ID2IdxMap.find(timerId);
    if (timer == nullptr) return RC_NOT_FOUND;
    m_ID2IdxMap.erase(timerId);
    timer->bActive = false;
    --m_ulNbActiveTimers;
    ReleaseResolution(timer->resolution);
    if (timer == m_pFiring) return RC_OK; // its record is released when its callback has returned
    m_wheel.remove(*timer);
    ReleaseRecord(*timer);
    return RC_OK;
}

std::uint32_t TimerEngineC::getActiveCount() const
{
    const GuardC guard(m_timerLock);
    return m_ulNbActiveTimers;
}

std::uint32_t TimerEngineC::getMinResolution() const
{
    const GuardC guard(m_resolutionLock);
    return m_minResolution;
}

void TimerEngineC::setIdCounter(std::uint32_t counter)
{
    const GuardC guard(m_timerLock);
    m_idCounter = counter;
}

bool TimerEngineC::UseResolution(std::uint32_t resolutionMs)
{
    if (resolutionMs == 0) return false;
    if (resolutionMs > RESOLUTIONS) return true;
    const GuardC guard(m_resolutionLock);
    std::uint16_t& uses = m_resolutionUses[resolutionMs - 1];
    if (uses == MOST_USES) return false;
    ++uses;
    if (uses == 1) m_minResolution = std::min(m_minResolution, resolutionMs);
    return true;
}

void TimerEngineC::ReleaseResolution(std::uint32_t resolutionMs)
{
    if (resolutionMs > RESOLUTIONS) return;
    const GuardC guard(m_resolutionLock);
    if (--m_resolutionUses[resolutionMs - 1] != 0 || m_minResolution != resolutionMs) return;
    while (m_minResolution < RESOLUTION_NONE && m_resolutionUses[m_minResolution - 1] == 0)
        ++m_minResolution;
}

TimerRecordT& TimerEngineC::TakeRecord()
{
    if (m_pFree == nullptr) return m_Timers.emplace_back();
    TimerRecordT& timer = *m_pFree;
    m_pFree = timer.next;
    return timer;
}

void TimerEngineC::ReleaseRecord(TimerRecordT& timer)
{
    timer.bActive = false;
    timer.next = m_pFree;
    m_pFree = &timer;
}

// After 2^28 timers the numbers begin again; one whose timer still lives is told of and passed over.
std::uint32_t TimerEngineC::DrawId()
{
    for (;;) {
        if (++m_idCounter >= ID_LIMIT) m_idCounter = 1;
        const std::uint32_t dwTimerId = m_engineId << ENGINE_SHIFT | m_idCounter;
        if (m_ID2IdxMap.find(dwTimerId) == nullptr) return dwTimerId;
        Report(false, "m_ID2IdxMap.find(dwTimerId) == m_ID2IdxMap.end()", LINE_ID_IN_USE);
    }
}

void TimerEngineC::Run()
{
    m_threadId.store(HAL::CurrentThreadId());
    HAL::SetWaitEvent(m_hArrived);
    HAL::SetCurrentThreadName("TimerEngine");
    HAL::AskForExactWaits();
    const HAL::WaitHandleT event = m_hTimerEvent;
    try {
        while (m_bRunning.load()) {
            while (m_bRunning.load() && ProcessTimer()) {
            }
            std::uint64_t wakeTime = TimerWheelC::NEVER;
            {
                const GuardC guard(m_timerLock);
                wakeTime = m_wakeTime = m_wheel.nextTime();
            }
            // A timer that is set from here on and is due earlier signals the event.
            if (!m_bRunning.load()) break;
            if (wakeTime == TimerWheelC::NEVER) {
                m_clock.wait(event);
            } else {
                m_clock.waitUntil(event, wakeTime);
            }
        }
    } catch (const boost::thread_interrupted&) {
        LogThrown("interrupted; the engine ends");
    }
}

// False when no timer is due.
bool TimerEngineC::ProcessTimer()
{
    AwaitWakeUp();
    const GuardC guard(m_timerLock);
    TimerRecordT* const timer = m_wheel.head(m_clock.now());
    if (timer == nullptr) return false;
    m_wheel.remove(*timer);
    m_pFiring = timer;
    Notify(*timer);
    m_pFiring = nullptr;
    if (!timer->bActive) {
        ReleaseRecord(*timer);
        return true;
    }
    if ((timer->flags & TIMER_PERIODIC) != 0) {
        timer->dueTime += timer->period;
        m_wheel.insert(*timer);
        return true;
    }
    timer->bActive = false;
    --m_ulNbActiveTimers;
    TimerRecordT* const found = m_ID2IdxMap.find(timer->uId);
    Report(found == nullptr || found == timer, "&m_Timers[ itID2Idx->second ] == lpTimer", LINE_OTHER_RECORD);
    Report(found != nullptr, "!\"ProcessTimer: iterator not found.\"", LINE_NO_RECORD);
    m_ID2IdxMap.erase(timer->uId);
    ReleaseResolution(timer->resolution);
    ReleaseRecord(*timer);
    return true;
}

void TimerEngineC::Notify(const TimerRecordT& timer)
{
    switch (timer.flags & FLAGS_KIND) {
    case TIMER_CALLBACK:
        try {
            reinterpret_cast<TimerCallbackT>(timer.target)(timer.uId, 0, timer.user, 0, 0);
        } catch (const boost::thread_interrupted&) {
            m_pFiring = nullptr;
            throw;
        } catch (const std::exception& error) {
            LogThrown(error.what());
        } catch (...) {
            LogThrown("unknown");
        }
        break;
    case TIMER_SET_EVENT:
        HAL::SetWaitEvent(timer.target);
        break;
    case TIMER_PULSE_EVENT:
        HAL::PulseWaitEvent(timer.target);
        break;
    default:
        Report(false, "0", LINE_NO_KIND);
    }
}

void TimerEngineC::AwaitWakeUp() const
{
    if (m_bWakeUpWait.load()) static_cast<void>(GetWakeUpRequestedEvent().wait(-1));
}

} // namespace BSS::TSK::Timer
