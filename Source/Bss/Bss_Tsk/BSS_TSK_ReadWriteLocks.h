// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The four ways to hold a ReaderWriterLockC: for reading or for writing, with or without waiting. What is
// held when an object goes is released. Each object belongs to one thread; the lock is not owned and must
// outlive it.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"
#include "Bss/Bss_Tsk/BSS_TSK_TryLock.h"

namespace BSS::TSK {

class ReaderWriterLockC;

/// Holds the lock for reading from its construction on; may release and lock it again.
class ReadLockC final : public LockC
{
public:
    explicit ReadLockC(ReaderWriterLockC& lock);

    /// Does nothing while it is held.
    void lock() override;

    /// Does nothing while it is not held.
    void unlock() override;
    ~ReadLockC() override;

private:
    ReaderWriterLockC& m_lock;
    bool m_bHeld = false;
};

/// Holds the lock for writing from its construction on; may release and lock it again.
class WriteLockC final : public LockC
{
public:
    explicit WriteLockC(ReaderWriterLockC& lock);
    void lock() override;
    void unlock() override;
    ~WriteLockC() override;

private:
    ReaderWriterLockC& m_lock;
    bool m_bHeld = false;
};

/// Holds nothing until tryLock says so.
class TryReadLockC final : public TryLockI
{
public:
    explicit TryReadLockC(ReaderWriterLockC& lock) noexcept : m_lock(lock) {}
    ~TryReadLockC() override;
    [[nodiscard]] bool tryLock() override;
    void unlock() override;

private:
    ReaderWriterLockC& m_lock;
    bool m_bHeld = false;
};

/// Holds nothing until tryLock says so.
class TryWriteLockC final : public TryLockI
{
public:
    explicit TryWriteLockC(ReaderWriterLockC& lock) noexcept : m_lock(lock) {}
    ~TryWriteLockC() override;
    [[nodiscard]] bool tryLock() override;
    void unlock() override;

private:
    ReaderWriterLockC& m_lock;
    bool m_bHeld = false;
};

} // namespace BSS::TSK
