// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One thread of the process with a name, a priority, a stack size and a life: it is started, asked to stop,
// waited for, and killed if it does not listen. A concrete task supplies main(), which must reach Boost's
// interruption points (interruptible waits, sleeps, boost::this_thread::interruption_point) for stop() to end
// it.
//
// start, stop, waitForStop and kill may be called from any thread but the task's own. A task can be started
// again once it has stopped. It should have stopped before it is destroyed; a task that has not is reported
// and let go, and that is safe only if its main() touches nothing but what it has a share in: the object is
// gone while it runs on. What main() throws is logged and ends the task.
//
// Beware of an object that goes right after start(). If the thread has not entered main() by then it never
// will. But if it is just entering, it may run into an object whose derived half has gone: start() does not
// wait until main() has taken its share. A task that may be let go says so itself, and whoever owns it waits
// for that.
//
// kill() ends a thread that reaches no interruption point within 42 ms by force, wherever it is. What that
// leaves behind says BSS_HAL_ThreadControl.h: locks held for ever, memory lost, nothing unwound. It is a last
// resort of a process that is about to end.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_SysComponent.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

struct TaskRunT;
class TaskThreadC;

/// What a task is made of.
struct TaskSettingsT
{
    std::string name;
    std::int32_t stackOption = 0;    ///< the entry of the task options whose stack size counts
    std::int32_t priorityOption = 0; ///< the entry whose priority counts
    bool allowPriorityBelowNormal = false;
    bool assertOnKill = false;
    std::shared_ptr<DBG::DbgLogConsumerC> logger = {}; ///< may be null: nothing is logged then
};

class TaskC : public SysComponentC
{
public:
    explicit TaskC(TaskSettingsT settings);
    ~TaskC() override;

    /// Starts the thread. When this returns, main() is about to run or has run. Throws SysServiceErrorC with
    /// RC_SERVICE_FAILED when the task is running or the system has no thread to give.
    void start() override;

    /// Requests the thread's interruption.
    void stop() override;

    /// Waits that many milliseconds at most, without limit when negative. True when main() has returned or
    /// never ran; with a limit the thread's last log lines may then be still to come. Throws
    /// boost::thread_resource_error on the task's own thread. An interruption point.
    bool waitForStop(int timeoutMs) override;

    /// Requests interruption, waits 42 ms for the end, and then ends the thread by force. Where the system
    /// does not end it the task goes on running, which is logged; the state is Stopped all the same.
    void kill() override;

    const char* getComponentName() const noexcept override;

    /// Gives the running thread the priority of the options table. Negative priorities are taken for normal
    /// unless they are allowed; every call to a task that does not allow them is reported.
    virtual void setPriority();

protected:
    /// The thread's work.
    virtual void main() = 0;

public:
    const std::string& getName() const noexcept { return m_settings.name; }
    bool isRunning() const;

    /// The system's number of the running thread; 0 when there is none.
    std::uint32_t getTaskId() const;

    /// The task on whose thread this is called; null on other threads. It may be gone already if it was
    /// destroyed while running.
    static TaskC* getCurrent() noexcept;

protected:
    DBG::DbgLogConsumerC* getLogger() const noexcept { return m_settings.logger.get(); }

    /// What stop() logs, for tasks that stop in another way.
    void logStop() const;

    /// What kill() does. The action is called if the thread was ended by force, while the task still counts
    /// as running, so that no start comes in between.
    void killThread(const std::function<void()>& whenForced = {});

    /// How long kill() waits before it ends the thread by force. For tests of what comes of a friendly kill
    /// where the machine may be too slow for 42 ms; before the thread that kills.
    void setFriendlyKillLimit(int limitMs) noexcept { m_friendlyKillMs = limitMs; }

private:
    static constexpr int FRIENDLY_KILL_MS = 42;

    /// What is known of the thread at one moment, both null when there is none.
    struct ThreadT
    {
        std::shared_ptr<TaskThreadC> thread;
        std::shared_ptr<TaskRunT> run;

        bool isRunning() const;
    };

    static void c_main(const std::shared_ptr<TaskRunT>& run, TaskC* self);
    static void RunMain(TaskRunT& run, TaskC& self);
    ThreadT Thread() const;
    void KillRun(const ThreadT& thread, const std::function<void()>& whenForced);
    void LogWait(std::uint32_t id, int timeoutMs) const;

    TaskSettingsT m_settings;
    int m_friendlyKillMs = FRIENDLY_KILL_MS;
    mutable MutexC m_lock; // guards the two pointers below
    ThreadT m_thread;
};

} // namespace BSS::TSK
