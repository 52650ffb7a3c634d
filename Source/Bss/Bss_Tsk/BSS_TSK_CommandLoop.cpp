// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The loop of a command task, on its thread. Nothing that is called from here ends it but a stop request, a
// kill, and boost::thread_interrupted. In which order the queue, its event and the flags are looked at is
// what Tests/Models/queue.pml checks, which has to change with it.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandLog.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <algorithm>
#include <boost/thread/exceptions.hpp>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_CommandTask)";

// Lines by which these reports and texts have always been known.
constexpr std::int32_t LINE_INVALID_HANDLE = 495;
constexpr std::int32_t LINE_WAIT_FAILED_TEXT = 511;
constexpr std::int32_t LINE_WAIT_FAILED = 513;
constexpr std::int32_t LINE_OTHER_ANSWER = 543;

// As the negated literal would be spelled.
constexpr char INVALID_HANDLE[] =
    "!\"WAIT_FAILED occurred in BSS::TSK::CommandTaskC::main because of an invalid handle! "
    "This could be caused by not calling detachEvent() before the event handle is closed.\"";

constexpr std::size_t QUEUE_EVENT = 0;
constexpr std::size_t RELOAD_EVENT = 1;

constexpr std::uint32_t FAILURE_PAUSE_MS = 100;

using KindT = HAL::WaitAnswerT::Kind;

// The time in which an event handler runs, for those who detach it and wait.
class HandlerTurnC
{
public:
    explicit HandlerTurnC(CommandRunSideT& own) : m_own(own)
    {
        const HAL::EndShieldC shield;
        m_own.handlerGate.lock();
        m_own.handlerThread.store(HAL::CurrentThreadId());
    }
    ~HandlerTurnC()
    {
        const HAL::EndShieldC shield;
        m_own.handlerThread.store(0);
        m_own.handlerGate.unlock();
    }
    HandlerTurnC(const HandlerTurnC&) = delete;
    HandlerTurnC& operator=(const HandlerTurnC&) = delete;

private:
    CommandRunSideT& m_own;
};

// The time in which the time-out hook runs, for the destructor of the object that it belongs to.
class HookTurnC
{
public:
    explicit HookTurnC(CommandRunSideT& own) : m_gate(own.hookGate)
    {
        const HAL::EndShieldC shield;
        m_gate.lock();
    }
    ~HookTurnC()
    {
        const HAL::EndShieldC shield;
        m_gate.unlock();
    }
    HookTurnC(const HookTurnC&) = delete;
    HookTurnC& operator=(const HookTurnC&) = delete;

private:
    SemaphoreC& m_gate;
};

// Lets go of the message however its execution ends.
class CurrentMsgC
{
public:
    explicit CurrentMsgC(MsgPtrT& current) noexcept : m_current(current) {}
    ~CurrentMsgC() { m_current = nullptr; }
    CurrentMsgC(const CurrentMsgC&) = delete;
    CurrentMsgC& operator=(const CurrentMsgC&) = delete;

private:
    MsgPtrT& m_current;
};

} // namespace

void CommandCoreC::Loop()
{
    struct EndC
    {
        CommandCoreC& core;
        ~EndC()
        {
            try {
                core.Guarded("a main-ended observer",
                             [this] { core.mainEndedSubject.notify(COMMAND_TASK_MAIN_ENDED); });
            } catch (const boost::thread_interrupted&) {
                // The thread is on its way out already.
            }
        }
    } const end{*this};
    HandlesT handles = BuildWaitList();
    bool bLeave = false;
    while (!bLeave && !bKilled.load()) {
        const std::uint32_t limitMs = bOverflow.load() ? 0 : waitTimeoutMs.load();
        statistics.markIdle();
        Serve(wait(handles.data(), handles.size(), limitMs), handles, bLeave);
    }
}

// Handles that are closed are left out: they have been reported, and would be so for ever.
CommandCoreC::HandlesT CommandCoreC::BuildWaitList()
{
    HandlesT handles = {queueEvent.getHandle(), reloadEvent.getHandle()};
    const HAL::EndShieldC shield;
    const GuardC guard(tableLock);
    for (const auto& [handle, handler] : table)
        if (HAL::IsWaitHandleOpen(handle)) handles.push_back(handle);
    return handles;
}

void CommandCoreC::Serve(const HAL::WaitAnswerT& answer, HandlesT& handles, bool& bLeave)
{
    if (answer.kind == KindT::TimedOut) {
        ServeTimeout(bLeave);
    } else if (answer.kind == KindT::Failed) {
        ServeFailure(answer.error, handles, bLeave);
    } else if (answer.kind != KindT::Signalled || answer.index >= handles.size()) {
        BSS_ASSERT_AT(false, LINE_OTHER_ANSWER);
    } else if (answer.index == QUEUE_EVENT) {
        bLeave = ExecuteMessages();
    } else if (answer.index == RELOAD_EVENT) {
        Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] reload event list\n");
        handles = BuildWaitList();
    } else {
        ServeExtraEvent(handles[answer.index]);
    }
}

void CommandCoreC::ServeTimeout(bool& bLeave)
{
    Log(DBG::LEVEL_FINEST, "[BSS::TSK::CommandTaskC] timeout occurred\n");
    if (bOverflow.load()) {
        bOverflow.store(false);
        Guarded("an overflow observer", [this] { overflowSubject.notify(COMMAND_TASK_OVERFLOW_ENDED); });
        if (bStopRequested.load()) bLeave = true;
    }
    Guarded("the time-out hook", [this] {
        // Before the turn: a loop that frees it only to take it again would keep the destructor out. And
        // after it: the destructor may have had it in between.
        if (!timeoutHook || bObjectGone.load()) return;
        const HookTurnC turn(*side.load());
        if (!bObjectGone.load()) timeoutHook();
    });
    std::shared_ptr<UTI::SubjectC> subject;
    {
        const HAL::EndShieldC shield; // no run of the task gets another lock for the settings
        const GuardC guard(settingsLock);
        subject = timeoutSubject;
    }
    if (subject) Guarded("a time-out observer", [&] { subject->notify(COMMAND_TASK_TIMEOUT); });
}

