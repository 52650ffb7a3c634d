// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What every lock of the framework can do. The order of the operations is fixed. Knows no particular lock.
#pragma once

namespace BSS::TSK {

class LockC
{
public:
    /// Waits without limit until the lock is held.
    virtual void lock() = 0;

    /// Gives the lock back; the calling thread must hold it.
    virtual void unlock() = 0;

    virtual ~LockC();

protected:
    LockC() = default;
    LockC(const LockC&) = delete;
    LockC& operator=(const LockC&) = delete;
};

} // namespace BSS::TSK
