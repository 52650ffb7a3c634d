// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_ReadWriteLocks.h"

#include "Bss/Bss_Tsk/BSS_TSK_ReaderWriterLock.h"

#include <utility>

namespace BSS::TSK {

ReadLockC::ReadLockC(ReaderWriterLockC& lock) : m_lock(lock)
{
    ReadLockC::lock();
}

void ReadLockC::lock()
{
    if (m_bHeld) return;
    m_lock.m_mutex.lock_shared();
    m_bHeld = true;
}

void ReadLockC::unlock()
{
    if (std::exchange(m_bHeld, false)) m_lock.m_mutex.unlock_shared();
}

ReadLockC::~ReadLockC()
{
    ReadLockC::unlock();
}

WriteLockC::WriteLockC(ReaderWriterLockC& lock) : m_lock(lock)
{
    WriteLockC::lock();
}

void WriteLockC::lock()
{
    if (m_bHeld) return;
    m_lock.m_mutex.lock();
    m_bHeld = true;
}

void WriteLockC::unlock()
{
    if (std::exchange(m_bHeld, false)) m_lock.m_mutex.unlock();
}

WriteLockC::~WriteLockC()
{
    WriteLockC::unlock();
}

TryReadLockC::~TryReadLockC()
{
    TryReadLockC::unlock();
}

bool TryReadLockC::tryLock()
{
    if (!m_bHeld) m_bHeld = m_lock.m_mutex.try_lock_shared();
    return m_bHeld;
}

void TryReadLockC::unlock()
{
    if (std::exchange(m_bHeld, false)) m_lock.m_mutex.unlock_shared();
}

TryWriteLockC::~TryWriteLockC()
{
    TryWriteLockC::unlock();
}

bool TryWriteLockC::tryLock()
{
    if (!m_bHeld) m_bHeld = m_lock.m_mutex.try_lock();
    return m_bHeld;
}

void TryWriteLockC::unlock()
{
    if (std::exchange(m_bHeld, false)) m_lock.m_mutex.unlock();
}

} // namespace BSS::TSK
