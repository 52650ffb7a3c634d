// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <boost/thread/thread_only.hpp>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_TskMgr)";

constexpr std::int32_t LINE_PRIORITY = 89;
constexpr std::int32_t LINE_STACK_SIZE = 100;

/// What must not be left in the middle, such as writing a log line, is not left by an interruption either,
/// nor by the task's forced end: whoever logs next would wait for ever for the lock of a thread that is no
/// more.
void WithoutInterruption(HAL::UndisturbedCallT call, void* context)
{
    const HAL::EndShieldC shield; // goes last: the thread may end then
    const boost::this_thread::disable_interruption undisturbed;
    call(context);
}

} // namespace

TskMgr& TskMgr::instance()
{
    // Never destroyed: threads that were let go may outlive everything else.
    static auto* const manager = [] {
        HAL::SetUndisturbedRunner(&WithoutInterruption);
        return new TskMgr;
    }();
    return *manager;
}

void TskMgr::setTaskOptions(std::int32_t taskIdx, const TaskOptions& options)
{
    const GuardC guard(m_lock);
    m_mTaskOptions[taskIdx] = options;
}

void TskMgr::removeTaskOptions(std::int32_t taskIdx)
{
    const GuardC guard(m_lock);
    m_mTaskOptions.erase(taskIdx);
}

std::int32_t TskMgr::getPriority(std::int32_t taskIdx)
{
    return Options(taskIdx, LINE_PRIORITY).priority;
}

std::uint32_t TskMgr::getStackSize(std::int32_t taskIdx)
{
    return Options(taskIdx, LINE_STACK_SIZE).stackSizeBytes;
}

// The report is made with the lock free: its handler may ask for options too.
TaskOptions TskMgr::Options(std::int32_t taskIdx, std::int32_t line)
{
    {
        const GuardC guard(m_lock);
        const auto found = m_mTaskOptions.find(taskIdx);
        if (found != m_mTaskOptions.end()) return found->second;
    }
    ERR::AssertFailed("m_mTaskOptions.find( taskIdx ) != m_mTaskOptions.end()", 0, 0, BSS_SOURCE_NAME, line);
    const GuardC guard(m_lock);
    return m_mTaskOptions[taskIdx];
}

} // namespace BSS::TSK
