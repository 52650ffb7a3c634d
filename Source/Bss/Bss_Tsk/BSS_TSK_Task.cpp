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
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <boost/chrono/duration.hpp>
#include <boost/thread/thread_only.hpp>
#include <boost/thread/tss.hpp>
#include <cstring>
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

constexpr int FRIENDLY_KILL_MS = 42;
constexpr std::uint32_t KILLED_EXIT_CODE = 0xFFFFFFFE;

void KeepTask(TaskC*) {}

// Never destroyed: threads that were let go may outlive everything else.
boost::thread_specific_ptr<TaskC>& CurrentTask()
{
    static auto* const current = new boost::thread_specific_ptr<TaskC>(&KeepTask);
    return *current;
}

// The low 32 bits of whatever the system calls a thread.
std::uint32_t NativeHandle(boost::thread& thread)
{
    const auto native = thread.native_handle();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &native, sizeof native < sizeof bits ? sizeof native : sizeof bits);
    return static_cast<std::uint32_t>(bits);
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

// Whether the thread has ended. Of several threads that join at once one is told that there is nothing to
// join any more; the thread has ended then too.
bool JoinFor(boost::thread& thread, int timeoutMs)
{
    return thread.try_join_for(boost::chrono::milliseconds(timeoutMs)) || !thread.joinable();
}

boost::thread MakeThread(std::uint32_t stackSizeBytes, const std::function<void()>& entry)
{
    boost::thread::attributes attributes;
    if (stackSizeBytes != 0) attributes.set_stack_size(stackSizeBytes);
    if (HAL::TakeFault(HAL::FaultT::Thread)) throw boost::thread_resource_error();
    return boost::thread(attributes, entry);
}

} // namespace

bool TaskC::ThreadT::isJoinable() const
{
    return thread && thread->joinable();
}

bool TaskC::ThreadT::isRunning() const
{
    return isJoinable() && !run->stopped.load();
}

TaskC::TaskC(TaskSettingsT settings) : m_settings(std::move(settings)) {}

TaskC::~TaskC()
{
    const boost::this_thread::disable_interruption undisturbed;
    const ThreadT thread = Thread();
    if (!thread.isJoinable()) return;
    if (thread.isRunning() && thread.run->id.load() != HAL::CurrentThreadId()) {
        LogWait(thread.run->id.load(), 0);
        if (JoinFor(*thread.thread, 0)) return;
    }
    if (thread.isRunning()) {
        Log(getLogger(), DBG::LEVEL_ERROR, "Task (name='%s', id=%08x) not stopped before destructor call\r\n",
            getName(), thread.run->id.load());
        ERR::Panic("W: ~TaskC(this = 0x%lx): not stopped before destructor call\r\n", 0,
                   static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this)), 0, BSS_SOURCE_NAME,
                   LINE_DESTRUCTOR);
        thread.thread->detach();
    } else {
        thread.thread->join(); // it has its last lines to write
    }
}

void TaskC::start()
{
    const GuardC guard(m_lock);
    setState(ComponentState::Started);
    if (m_thread.isRunning()) throw SysServiceErrorC("the task is running already", RC_SERVICE_FAILED);
    if (m_thread.isJoinable()) m_thread.thread->join();
    const auto run = std::make_shared<TaskRunT>(getName(), m_settings.logger);
    const std::uint32_t stackSize = TskMgr::instance().getStackSize(m_settings.stackOption);
    try {
        m_thread.thread =
            std::make_shared<boost::thread>(MakeThread(stackSize, [run, this] { c_main(run, this); }));
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
        NativeHandle(*m_thread.thread));
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
    if (!thread.isJoinable()) return true;
    if (!thread.isRunning()) {
        thread.thread->join(); // it has its last lines to write
        return true;
    }
    LogWait(thread.run->id.load(), timeoutMs);
    if (thread.run->id.load() == HAL::CurrentThreadId()) {
        throw boost::thread_resource_error(
            static_cast<int>(boost::system::errc::resource_deadlock_would_occur),
            "boost thread: trying joining itself");
    }
    if (timeoutMs >= 0) return JoinFor(*thread.thread, timeoutMs);
    thread.thread->join();
    return true;
}

void TaskC::kill()
{
    killThread();
}

bool TaskC::killThread()
{
    bool bForced = false;
    const boost::this_thread::disable_interruption undisturbed;
    const ThreadT thread = Thread();
    if (thread.isJoinable()) {
        const std::uint32_t id = thread.run->id.load();
        Log(getLogger(), DBG::LEVEL_ERROR, "TaskC::kill() name='%s', id=%08x\r\n", getName(), id);
        if (m_settings.assertOnKill) BSS_ASSERT_AT(!"Task killed!", LINE_KILLED);
        thread.thread->interrupt();
        if (!JoinFor(*thread.thread, FRIENDLY_KILL_MS)) {
            Log(getLogger(), DBG::LEVEL_ERROR,
                "TaskC::friendly kill failed! No interruption point found in task name='%s', id=%08x\r\n",
                getName(), id);
            if (!HAL::EndThreadByForce(id, KILLED_EXIT_CODE)) {
                Log(getLogger(), DBG::LEVEL_ERROR,
                    "TaskC::kill() the system did not end task name='%s', id=%08x\r\n", getName(), id);
            }
            thread.run->stopped.store(true);
            thread.thread->detach();
            bForced = true;
        }
    }
    setState(ComponentState::Stopped);
    return bForced;
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
    if (run->gate.load() == TaskRunT::Gate::Abandoned) return;
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
}

void TaskC::RunMain(const TaskRunT& run, TaskC& self)
{
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
