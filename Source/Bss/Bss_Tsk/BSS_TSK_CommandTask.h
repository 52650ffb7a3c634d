// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A task that serves a bounded queue of messages with two priorities and, beside it, up to 60 events, each
// with its handler. All of that runs on the task's thread, one thing at a time.
//
// A queue that is found full refuses every post from then on, until the loop has run all that was waiting and
// has found nothing more to do; then the overflow subject is notified. A stop request ends the loop after the
// messages that wait with it; it is a message itself and goes ahead of those of normal priority, unless it is
// told to keep its place. kill() also reaches an idle task, and a busy one at its next message.
//
// The task should be stopped before it is destroyed, as every task. The loop works on what it shares with the
// object, so an object that goes too early takes nothing away from it.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_CommandPosting.h"
#include "Bss/Bss_Tsk/BSS_TSK_Task.h"

#include <cstdint>
#include <memory>
#include <string>

namespace BSS::UTI {
class SubjectC;
} // namespace BSS::UTI

namespace BSS::TSK {

class CommandCoreC;
class TaskStatisticsC;

// What the three subjects are notified with.
inline constexpr std::uint32_t COMMAND_TASK_OVERFLOW_ENDED = 1;
inline constexpr std::uint32_t COMMAND_TASK_MAIN_ENDED = 2;
inline constexpr std::uint32_t COMMAND_TASK_TIMEOUT = 3;

class CommandTaskC : public TaskC, public CommandPostingI
{
public:
    /// `maxMsgCount` must not be 0; that is reported by an assertion and means 1. Throws SysServiceErrorC
    /// when the system has no events to give.
    CommandTaskC(TaskSettingsT settings, std::uint32_t maxMsgCount);
    ~CommandTaskC() override;

    void start() override;
    void stop() override;
    void kill() override;

protected:
    void main() override;

public:
    /// Notified on the task's thread when the loop has ended.
    virtual UTI::SubjectC& getMainEndedSubject();

protected:
    /// Called on the task's thread whenever the wait has timed out. Empty.
    virtual void onTimeout();

public:
    ResultCodeT postCommand(const SmartCommandPtrT& command, const SharedObjectPtrT& object) override;
    ResultCodeT postCommand(const CommandPtrT& command) override;
    std::int32_t getMsgCount() const override;
    std::uint32_t getMaxMsgCount() const override;
    bool isInOverflow() const override;
    std::int32_t getLastLevel() const override;
    std::uint32_t getPostCount() const override;
    ResultCodeT postTimerMsg(const TimerMsgPtrT& message, bool bHigh) override;
    ResultCodeT attachEvent(HAL::WaitHandleT handle, ExtraEventHandlerT handler) override;
    ResultCodeT detachEvent(HAL::WaitHandleT handle) override;

    /// RC_OK, or RC_FAILED when the message was refused.
    ResultCodeT AddNewMsg(const MsgPtrT& message, bool bHigh);

    /// Notified on the task's thread when an overflow is over.
    UTI::SubjectC& getOverflowSubject();

    /// A subject to be notified of every time-out; null takes it away.
    void setTimeoutSubject(std::shared_ptr<UTI::SubjectC> subject);

    /// The period after which the time-out handling runs, from the next wait on; HAL::WAIT_WITHOUT_LIMIT is
    /// none, and what a new task has.
    void setWaitTimeout(std::uint32_t timeoutMs);

    /// With true a stop request stays behind the messages that wait.
    void setStopInOrder(bool bInOrder);
    bool isStopRequested() const;

    /// Stands in the system event of an overflow in place of the usual text; empty gives that back.
    void setOverflowText(std::wstring text);

    /// The message that is being executed; for the task's own thread.
    MsgPtrT getCurrentMsg() const;
    const TaskStatisticsC& getStatistics() const;

protected:
    /// For tests.
    CommandCoreC& getCore() const noexcept { return *m_core; }

private:
    const std::shared_ptr<CommandCoreC> m_core;
    MutexC m_startLock; // one start at a time; taken before the task's own
};

} // namespace BSS::TSK
