// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What others see of a command task: the ways to give it work. Safe from any thread. The order of the
// operations is fixed. Every posting operation answers RC_OK, RC_FAILED when the queue is full or has not
// drained since it was, and RC_INVALID_ARGUMENT for a null message, which is reported by an assertion;
// std::bad_alloc passes through.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"
#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"

#include <cstdint>
#include <functional>

namespace BSS::TSK {

class TaskStatisticsC;

/// Called on the task's thread when the event is signalled. May attach and detach, itself too. What it throws
/// is logged.
using ExtraEventHandlerT = std::function<void(HAL::WaitHandleT)>;

class CommandPostingI
{
public:
    virtual ~CommandPostingI();

    /// Gives the command its payload and posts it, with normal priority as the next one.
    virtual ResultCodeT postCommand(const SmartCommandPtrT& command, const SharedObjectPtrT& object) = 0;
    virtual ResultCodeT postCommand(const CommandPtrT& command) = 0;

    /// Messages posted and not yet taken.
    virtual std::int32_t getMsgCount() const = 0;
    virtual std::uint32_t getMaxMsgCount() const = 0;

    /// Whether posts are refused until the queue has drained.
    virtual bool isInOverflow() const = 0;

    /// The percentage of the maximum that the last successful post has left.
    virtual std::int32_t getLastLevel() const = 0;

    /// All posts that were ever taken in, modulo 2^32.
    virtual std::uint32_t getPostCount() const = 0;

    virtual ResultCodeT postTimerMsg(const TimerMsgPtrT& message, bool bHigh) = 0;

    /// Serves an event as well, up to 60 of them; RC_FAILED beyond. A handle that is attached already gets
    /// the new handler. The handle stays the caller's, who detaches it before he closes it.
    virtual ResultCodeT attachEvent(HAL::WaitHandleT handle, ExtraEventHandlerT handler) = 0;

    /// When this returns the handler is not running any more, unless it is the one that calls. RC_NOT_FOUND
    /// when the handle is not attached.
    virtual ResultCodeT detachEvent(HAL::WaitHandleT handle) = 0;

protected:
    CommandPostingI() = default;
    CommandPostingI(const CommandPostingI&) = delete;
    CommandPostingI& operator=(const CommandPostingI&) = delete;
};

} // namespace BSS::TSK
