// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_Task.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_TaskRun.h"
#include "Bss/Bss_Tsk/BSS_TSK_TaskThread.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <boost/thread/thread_only.hpp>
#include <boost/thread/tss.hpp>
#include <exception>
#include <functional>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_Task)";

// Lines by which these reports and texts have always been known.
constexpr std::int32_t LINE_DESTRUCTOR = 92;
constexpr std::int32_t LINE_JOIN = 371;
constexpr std::int32_t LINE_KILLED = 406;
constexpr std::int32_t LINE_BELOW_NORMAL = 531;
constexpr std::int32_t LINE_SET_PRIORITY = 543;

constexpr std::uint32_t KILLED_EXIT_CODE = 0xFFFFFFFE;

void KeepTask(TaskC*) {}

// Never destroyed: threads that were let go may outlive everything else.
boost::thread_specific_ptr<TaskC>& CurrentTask()
{
    static auto* const current = new boost::thread_specific_ptr<TaskC>(&KeepTask);
    return *current;
}

template<typename... Arguments>
void Log(DBG::DbgLogConsumerC* logger, int level, const char* format, const Arguments&... arguments)
{
    if (logger != nullptr) logger->Log(level, format, arguments...);
}

void Trace(const wchar_t* format, const TaskRunT& run, std::uint32_t id)
{
    const std::wstring line = UTI::Format(format, id, id, run.name);
    HAL::DebugOutput(line.c_str());
    TskMgr::instance().getTrace().add(HAL::Utf8FromWide(line));
}

boost::thread MakeThread(std::uint32_t stackSizeBytes, const std::function<void()>& entry)
{
    boost::thread::attributes attributes;
    if (stackSizeBytes != 0) attributes.set_stack_size(stackSizeBytes);
    HAL::PrepareThreadStart();
    if (HAL::TakeFault(HAL::FaultT::Thread)) throw boost::thread_resource_error();
    return boost::thread(attributes, entry);
}

} // namespace

bool TaskC::ThreadT::isRunning() const
{
    return run && !run->stopped.load();
}

TaskC::TaskC(TaskSettingsT settings) : m_settings(std::move(settings)) {}

TaskC::~TaskC()
{
    const boost::this_thread::disable_interruption undisturbed;
    const ThreadT thread = Thread();
    if (!thread.run) return;
    TaskRunT::Entry ahead = TaskRunT::Entry::Ahead;
    thread.run->entry.compare_exchange_strong(ahead, TaskRunT::Entry::Barred);
    const bool bOwnThread = thread.run->isOwnThread();
    if (thread.isRunning() && !bOwnThread) {
        LogWait(thread.run->id.load(), 0);
        static_cast<void>(thread.run->awaitEnd(0));
    }
    if (thread.isRunning()) {
        Log(getLogger(), DBG::LEVEL_ERROR, "Task (name='%s', id=%08x) not stopped before destructor call\r\n",
            getName(), thread.run->id.load());
        ERR::Panic("W: ~TaskC(this = 0x%lx): not stopped before destructor call\r\n", 0,
                   static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this)), 0, BSS_SOURCE_NAME,
                   LINE_DESTRUCTOR);
        thread.thread->detach();
    } else if (bOwnThread) {
        thread.thread->detach();
    } else {
        thread.run->awaitEnd(-1); // it has its last lines to write
        thread.thread->join();
    }
}

