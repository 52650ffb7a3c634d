// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TaskRun.h"

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"

#include <boost/chrono/duration.hpp>
#include <boost/thread/thread_only.hpp>
#include <utility>

namespace BSS::TSK {

TaskRunT::TaskRunT(std::string taskName, std::shared_ptr<DBG::DbgLogConsumerC> taskLogger)
    : name(std::move(taskName)), logger(std::move(taskLogger))
{}

bool TaskRunT::isOwnThread() const noexcept
{
    return !isEnded() && id.load() == HAL::CurrentThreadId();
}

bool TaskRunT::awaitEnd(int timeoutMs)
{
    const auto ended = [this] { return m_bEnded.load(); };
    boost::unique_lock<boost::mutex> guard(m_mutex);
    if (timeoutMs >= 0) return m_ended.wait_for(guard, boost::chrono::milliseconds(timeoutMs), ended);
    m_ended.wait(guard, ended);
    return true;
}

void TaskRunT::markEnded()
{
    const HAL::EndShieldC shield; // those who wait need the mutex back
    const boost::lock_guard<boost::mutex> guard(m_mutex);
    m_bEnded.store(true);
    m_ended.notify_all();
}

} // namespace BSS::TSK
