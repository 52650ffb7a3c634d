// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a task's object and its thread have together, one for each start, so that the thread's last steps need
// no object and a second start meets nothing of the first. Who waits for the end waits here, not for the
// thread: one that was ended by force never tells, so whoever ended it does. For BSS_TSK_Task.cpp only.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <atomic>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <cstdint>
#include <memory>
#include <string>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

struct TaskRunT
{
    enum class Gate : std::uint32_t
    {
        Closed,
        Open,
        Abandoned ///< the start has failed; the thread goes home
    };

    enum class Entry
    {
        Ahead, ///< the thread has yet to enter main()
        Entered,
        Barred ///< the object has gone before
    };

    TaskRunT(std::string taskName, std::shared_ptr<DBG::DbgLogConsumerC> taskLogger);

    /// Whether this is called on the run's thread.
    bool isOwnThread() const noexcept;

    /// Whether the thread has nothing more to do, or was ended by force.
    bool isEnded() const noexcept { return m_bEnded.load(); }

    /// Waits for that, without limit when negative. An interruption point.
    bool awaitEnd(int timeoutMs);

    /// By the thread as its last act, or by whoever ended it by force.
    void markEnded();

    const std::string name;
    const std::shared_ptr<DBG::DbgLogConsumerC> logger;
    std::atomic<std::uint32_t> id{0}; ///< of the thread, 0 until it has arrived
    EventC arrived{HAL::ResetMode::Manual};
    std::atomic<Gate> gate{Gate::Closed};
    EventC gateMoved{HAL::ResetMode::Manual}; ///< where the thread waits until start() has published it
    std::atomic<Entry> entry{Entry::Ahead};   ///< changed once, by the thread or by the object's end
    std::atomic<bool> stopped{false};         ///< set by the thread, or by whoever ended it by force
    MutexC killLock;                          ///< one kill at a time

private:
    boost::mutex m_mutex;
    boost::condition_variable m_ended;
    std::atomic<bool> m_bEnded{false}; // set under the mutex
};

} // namespace BSS::TSK
