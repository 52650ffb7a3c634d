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
#include <utility>

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

constexpr std::uint64_t LONGEST_ROW_MS = 10; // of timers that are due, before others are let in

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

TimerEngineC::EntryC::EntryC(const TimerEngineC& engine) : m_engine(engine)
{
    m_engine.m_way.lock(m_engine.m_timerLock, m_engine.m_hTimerEvent);
}

TimerEngineC::EntryC::~EntryC()
{
    m_engine.m_timerLock.unlock();
}

TimerEngineC::TimerEngineC(TIM::TickClockC& clock) : m_clock(clock) {}

TimerEngineC::~TimerEngineC()
{
    bool bThread = false;
    {
        const GuardC guard(m_startLock);
        bThread = m_hTimerThread != nullptr;
    }
    if (bThread) {
        Report(false, "m_hTimerEvent == 0 && m_hTimerThread == 0", __LINE__);
        stop(); // which reports what is left
    } else {
        ReportLeftOver();
    }
}

void TimerEngineC::ReportLeftOver()
{
    const EntryC entry(*this);
    BSS_ASSERT(m_ID2IdxMap.empty());
    Report(m_wheel.isEmpty(), "m_lpTimerList == 0", __LINE__);
    BSS_ASSERT(m_ulNbActiveTimers == 0);
}

// Under the timer lock.
void TimerEngineC::Empty()
{
    m_wakeTime = TimerWheelC::NEVER;
    m_ID2IdxMap.clear();
    m_wheel.reset(m_clock.now());
    m_ulNbActiveTimers = 0;
    m_Timers.clear();
    m_pFree = nullptr;
    const GuardC guard(m_resolutionLock);
    m_resolutionUses = {};
    m_minResolution = RESOLUTION_NONE;
}

int TimerEngineC::start(std::uint32_t engineId)
{
    if (m_threadId.load() == HAL::CurrentThreadId()) return 1; // a callback, whose engine may be stopping
    const GuardC guard(m_startLock);
    Report(engineId < 16, "dwID <= (0xf0000000 >> 28)", LINE_ENGINE_ID);
    if (m_bStarted.load()) return 1;
    if (m_hTimerThread) {
        // A callback has ended it.
        ReportLeftOver();
        Finish();
    }
    const HAL::WaitHandleT event = HAL::MakeWaitEvent(HAL::ResetMode::Auto, false);
    const HAL::WaitHandleT arrived = HAL::MakeWaitEvent(HAL::ResetMode::Auto, false);
    if (event == HAL::NO_WAIT_HANDLE || arrived == HAL::NO_WAIT_HANDLE) {
        HAL::CloseWaitHandle(event);
        HAL::CloseWaitHandle(arrived);
        return 0;
    }
    {
        const EntryC entry(*this);
        m_engineId = engineId & 15;
        Empty();
        for (std::size_t i = 0; i < RESERVED_TIMERS; ++i)
            ReleaseRecord(m_Timers.emplace_back());
    }
    m_bRunning.store(true);
    m_threadId.store(0);
    HAL::PrepareThreadStart();
    try {
        if (HAL::TakeFault(HAL::FaultT::Thread)) throw boost::thread_resource_error();
        m_hTimerThread = std::make_unique<boost::thread>([this, event, arrived] { Run(event, arrived); });
    } catch (const boost::thread_resource_error&) {
        HAL::CloseWaitHandle(event);
        HAL::CloseWaitHandle(arrived);
        m_bRunning.store(false);
        return 0;
    }
    HAL::WaitForOne(arrived, HAL::WAIT_WITHOUT_LIMIT);
    HAL::CloseWaitHandle(arrived);
    Report(HAL::ApplyThreadPriority(m_threadId.load(), HAL::PRIORITY_TIME_CRITICAL), "0", LINE_PRIORITY);
    m_bStarted.store(true);
    const EntryC entry(*this);
    m_hTimerEvent = event; // last: from here on timers can be set
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
    Finish();
    return 1;
}

