// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Millisecond timers: one thread that fires them in the order in which they are due, those that are due at
// once in the order in which they were set, and tells of each by a callback, by setting an event or by
// pulsing one.
//
// Any thread may set and kill timers. Callbacks run on the engine's thread while the engine's lock is held: a
// callback may set timers and kill any, its own included, but must not wait for another thread that does.
// When kill returns, the timer's callback is not running any more, unless it is the one that kills. What a
// callback throws is logged and goes no further. An engine that never catches up with what is due stops every
// 10 ms for those who want to set or kill timers.
//
// Where the clock goes on while a computer is asleep, as on Windows, all that has fallen due meanwhile fires
// when it wakes, each periodic timer as often as it missed. On Linux the clock stands still meanwhile, so
// nothing is missed and everything is later by the sleep. When told so, the engine waits for the event of
// BSS_TSK_WakeUp.h before it sets or fires anything; callbacks, which come after that, set timers at once.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"
#include "Bss/Bss_Tim/BSS_TIM_TickClock.h"
#include "Bss/Bss_Tsk/BSS_TSK_GiveWay.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerIdMap.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerRecord.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerWheel.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

namespace boost {
class thread;
} // namespace boost

namespace BSS::TSK::Timer {

// Flags of a timer.
inline constexpr std::uint16_t TIMER_ONE_SHOT = 0x000;
inline constexpr std::uint16_t TIMER_PERIODIC = 0x001;
inline constexpr std::uint16_t TIMER_CALLBACK = 0x000;
inline constexpr std::uint16_t TIMER_SET_EVENT = 0x010;
inline constexpr std::uint16_t TIMER_PULSE_EVENT = 0x020;
inline constexpr std::uint16_t TIMER_KILL_SYNCHRONOUS = 0x100; ///< what kill always is

inline constexpr std::uint32_t TIMER_LONGEST_MS = 7200000;            ///< two hours
inline constexpr std::uint32_t TIMER_FIRST_AFTER_PERIOD = 0xFFFFFFFF; ///< a first delay

using TimerCallbackT = void (*)(std::uint32_t timerId, std::uint32_t reserved, std::uint32_t user,
                                std::uint32_t reserved1, std::uint32_t reserved2);

/// Whom a timer tells: which of the two it is, the timer's flags say.
class TimerTargetT
{
public:
    TimerTargetT(TimerCallbackT callback) noexcept : m_value(reinterpret_cast<std::uintptr_t>(callback)) {}
    explicit TimerTargetT(HAL::WaitHandleT event) noexcept : m_value(event) {}
    std::uintptr_t get() const noexcept { return m_value; }

private:
    std::uintptr_t m_value;
};

class TimerEngineC
{
public:
    /// The clock must outlive the engine.
    explicit TimerEngineC(TIM::TickClockC& clock = TIM::GetTickClock());

    /// The engine should have been stopped, with no timer left; assertions tell otherwise.
    ~TimerEngineC();
    TimerEngineC(const TimerEngineC&) = delete;
    TimerEngineC& operator=(const TimerEngineC&) = delete;

    /// `engineId` is 0 to 15 and becomes part of all ids. 1, also when the engine runs already; 0 when the
    /// system has no event or thread to give. A priority that the system refuses for the thread is reported
    /// by an assertion. An engine that a callback has ended by boost::thread_interrupted begins anew.
    int start(std::uint32_t engineId);

    /// Ends the thread, after the callback that is running. Timers that are left are reported by an assertion
    /// and fire no more; none can be set from here on. 1; 0 for a callback, which cannot stop its own engine.
    int stop();

    /// Until stop has ended the thread. False once a callback has ended it.
    bool isRunning() const noexcept { return m_bStarted.load(); }

    /// The timer's id, or 0. Bad arguments are reported by assertions: flags outside 0x1F1 and a period of 0
    /// are refused, a period or first delay of more than two hours is two hours. A first delay of 0 fires at
    /// once, TIMER_FIRST_AFTER_PERIOD after one period. The resolution ends up as 1 to 55: 0 means 1, and 55
    /// stands for anything above and for one that is larger than the period. The calling thread runs at
    /// time-critical priority meanwhile, where it may.
    std::uint32_t setTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                           std::uint32_t user, std::uint16_t flags, std::uint32_t firstDelayMs);

