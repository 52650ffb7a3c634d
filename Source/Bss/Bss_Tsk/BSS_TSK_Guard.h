// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Holds a lock from its construction to its destruction, so that exceptions release it. Belongs to one
// thread.
#pragma once

namespace BSS::TSK {

class LockC;

class GuardC
{
public:
    /// Locks. The lock is not owned and must outlive the guard.
    explicit GuardC(LockC& lock);
    virtual ~GuardC();

    GuardC(const GuardC&) = delete;
    GuardC& operator=(const GuardC&) = delete;

private:
    LockC& m_lock;
};

} // namespace BSS::TSK
