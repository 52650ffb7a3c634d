// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"

namespace BSS::TSK {

GuardC::GuardC(LockC& lock) : m_lock(lock)
{
    m_lock.lock();
}

GuardC::~GuardC()
{
    m_lock.unlock();
}

} // namespace BSS::TSK