    /// The same with the first firing at a time of the engine's clock instead of after a delay: at once if it
    /// is past, two hours from now at the latest.
    std::uint32_t setTimerAt(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                             std::uint32_t user, std::uint16_t flags, std::uint64_t firstDueTick);

    /// RC_OK; RC_NOT_FOUND for an id that is no timer's (any more).
    ResultCodeT killTimer(std::uint32_t timerId);

    std::uint32_t getActiveCount() const;

    /// The smallest resolution that a timer has asked for; 55 without any.
    std::uint32_t getMinResolution() const;

    /// Whether to wait for the event "WakeUpRequested". Throws SysServiceErrorC when the system has no event
    /// to give for it.
    void setWakeUpWait(bool bWait);

    TIM::TickClockC& getClock() const noexcept { return m_clock; }

    /// Sets the counter of ids; the next one drawn is the one behind it. For tests.
    void setIdCounter(std::uint32_t counter);

protected:
    /// For tests, inside a callback: the engine's lock guards it.
    TimerIdMapC& getIdMap() noexcept { return m_ID2IdxMap; }

private:
    static constexpr std::size_t RESOLUTIONS = 54;
    static constexpr std::uint32_t RESOLUTION_NONE = 55;
    static constexpr std::size_t RESERVED_TIMERS = 128;

    /// When a timer fires first: after a delay, or at a time.
    struct FirstT
    {
        std::uint64_t value;
        bool bTick;
    };

    /// The timer lock, for all but the engine's own thread, which sees that somebody waits for it.
    class EntryC
    {
    public:
        explicit EntryC(const TimerEngineC& engine);
        ~EntryC();
        EntryC(const EntryC&) = delete;
        EntryC& operator=(const EntryC&) = delete;

    private:
        const TimerEngineC& m_engine;
    };

    std::uint32_t CheckAndAdd(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                              std::uint32_t user, std::uint16_t flags, FirstT first);
    std::uint32_t Add(std::uint32_t periodMs, std::uint32_t resolutionMs, TimerTargetT target,
                      std::uint32_t user, std::uint16_t flags, FirstT first);
    std::uint64_t DueTime(std::uint32_t periodMs, FirstT first);
    bool UseResolution(std::uint32_t resolutionMs);
    void ReleaseResolution(std::uint32_t resolutionMs);
    TimerRecordT& TakeRecord();
    void ReleaseRecord(TimerRecordT& timer);
    std::uint32_t DrawId();
    void Run(HAL::WaitHandleT event, HAL::WaitHandleT arrived);
    bool ProcessTimer(HAL::WaitHandleT event);
    void Notify(const TimerRecordT& timer);
    void Settle(TimerRecordT& timer);
    void AwaitWakeUp() const;
    void AwaitWakeUpOrStop(HAL::WaitHandleT event) const;
    void Empty();
    void Finish();
    void ReportLeftOver();

    TIM::TickClockC& m_clock;
    std::uint32_t m_engineId = 0;
    std::deque<TimerRecordT> m_Timers; // records stay where they are
    TimerRecordT* m_pFree = nullptr;
    TimerIdMapC m_ID2IdxMap;
    TimerWheelC m_wheel;
    std::uint32_t m_ulNbActiveTimers = 0;
    TimerRecordT* m_pFiring = nullptr; // out of the wheel, being told of
    std::array<std::uint16_t, RESOLUTIONS> m_resolutionUses = {};
    std::uint32_t m_minResolution = RESOLUTION_NONE;
    std::uint32_t m_idCounter = 0;
    HAL::WaitHandleT m_hTimerEvent = HAL::NO_WAIT_HANDLE; // guarded by the timer lock
    std::unique_ptr<boost::thread> m_hTimerThread;        // guarded by the start lock
    std::atomic<std::uint32_t> m_threadId{0};
    mutable MutexC m_startLock;                    // start and stop
    mutable MutexC m_resolutionLock;               // the uses and the minimum
    mutable MutexC m_timerLock;                    // everything else about timers
    std::uint64_t m_wakeTime = TimerWheelC::NEVER; // until when the thread sleeps; guarded by the timer lock
    std::atomic<bool> m_bRunning{false};           // the thread is to go on, and timers may be set
    std::atomic<bool> m_bStarted{false}; // the answer of isRunning, which takes no lock: callbacks ask it
    std::atomic<bool> m_bWakeUpWait{false};
    mutable GiveWayC m_way; // to the timer lock
};

} // namespace BSS::TSK::Timer