void TaskC::start()
{
    const GuardC guard(m_lock);
    setState(ComponentState::Started);
    if (m_thread.isRunning()) throw SysServiceErrorC("the task is running already", RC_SERVICE_FAILED);
    if (m_thread.run) {
        if (m_thread.run->isOwnThread())
            throw SysServiceErrorC("the task is still about to end", RC_SERVICE_FAILED);
        m_thread.run->awaitEnd(-1);
        m_thread.thread->join();
    }
    const auto run = std::make_shared<TaskRunT>(getName(), m_settings.logger);
    const std::uint32_t stackSize = TskMgr::instance().getStackSize(m_settings.stackOption);
    try {
        m_thread.thread =
            std::make_shared<TaskThreadC>(MakeThread(stackSize, [run, this] { c_main(run, this); }));
    } catch (const boost::thread_resource_error&) {
        m_thread = {};
        throw SysServiceErrorC("no thread for the task", RC_SERVICE_FAILED);
    }
    m_thread.run = run;
    // The thread goes home instead of into main() if the rest fails.
    struct GateC
    {
        TaskRunT& run;
        TaskRunT::Gate opens = TaskRunT::Gate::Abandoned;
        ~GateC()
        {
            if (opens == TaskRunT::Gate::Abandoned) run.stopped.store(true);
            run.gate.store(opens);
            run.gateMoved.set();
        }
    } gate{*run};
    static_cast<void>(run->arrived.wait(-1));
    Log(getLogger(), DBG::LEVEL_INFO, "TaskC::start() Starting task: name='%s', handle=%08x\r\n", getName(),
        m_thread.thread->getNativeHandle());
    setPriority();
    gate.opens = TaskRunT::Gate::Open;
}

void TaskC::stop()
{
    const ThreadT thread = Thread();
    logStop();
    if (thread.isRunning()) thread.thread->interrupt();
    setState(ComponentState::Stopped);
}

void TaskC::logStop() const
{
    const ThreadT thread = Thread();
    if (thread.isRunning()) {
        Log(getLogger(), DBG::LEVEL_INFO, "TaskC::stop() name='%s', id=%08x\r\n", getName(),
            thread.run->id.load());
    } else {
        Log(getLogger(), DBG::LEVEL_FINE,
            "TaskC::stop() was already stopped or has never been started: name='%s'\r\n", getName());
    }
}

bool TaskC::waitForStop(int timeoutMs)
{
    const ThreadT thread = Thread();
    if (!thread.run) return true;
    const bool bOwnThread = thread.run->isOwnThread();
    if (!thread.isRunning() && !bOwnThread) {
        // It has its last lines to write. Who does not want to wait for those need not join it either.
        if (thread.run->awaitEnd(timeoutMs)) thread.thread->join();
        return true;
    }
    LogWait(thread.run->id.load(), timeoutMs);
    if (bOwnThread) {
        throw boost::thread_resource_error(
            static_cast<int>(boost::system::errc::resource_deadlock_would_occur),
            "boost thread: trying joining itself");
    }
    if (!thread.run->awaitEnd(timeoutMs)) return false;
    thread.thread->join();
    return true;
}

void TaskC::kill()
{
    killThread();
}

void TaskC::killThread(const std::function<void()>& whenForced)
{
    const boost::this_thread::disable_interruption undisturbed;
    const ThreadT thread = Thread();
    if (thread.run) KillRun(thread, whenForced);
    setState(ComponentState::Stopped);
}

void TaskC::KillRun(const ThreadT& thread, const std::function<void()>& whenForced)
{
    TaskRunT& run = *thread.run;
    const GuardC guard(run.killLock);
    if (!thread.thread->isJoinable()) return;
    const std::uint32_t id = run.id.load();
    Log(getLogger(), DBG::LEVEL_ERROR, "TaskC::kill() name='%s', id=%08x\r\n", getName(), id);
    if (m_settings.assertOnKill) BSS_ASSERT_AT(!"Task killed!", LINE_KILLED);
    thread.thread->interrupt();
    bool bForced = false;
    if (!run.awaitEnd(m_friendlyKillMs)) {
        Log(getLogger(), DBG::LEVEL_ERROR,
            "TaskC::friendly kill failed! No interruption point found in task name='%s', id=%08x\r\n",
            getName(), id);
        bForced = HAL::EndThreadByForce(id, KILLED_EXIT_CODE);
    }
    if (run.isEnded()) {
        thread.thread->join(); // after all by itself
    } else if (bForced) {
        if (whenForced) whenForced();
        thread.thread->detach();
        run.stopped.store(true);
        run.markEnded();
    } else {
        Log(getLogger(), DBG::LEVEL_ERROR, "TaskC::kill() the system did not end task name='%s', id=%08x\r\n",
            getName(), id);
    }
}