// Under the start lock. Callbacks never take that one, so the thread comes to its end.
void TimerEngineC::Finish()
{
    HAL::WaitHandleT event = HAL::NO_WAIT_HANDLE;
    m_bRunning.store(false);
    {
        // Not while a timer is being set: the event is closed below.
        const EntryC entry(*this);
        event = std::exchange(m_hTimerEvent, HAL::NO_WAIT_HANDLE);
    }
    HAL::SetWaitEvent(event);
    const boost::this_thread::disable_interruption undisturbed;
    m_hTimerThread->join();
    m_hTimerThread.reset();
    HAL::CloseWaitHandle(event);
    m_threadId.store(0);
    m_bStarted.store(false);
    // Whatever was left has been told of and is gone.
    const EntryC entry(*this);
    Empty();
}

std::uint32_t TimerEngineC::setTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                                     std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs)
{
    return CheckAndAdd(periodMs, resolutionMs, target, user, flags, {firstDelayMs, false});
}

std::uint32_t TimerEngineC::setTimerAt(std::uint32_t periodMs, std::uint32_t resolutionMs,
                                       TimerTargetT target, std::uint32_t user, std::uint16_t flags,
                                       std::uint64_t firstDueTick)
{
    return CheckAndAdd(periodMs, resolutionMs, target, user, flags, {firstDueTick, true});
}

std::uint32_t TimerEngineC::CheckAndAdd(std::uint32_t periodMs, std::uint32_t resolutionMs,
                                        TimerTargetT target, std::uint32_t user, std::uint16_t flags,
                                        FirstT first)
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
    if (!first.bTick && first.value > TIMER_LONGEST_MS && first.value != TIMER_FIRST_AFTER_PERIOD) {
        Report(false, "false", LINE_FIRST_DELAY);
        first.value = TIMER_LONGEST_MS;
    }
    resolutionMs = std::clamp(resolutionMs, 1u, RESOLUTION_NONE);
    // The order of these two is as intended: it may end up above the period.
    if (resolutionMs > periodMs) resolutionMs = RESOLUTION_NONE;
    std::uint32_t dwTimerId = 0;
    {
        const HAL::PriorityBoostC boost;
        dwTimerId = Add(periodMs, resolutionMs, target, user, flags, first);
    }
    Report((dwTimerId & ~0xf0000000) != 0, "dwTimerId & (~0xf0000000)", LINE_NO_ID);
    return dwTimerId;
}

