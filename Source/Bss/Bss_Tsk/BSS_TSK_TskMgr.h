// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tasks of a process have in common: the table of task options, which the application fills before
// it starts tasks, and the trace of their starts and stops. Safe from any thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_TaskTrace.h"

#include <atomic>
#include <cstdint>
#include <map>

namespace BSS::TSK {

struct TaskOptions
{
    std::int32_t priority = 0;        ///< on the Windows scale, 0 is normal
    std::uint32_t stackSizeBytes = 0; ///< 0 is the system's usual size
};

class TskMgr
{
public:
    /// The one of the process, made on first use.
    static TskMgr& instance();

    void setTaskOptions(std::int32_t taskIdx, const TaskOptions& options);
    void removeTaskOptions(std::int32_t taskIdx);

    /// An index that is not in the table is reported by an assertion, and is in it from then on, with zeros.
    std::int32_t getPriority(std::int32_t taskIdx);
    std::uint32_t getStackSize(std::int32_t taskIdx);

    TaskTraceC& getTrace() noexcept { return m_trace; }

    /// How many tasks have been started in this process so far.
    std::uint32_t getStartCount() const noexcept { return m_nStarted.load(); }
    void countStart() noexcept { m_nStarted.fetch_add(1); }

private:
    TskMgr() = default;

    TaskOptions Options(std::int32_t taskIdx, std::int32_t line);

    MutexC m_lock;
    std::map<std::int32_t, TaskOptions> m_mTaskOptions;
    TaskTraceC m_trace;
    std::atomic<std::uint32_t> m_nStarted{0};
};

} // namespace BSS::TSK
