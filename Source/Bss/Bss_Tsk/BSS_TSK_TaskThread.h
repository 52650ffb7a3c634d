// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The thread of one run of a task, in the hands of all who interrupt, join and let go of it at once: Boost's
// own object belongs to one of them at a time. For BSS_TSK_Task.cpp only.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <boost/thread/thread_only.hpp>
#include <cstdint>
#include <utility>

namespace BSS::TSK {

class TaskThreadC
{
public:
    explicit TaskThreadC(boost::thread thread) : m_thread(std::move(thread)) {}

    void interrupt();

    /// The low 32 bits of whatever the system calls the thread.
    std::uint32_t getNativeHandle();

    /// Whether nobody has joined it or let it go.
    bool isJoinable() const;

    /// For a thread that has said that its run is over: those who come meanwhile wait too. Once it has been
    /// joined or let go this does nothing.
    void join();

    /// Lets it go; nobody joins it any more.
    void detach();

private:
    mutable MutexC m_lock;
    boost::thread m_thread;
};

} // namespace BSS::TSK
