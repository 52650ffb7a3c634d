// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a command task's object and its thread have together and either may outlive: the queue, the events,
// the table of extra events and the flags. The object posts into it, the thread runs the loop over it. For
// the sources of BSS_TSK_Command* and tests only.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandPosting.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_GiveWay.h"
#include "Bss/Bss_Tsk/BSS_TSK_MsgQueue.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_Semaphore.h"
#include "Bss/Bss_Tsk/BSS_TSK_TaskStatistics.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

/// The locks and lists that the task's thread holds and changes. A thread that is ended by force may leave
/// them locked or half changed; the next one gets new ones, and these are abandoned. What others wait for is
/// a semaphore: it has no owner, so that whoever ended the thread can give it back.
struct CommandRunSideT
{
    MutexC queueLock;
    TakenMsgsT taken;
    MsgPtrT current;                             ///< the message that is being executed
    SemaphoreC handlerGate{1};                   ///< taken while an event handler runs
    GiveWayC handlerWay;                         ///< to that
    std::atomic<std::uint32_t> handlerThread{0}; ///< on which one runs
    SemaphoreC hookGate{1};                      ///< taken while the time-out hook runs
};

class CommandCoreC
{
public:
    static constexpr std::size_t MAX_EXTRA_EVENTS = HAL::MAX_WAIT_HANDLES - 2;
    using WaitFunctionT = HAL::WaitAnswerT (*)(const HAL::WaitHandleT* handles, std::size_t count,
                                               std::uint32_t limitMs) noexcept;

    CommandCoreC(std::string name, std::shared_ptr<DBG::DbgLogConsumerC> logger, std::uint32_t maxMsgCount);
    ~CommandCoreC();
    CommandCoreC(const CommandCoreC&) = delete;
    CommandCoreC& operator=(const CommandCoreC&) = delete;

    // Any thread.
    ResultCodeT AddNewMsg(const MsgPtrT& message, bool bHigh);
    /// Posts a stop request and keeps the answer; memory that is missing is a refusal too.
    ResultCodeT RequestStop();
    ResultCodeT Attach(HAL::WaitHandleT handle, ExtraEventHandlerT handler);
    ResultCodeT Detach(HAL::WaitHandleT handle);
    std::int32_t Percent(std::uint32_t count) const noexcept;

    /// Puts a side of its own in the place of one that a thread has left behind.
    void AbandonRunSide();

    // The task's thread.
    void Loop();

    template<typename... Arguments>
    void Log(int level, const char* format, const Arguments&... arguments) const;
    bool IsLogged(int level) const noexcept;

    const std::string name;
    const std::shared_ptr<DBG::DbgLogConsumerC> logger;
    MsgQueueC queue;
    EventC queueEvent{HAL::ResetMode::Manual};
    EventC reloadEvent;
    EventC letInEvent; ///< somebody who detaches an event has the handler gate
    std::atomic<CommandRunSideT*> side{new CommandRunSideT};
    std::atomic<std::uint32_t> waitTimeoutMs{HAL::WAIT_WITHOUT_LIMIT};
    std::atomic<bool> bOverflow{false};
    std::atomic<std::uint32_t> lastCount{0}; ///< of messages, with the last successful post
    std::atomic<bool> bStopRequested{false};
    std::atomic<bool> bStopInOrder{false};
    std::atomic<ResultCodeT> lastStopPost{RC_FAILED};
    std::atomic<bool> bKilled{false};  ///< the loop is to leave at once
    std::atomic<bool> bEntered{false}; ///< the thread has its share of this
    TaskStatisticsC statistics;
    UTI::SubjectC overflowSubject;
    UTI::SubjectC mainEndedSubject;
    MutexC settingsLock; ///< guards the two below
    std::wstring overflowText;
    std::shared_ptr<UTI::SubjectC> timeoutSubject;
    MutexC tableLock; ///< guards the table; held briefly, by the task's thread behind a shield
    std::map<HAL::WaitHandleT, std::shared_ptr<const ExtraEventHandlerT>> table; ///< of extra events
    std::function<void()> timeoutHook;    ///< set before the first start
    std::atomic<bool> bObjectGone{false}; ///< the hook must not be called any more
    WaitFunctionT wait = &HAL::WaitForAny;
    std::function<void()> onRefused; ///< for tests: between the refusal of a message and the overflow flag

private:
    using HandlesT = std::vector<HAL::WaitHandleT>;

    ResultCodeT RefuseFull();
    ResultCodeT PostStopRequest();
    void LogLevel(std::uint32_t count, std::uint32_t before) const;
    HandlesT BuildWaitList();
    void Serve(const HAL::WaitAnswerT& answer, HandlesT& handles, bool& bLeave);
    void ServeTimeout(bool& bLeave);
    void ServeFailure(std::uint32_t error, HandlesT& handles, bool& bLeave);
    void ServeOwnEvents(HandlesT& handles, bool& bLeave);
    void ServeExtraEvent(HAL::WaitHandleT handle);
    bool ExecuteMessages();
    bool MoreComes() const noexcept;
    void Execute(MsgObjectI& message);
    /// Logs what the action throws, but for boost::thread_interrupted, which goes on.
    template<typename ActionT>
    void Guarded(const char* pszWhat, const ActionT& action) const;
};

} // namespace BSS::TSK