void CommandCoreC::ServeFailure(std::uint32_t error, HandlesT& handles, bool& bLeave)
{
    if (error != HAL::WAIT_ERROR_INVALID_HANDLE) {
        Log(DBG::LEVEL_ERROR, "[BSS::TSK::CommandTaskC] Ln%4d: WaitForMultipleObjects Failed (%d)\n",
            LINE_WAIT_FAILED_TEXT, error);
        BSS_ASSERT_AT(false, LINE_WAIT_FAILED);
        ServeOwnEvents(handles, bLeave);
        return;
    }
    if (HAL::WaitForOne(reloadEvent.getHandle(), 0)) {
        Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] reload event list\n");
    } else {
        ERR::AssertFailed(INVALID_HANDLE, 0, 0, BSS_SOURCE_NAME, LINE_INVALID_HANDLE);
    }
    handles = BuildWaitList();
}

// What has failed once may fail for a while, as waiting for a descriptor does when the system has none left
// to wake the thread by. The task's own two events can be waited for all the same: messages are served, and
// the next try comes after a pause instead of at once.
void CommandCoreC::ServeOwnEvents(HandlesT& handles, bool& bLeave)
{
    const std::uint32_t limitMs = bOverflow.load() ? 0 : waitTimeoutMs.load();
    const HAL::WaitAnswerT answer =
        HAL::WaitForAny(handles.data(), RELOAD_EVENT + 1, std::min(limitMs, FAILURE_PAUSE_MS));
    const bool bPause = answer.kind == KindT::TimedOut && limitMs > FAILURE_PAUSE_MS;
    if (answer.kind != KindT::Failed && !bPause) Serve(answer, handles, bLeave);
}

void CommandCoreC::ServeExtraEvent(HAL::WaitHandleT handle)
{
    Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] handle extra event\n");
    CommandRunSideT& own = *side.load();
    if (own.handlerWay.isWanted()) own.handlerWay.giveWay(letInEvent.getHandle());
    const HandlerTurnC turn(own); // before the look: whoever detaches it afterwards waits
    std::shared_ptr<const ExtraEventHandlerT> handler; // a share, as it may detach itself
    {
        const HAL::EndShieldC shield;
        const GuardC guard(tableLock);
        const auto found = table.find(handle);
        if (found != table.end()) handler = found->second;
    }
    if (!handler) return;
    Guarded("an event handler", [&] { (*handler)(handle); });
}

// Who posts one message often posts another: looking for a moment costs less than going to sleep and being
// woken.
bool CommandCoreC::MoreComes() const noexcept
{
    constexpr int ROUNDS = 40;
    for (int round = 0; round < ROUNDS; ++round) {
        if (queue.hasPushed()) return true;
        HAL::SpinPause();
    }
    return false;
}

// Runs all messages that wait. The event is reset once, before the first look: whoever posts after the last
// look finds it reset, or signals it again.
bool CommandCoreC::ExecuteMessages()
{
    CommandRunSideT& own = *side.load();
    {
        const GuardC guard(own.queueLock);
        queueEvent.reset();
    }
    bool bLeave = false;
    std::uint32_t nExecuted = 0;
    while (!bKilled.load(std::memory_order_relaxed)) {
        // Once the loop is to end, what waited at that moment still runs and nothing that came later.
        own.current = bLeave ? queue.takeCollected(own.taken) : queue.take(own.taken);
        if (!own.current) {
            if (bLeave || bStopRequested.load()) return true;
            if (nExecuted == 0 || !MoreComes()) return false;
            continue;
        }
        const CurrentMsgC current(own.current);
        ++nExecuted;
        if (bStopRequested.load(std::memory_order_relaxed) && lastStopPost.load() != RC_OK)
            static_cast<void>(RequestStop());
        MsgObjectI& message = *own.current;
        if (IsLogged(DBG::LEVEL_FINE)) {
            Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] pop queue (CmdReqId:%d), %d messages used\n",
                message.getCmdReqId(), queue.getCount());
        }
        if (message.getKind() == MsgKind::StopRequest) {
            Log(DBG::LEVEL_FINE,
                "[BSS::TSK::CommandTaskC] execute (CmdReqId:%d) stop command, leaving loop\n",
                message.getCmdReqId());
            if (!bLeave) queue.collect(own.taken);
            bLeave = true;
        } else {
            Execute(message);
        }
    }
    return true;
}

// The clock is read only when somebody reads the answer: it would cost more than all the rest.
void CommandCoreC::Execute(MsgObjectI& message)
{
    const bool bLogged = IsLogged(DBG::LEVEL_FINE);
    if (bLogged) {
        Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] execute   (CmdReqId:%d) entry: CmdClientType=%s\n",
            message.getCmdReqId(), message.getCmdClientType());
    }
    const std::uint64_t begin = bLogged ? HAL::TickCount64() : 0;
    statistics.markBusy();
    Guarded(message.getCmdClientType(), [&] { message.execute(); });
    if (!bLogged) return;
    Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] execute   (CmdReqId:%d) exit:  CmdClientType=%s, %d ms\n",
        message.getCmdReqId(), message.getCmdClientType(),
        static_cast<std::int32_t>(HAL::TickCount64() - begin));
}

} // namespace BSS::TSK
