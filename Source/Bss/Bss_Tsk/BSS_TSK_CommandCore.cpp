// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The posting half; the loop is in BSS_TSK_CommandLoop.cpp.
#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandLog.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_StopRequest.h"
#include "Bss/Bss_Tsk/BSS_TSK_SystemEvents.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <utility>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_CommandTask)";

constexpr std::int32_t LINE_OVERFLOW = 765;

bool IsOverflowAsserted()
{
    std::uint32_t value = 0;
    return OS::PlatformConfigStore().Read(L"Configuration", L"AssertOnQueueOverflow", value) == RC_OK &&
           value != 0;
}

} // namespace

CommandCoreC::CommandCoreC(std::string taskName, std::shared_ptr<DBG::DbgLogConsumerC> taskLogger,
                           std::uint32_t maxMsgCount)
    : name(std::move(taskName)), logger(std::move(taskLogger)), queue(maxMsgCount)
{}

CommandCoreC::~CommandCoreC()
{
    CommandRunSideT* const own = side.load();
    queue.drop(own->taken);
    delete own;
}

ResultCodeT CommandCoreC::AddNewMsg(const MsgPtrT& message, bool bHigh)
{
    Log(DBG::LEVEL_FINEST, "[BSS::TSK::CommandTaskC] AddNewMsg entry\n");
    if (bOverflow.load(std::memory_order_acquire)) return RC_FAILED;
    const std::uint32_t count = queue.push(message, bHigh);
    if (count == 0) return RefuseFull();
    // Advisory: threads that post at once may see each other's last count. Below one percent all counts are
    // alike. The level is 50 percent or more when twice the count is the maximum or more.
    const std::uint64_t maximum = queue.getMaxCount();
    const std::uint32_t now = std::uint64_t{count} * 100 < maximum ? 0 : count;
    const std::uint32_t before = lastCount.load(std::memory_order_relaxed);
    if (now != before) {
        lastCount.store(now, std::memory_order_relaxed);
        if ((std::uint64_t{now} * 2 >= maximum) != (std::uint64_t{before} * 2 >= maximum))
            LogLevel(now != 0 ? now : static_cast<std::uint32_t>(queue.getCount()), before);
    }
    // The push was the sequentially consistent step that this asks for.
    HAL::SetWaitEventIfClear(queueEvent.getHandle());
    return RC_OK;
}

std::int32_t CommandCoreC::Percent(std::uint32_t count) const noexcept
{
    return static_cast<std::int32_t>(std::uint64_t{count} * 100 / queue.getMaxCount());
}

void CommandCoreC::LogLevel(std::uint32_t count, std::uint32_t before) const
{
    Log(DBG::LEVEL_WARN, "Task '%s': Message queue level %ld%% (%ld/%lu)(old %ld%%)!\n", name, Percent(count),
        count, queue.getMaxCount(), Percent(before));
}

ResultCodeT CommandCoreC::RefuseFull()
{
    if (onRefused) onRefused();
    bOverflow.store(true);
    // Wakes a loop that has drained the queue already and would otherwise wait without limit, with nobody
    // able to post any more.
    queueEvent.set();
    const std::wstring text = UTI::Format(L"Message queue full. Task '%S', size = %ld, maxMsgCount = %ld",
                                          name, queue.getCount(), queue.getMaxCount());
    Log(DBG::LEVEL_FATAL, "%S\n", text);
    Log(DBG::LEVEL_ERROR, "AddNewMsg DumpMessageQueue, task=%s\n", name);
    std::wstring own;
    {
        const HAL::EndShieldC shield; // tasks post too, to others and to themselves
        const GuardC guard(settingsLock);
        own = overflowText;
    }
    Guarded("a system event observer", [&] {
        if (own.empty()) {
            NotifySystemEvent(SYSTEM_EVENT_QUEUE_FULL, text);
        } else {
            NotifySystemEvent(SYSTEM_EVENT_QUEUE_FULL_NAMED, own);
        }
    });
    if (IsOverflowAsserted()) BSS_ASSERT_AT(!"Message queue overflow!", LINE_OVERFLOW);
    return RC_FAILED;
}

ResultCodeT CommandCoreC::PostStopRequest()
{
    const MsgPtrT request = UTI::MakeShared<StopRequestC>();
    Log(DBG::LEVEL_FINE, "[BSS::TSK::CommandTaskC] Adding stop request (CmdReqId:%d)\n",
        request->getCmdReqId());
    return AddNewMsg(request, !bStopInOrder.load());
}

ResultCodeT CommandCoreC::RequestStop()
{
    ResultCodeT rc = RC_FAILED;
    Guarded("a stop request", [&] { rc = PostStopRequest(); });
    lastStopPost.store(rc);
    return rc;
}

ResultCodeT CommandCoreC::Attach(HAL::WaitHandleT handle, ExtraEventHandlerT handler)
{
    auto shared = std::make_shared<const ExtraEventHandlerT>(std::move(handler));
    {
        const GuardC guard(tableLock);
        const auto found = table.find(handle);
        if (found == table.end() && table.size() >= MAX_EXTRA_EVENTS) return RC_FAILED;
        table.insert_or_assign(handle, std::move(shared));
    }
    reloadEvent.set();
    return RC_OK;
}

ResultCodeT CommandCoreC::Detach(HAL::WaitHandleT handle)
{
    {
        const GuardC guard(tableLock);
        if (table.erase(handle) == 0) return RC_NOT_FOUND;
    }
    reloadEvent.set();
    // The handler may be running at this moment.
    CommandRunSideT& own = *side.load();
    if (own.handlerThread.load() == HAL::CurrentThreadId()) return RC_OK;
    own.handlerWay.lock(own.handlerGate, letInEvent.getHandle());
    own.handlerGate.unlock();
    return RC_OK;
}

// The old side is kept for ever: its locks may be held by nobody. Its messages are lost, and counted as gone;
// a thread that was ended between taking a message and counting it leaves one too many in the count.
void CommandCoreC::AbandonRunSide()
{
    auto* const fresh = new CommandRunSideT;
    CommandRunSideT* const old = side.load();
    std::uint32_t lost = 0;
    for (const TakenMsgsT::ListT* list : {&old->taken.high, &old->taken.normal}) {
        for (const MsgNodeT* node = list->first; node != nullptr; node = node->next)
            ++lost;
    }
    queue.forget(lost);
    side.store(fresh);
    // Whoever waits for what the thread was in need not wait any more. One post too many does no harm.
    old->handlerGate.post();
    old->hookGate.post();
}

} // namespace BSS::TSK
