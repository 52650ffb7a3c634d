// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A lock that need not be waited for without limit. The order of the operations is fixed.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"

namespace BSS::TSK {

class TimeoutableLockC : public LockC
{
public:
    using LockC::lock;

    /// Waits that many milliseconds at most, without limit when negative. Whether the lock is held now.
    [[nodiscard]] virtual bool lock(int timeoutMs) = 0;

    ~TimeoutableLockC() override;

    /// Takes the lock if it is free at this moment.
    [[nodiscard]] virtual bool tryLock() = 0;

protected:
    TimeoutableLockC() = default;
};

} // namespace BSS::TSK
