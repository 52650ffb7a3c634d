// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The object's half: what it does is done by the core that it shares with its thread.
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandLog.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <thread>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_CommandTask)";

constexpr int HOOK_LIMIT_MS = 42; // as long as a kill waits

std::shared_ptr<CommandCoreC> MakeCore(const TaskSettingsT& settings, std::uint32_t maxMsgCount)
{
    BSS_ASSERT(maxMsgCount > 0);
    return std::make_shared<CommandCoreC>(settings.name, settings.logger, maxMsgCount);
}

} // namespace

CommandTaskC::CommandTaskC(TaskSettingsT settings, std::uint32_t maxMsgCount)
    : TaskC(settings), m_core(MakeCore(settings, maxMsgCount))
{
    m_core->timeoutHook = [this] { onTimeout(); };
}

CommandTaskC::~CommandTaskC()
{
    m_core->bObjectGone.store(true);
    if (!isRunning()) return;
    // The hook may be running. One that does not come back runs on, as any task that was not stopped.
    SemaphoreC& hookGate = m_core->side.load()->hookGate;
    if (getCurrent() != this && hookGate.lock(HOOK_LIMIT_MS)) hookGate.unlock();
    // The loop leaves on its own from here on. The thread must have its share before the object's goes.
    m_core->bKilled.store(true);
    m_core->reloadEvent.set();
    while (!m_core->bEntered.load() && isRunning())
        std::this_thread::yield();
}

void CommandTaskC::start()
{
    m_core->Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] start entry\n");
    const GuardC guard(m_startLock); // what is made ready belongs to the run that begins
    if (!isRunning()) {
        m_core->bStopRequested.store(false);
        m_core->lastStopPost.store(RC_FAILED);
        m_core->bKilled.store(false);
        m_core->bEntered.store(false);
        // A request that an earlier run has not come to is not meant for this one.
        m_core->queue.remove(m_core->side.load()->taken, MsgKind::StopRequest);
        // What waits from then is run at once.
        m_core->queueEvent.set();
    }
    TaskC::start();
}

void CommandTaskC::stop()
{
    m_core->Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] stop entry\n");
    const ResultCodeT rc = m_core->RequestStop();
    m_core->bStopRequested.store(true);
    // A loop that has drained its queue since the request was refused is told by the flag alone.
    if (rc != RC_OK) m_core->queueEvent.set();
    logStop();
    setState(ComponentState::Stopped);
}

void CommandTaskC::kill()
{
    m_core->bKilled.store(true);
    m_core->reloadEvent.set();
    killThread([this] { m_core->AbandonRunSide(); });
}

void CommandTaskC::main()
{
    const std::shared_ptr<CommandCoreC> core = m_core; // the object may go from here on
    core->bEntered.store(true);
    core->Loop();
}

UTI::SubjectC& CommandTaskC::getMainEndedSubject()
{
    return m_core->mainEndedSubject;
}

void CommandTaskC::onTimeout() {}

ResultCodeT CommandTaskC::postCommand(const SmartCommandPtrT& command, const SharedObjectPtrT& object)
{
    BSS_ASSERT(command);
    if (!command) return RC_INVALID_ARGUMENT;
    m_core->Log(DBG::LEVEL_FINE,
                "[BSS::TSK::CommandTaskC] Adding commandMsg (CmdReqId:%d) with SmartObject\n",
                command->getCmdReqId());
    command->setSmartObject(object);
    return m_core->AddNewMsg(command, false);
}

ResultCodeT CommandTaskC::postCommand(const CommandPtrT& command)
{
    BSS_ASSERT(command);
    if (!command) return RC_INVALID_ARGUMENT;
    m_core->Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] Adding commandMsg (CmdReqId:%d)\n",
                command->getCmdReqId());
    return m_core->AddNewMsg(command, false);
}

std::int32_t CommandTaskC::getMsgCount() const
{
    return m_core->queue.getCount();
}

std::uint32_t CommandTaskC::getMaxMsgCount() const
{
    return m_core->queue.getMaxCount();
}

bool CommandTaskC::isInOverflow() const
{
    return m_core->bOverflow.load();
}

std::int32_t CommandTaskC::getLastLevel() const
{
    return m_core->Percent(m_core->lastCount.load());
}

std::uint32_t CommandTaskC::getPostCount() const
{
    return m_core->queue.getPostCount();
}

ResultCodeT CommandTaskC::postTimerMsg(const TimerMsgPtrT& message, bool bHigh)
{
    BSS_ASSERT(message);
    if (!message) return RC_INVALID_ARGUMENT;
    m_core->Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] Adding TimerMsg (CmdReqId:%d /%s prio)\n",
                message->getCmdReqId(), bHigh ? "high" : "low");
    return m_core->AddNewMsg(message, bHigh);
}

ResultCodeT CommandTaskC::attachEvent(HAL::WaitHandleT handle, ExtraEventHandlerT handler)
{
    BSS_ASSERT(handler);
    if (!handler || handle == HAL::NO_WAIT_HANDLE) return RC_INVALID_ARGUMENT;
    return m_core->Attach(handle, std::move(handler));
}

ResultCodeT CommandTaskC::detachEvent(HAL::WaitHandleT handle)
{
    return m_core->Detach(handle);
}

ResultCodeT CommandTaskC::AddNewMsg(const MsgPtrT& message, bool bHigh)
{
    BSS_ASSERT(message);
    return message ? m_core->AddNewMsg(message, bHigh) : RC_INVALID_ARGUMENT;
}

UTI::SubjectC& CommandTaskC::getOverflowSubject()
{
    return m_core->overflowSubject;
}

void CommandTaskC::setTimeoutSubject(std::shared_ptr<UTI::SubjectC> subject)
{
    const GuardC guard(m_core->settingsLock);
    m_core->timeoutSubject = std::move(subject);
}

void CommandTaskC::setWaitTimeout(std::uint32_t timeoutMs)
{
    m_core->waitTimeoutMs.store(timeoutMs);
    m_core->reloadEvent.set();
}

void CommandTaskC::setStopInOrder(bool bInOrder)
{
    m_core->bStopInOrder.store(bInOrder);
}

bool CommandTaskC::isStopRequested() const
{
    return m_core->bStopRequested.load();
}

void CommandTaskC::setOverflowText(std::wstring text)
{
    const GuardC guard(m_core->settingsLock);
    m_core->overflowText = std::move(text);
}

MsgPtrT CommandTaskC::getCurrentMsg() const
{
    return m_core->side.load()->current;
}

const TaskStatisticsC& CommandTaskC::getStatistics() const
{
    return m_core->statistics;
}

} // namespace BSS::TSK
