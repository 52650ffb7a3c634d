// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What can be locked if it is free and is never waited for. The order of the operations is fixed.
#pragma once

namespace BSS::TSK {

class TryLockI
{
public:
    virtual ~TryLockI();

    /// Whether it is held now.
    [[nodiscard]] virtual bool tryLock() = 0;

    virtual void unlock() = 0;

protected:
    TryLockI() = default;
    TryLockI(const TryLockI&) = delete;
    TryLockI& operator=(const TryLockI&) = delete;
};

} // namespace BSS::TSK