std::uint32_t TimerEngineC::Add(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                                std::uint32_t user, std::uint16_t flags, FirstT first)
{
    if (!UseResolution(resolutionMs)) return 0;
    AwaitWakeUp();
    const EntryC entry(*this);
    if (m_hTimerEvent == HAL::NO_WAIT_HANDLE || !m_bRunning.load()) {
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
    timer->dueTime = DueTime(periodMs, first);
    ++m_ulNbActiveTimers;
    m_wheel.insert(*timer);
    if (timer->dueTime < m_wakeTime) {
        m_wakeTime = timer->dueTime; // those who come behind need not wake the thread again
        HAL::SetWaitEvent(m_hTimerEvent);
    }
    return timer->uId;
}

std::uint64_t TimerEngineC::DueTime(std::uint32_t periodMs, FirstT first)
{
    const std::uint64_t now = m_clock.now();
    if (first.bTick) return std::min(first.value, now + TIMER_LONGEST_MS);
    return now + (first.value == TIMER_FIRST_AFTER_PERIOD ? periodMs : first.value);
}

ResultCodeT TimerEngineC::killTimer(std::uint32_t timerId)
{
    const EntryC entry(*this);
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
    const EntryC entry(*this);
    return m_ulNbActiveTimers;
}

std::uint32_t TimerEngineC::getMinResolution() const
{
    const GuardC guard(m_resolutionLock);
    return m_minResolution;
}

void TimerEngineC::setIdCounter(std::uint32_t counter)
{
    const EntryC entry(*this);
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
    // A timer that was being set while the engine was started again has lost its use.
    if (m_resolutionUses[resolutionMs - 1] == 0) return;
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

void TimerEngineC::Run(HAL::WaitHandleT event, HAL::WaitHandleT arrived)
{
    m_threadId.store(HAL::CurrentThreadId());
    HAL::SetWaitEvent(arrived);
    HAL::SetCurrentThreadName("TimerEngine");
    HAL::AskForExactWaits();
    try {
        while (m_bRunning.load()) {
            std::uint64_t rowBegin = m_clock.now();
            while (m_bRunning.load() && ProcessTimer(event)) {
                if (!m_way.isWanted() || m_clock.now() - rowBegin < LONGEST_ROW_MS) continue;
                m_way.giveWay(event); // the thread looks for what is due anyway
                rowBegin = m_clock.now();
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
        m_threadId.store(0); // the number may be another thread's soon
        m_bRunning.store(false);
        m_bStarted.store(false);
    }
}

// False when no timer is due.
bool TimerEngineC::ProcessTimer(HAL::WaitHandleT event)
{
    AwaitWakeUpOrStop(event);
    const GuardC guard(m_timerLock);
    if (!m_bRunning.load()) return false;
    TimerRecordT* const timer = m_wheel.head(m_clock.now());
    if (timer == nullptr) return false;
    m_wheel.remove(*timer);
    m_pFiring = timer;
    try {
        Notify(*timer);
    } catch (const boost::thread_interrupted&) {
        Settle(*timer);
        throw;
    }
    Settle(*timer);
    return true;
}

// What becomes of a timer that has been told of.
void TimerEngineC::Settle(TimerRecordT& timer)
{
    m_pFiring = nullptr;
    if (!timer.bActive) {
        ReleaseRecord(timer);
        return;
    }
    if ((timer.flags & TIMER_PERIODIC) != 0) {
        timer.dueTime += timer.period;
        m_wheel.insert(timer);
        return;
    }
    timer.bActive = false;
    --m_ulNbActiveTimers;
    TimerRecordT* const found = m_ID2IdxMap.find(timer.uId);
    Report(found == nullptr || found == &timer, "&m_Timers[ itID2Idx->second ] == lpTimer",
           LINE_OTHER_RECORD);
    Report(found != nullptr, "!\"ProcessTimer: iterator not found.\"", LINE_NO_RECORD);
    m_ID2IdxMap.erase(timer.uId);
    ReleaseResolution(timer.resolution);
    ReleaseRecord(timer);
}

void TimerEngineC::Notify(const TimerRecordT& timer)
{
    switch (timer.flags & FLAGS_KIND) {
    case TIMER_CALLBACK:
        try {
            reinterpret_cast<TimerCallbackT>(timer.target)(timer.uId, 0, timer.user, 0, 0);
        } catch (const boost::thread_interrupted&) {
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

void TimerEngineC::setWakeUpWait(bool bWait)
{
    if (bWait) static_cast<void>(GetWakeUpRequestedEvent()); // made here, where that may fail
    m_bWakeUpWait.store(bWait);
}

// A callback is called with the lock held and does not wait: everybody who sets or kills a timer would.
void TimerEngineC::AwaitWakeUp() const
{
    if (m_threadId.load() == HAL::CurrentThreadId()) return;
    if (m_bWakeUpWait.load()) static_cast<void>(GetWakeUpRequestedEvent().wait(-1));
}

// On the engine's thread. The engine's own event says that it is stopping, or that there is a new first
// timer, for which the thread looks anyway afterwards.
void TimerEngineC::AwaitWakeUpOrStop(HAL::WaitHandleT event) const
{
    if (!m_bWakeUpWait.load()) return;
    const HAL::WaitHandleT handles[] = {GetWakeUpRequestedEvent().getHandle(), event};
    while (m_bRunning.load()) {
        const HAL::WaitAnswerT answer = HAL::WaitForAny(handles, 2, HAL::WAIT_WITHOUT_LIMIT);
        if (answer.kind != HAL::WaitAnswerT::Kind::Signalled || answer.index == 0) return;
    }
}

} // namespace BSS::TSK::Timer