const char* TaskC::getComponentName() const noexcept
{
    return m_settings.name.c_str();
}

void TaskC::setPriority()
{
    const ThreadT thread = Thread();
    if (!thread.isRunning()) return;
    const bool m_bAllowPriorityBelowNormal = m_settings.allowPriorityBelowNormal;
    BSS_ASSERT_AT(m_bAllowPriorityBelowNormal, LINE_BELOW_NORMAL);
    std::int32_t priority = TskMgr::instance().getPriority(m_settings.priorityOption);
    if (!m_bAllowPriorityBelowNormal && priority < 0) priority = 0;
    const bool bOK = HAL::ApplyThreadPriority(thread.run->id.load(), priority);
    BSS_ASSERT_AT(bOK, LINE_SET_PRIORITY);
}

bool TaskC::isRunning() const
{
    return Thread().isRunning();
}

std::uint32_t TaskC::getTaskId() const
{
    const ThreadT thread = Thread();
    return thread.isRunning() ? thread.run->id.load() : 0;
}

TaskC* TaskC::getCurrent() noexcept
{
    return CurrentTask().get();
}

TaskC::ThreadT TaskC::Thread() const
{
    const GuardC guard(m_lock);
    return m_thread;
}

void TaskC::LogWait(std::uint32_t id, int timeoutMs) const
{
    Log(getLogger(), DBG::LEVEL_INFO, "%4d TaskC::waitForStop() join: name='%s', id=%08x, timeout=%d\r\n",
        LINE_JOIN, getName(), id, timeoutMs);
}

// The object may go as soon as main() has returned: from there on only what the run holds is used.
void TaskC::c_main(const std::shared_ptr<TaskRunT>& run, TaskC* self)
{
    const std::uint32_t id = HAL::CurrentThreadId();
    run->id.store(id);
    run->arrived.set();
    static_cast<void>(run->gateMoved.wait(-1));
    if (run->gate.load() == TaskRunT::Gate::Abandoned) {
        run->markEnded();
        return;
    }
    HAL::AllowForcedEnd();
    HAL::SetCurrentThreadName(run->name.c_str());
    TskMgr::instance().countStart();
    Trace(L"Started[0x%8.8x/%09d] %S\r\n", *run, id);
    DBG::DbgLogConsumerC* const logger = run->logger.get();
    const auto stackMark = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&id));
    Log(logger, DBG::LEVEL_INFO, "TaskC::c_main() begin: name='%s', id=0x%08x/%d, stack=0x%08x\r\n",
        run->name, id, id, stackMark);
    CurrentTask().reset(self);
    RunMain(*run, *self);
    CurrentTask().reset();
    run->stopped.store(true);
    Log(logger, DBG::LEVEL_INFO, "TaskC::c_main() end: name='%s', id=0x%08x/%d\r\n", run->name, id, id);
    Trace(L"Stopped[0x%8.8x/%09d] %S\r\n", *run, id);
    HAL::ForbidForcedEnd(); // whoever sees the end joins, which takes what Boost does after this
    run->markEnded();
}

void TaskC::RunMain(TaskRunT& run, TaskC& self)
{
    TaskRunT::Entry ahead = TaskRunT::Entry::Ahead;
    if (!run.entry.compare_exchange_strong(ahead, TaskRunT::Entry::Entered))
        return; // there is no object any more
    try {
        self.main();
    } catch (const boost::thread_interrupted&) {
        // How a stopped task ends.
    } catch (const std::exception& error) {
        Log(run.logger.get(), DBG::LEVEL_ERROR, "TaskC::c_main() exception: name='%s', %s\r\n", run.name,
            error.what());
    } catch (...) {
        Log(run.logger.get(), DBG::LEVEL_ERROR, "TaskC::c_main() unknown exception: name='%s'\r\n", run.name);
    }
}

} // namespace BSS::TSK
