// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A lock around another one that logs when it is asked for, held and released. For finding out who waits for
// whom. As safe between threads as what it wraps; neither the lock nor the log consumer is owned.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Lock.h"

#include <string>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

class LoggingLockDecoratorC final : public LockC
{
public:
    /// `name` is what the lock is called in the log. Without a consumer nothing is logged.
    LoggingLockDecoratorC(LockC& lock, DBG::DbgLogConsumerC* logger, std::string name);
    void lock() override;
    void unlock() override;
    ~LoggingLockDecoratorC() override;

private:
    void Log(int level, const char* format) const;

    LockC& m_lock;
    DBG::DbgLogConsumerC* const m_pLogger;
    const std::string m_name;
};

} // namespace BSS::TSK
