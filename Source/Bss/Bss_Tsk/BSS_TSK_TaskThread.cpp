// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TaskThread.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <cstring>

namespace BSS::TSK {

void TaskThreadC::interrupt()
{
    const GuardC guard(m_lock);
    m_thread.interrupt();
}

std::uint32_t TaskThreadC::getNativeHandle()
{
    const GuardC guard(m_lock);
    const auto native = m_thread.native_handle();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &native, sizeof native < sizeof bits ? sizeof native : sizeof bits);
    return static_cast<std::uint32_t>(bits);
}

bool TaskThreadC::isJoinable() const
{
    const GuardC guard(m_lock);
    return m_thread.joinable();
}

void TaskThreadC::join()
{
    const boost::this_thread::disable_interruption undisturbed;
    const GuardC guard(m_lock);
    if (m_thread.joinable()) m_thread.join();
}

void TaskThreadC::detach()
{
    const GuardC guard(m_lock);
    if (m_thread.joinable()) m_thread.detach();
}

} // namespace BSS::TSK
