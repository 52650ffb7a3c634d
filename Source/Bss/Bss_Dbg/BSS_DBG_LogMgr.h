// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The process's log manager. It owns the system error logger, to which assertions and panics go. Made on
// first use and destroyed when the process ends or the library is unloaded, after the panic handler registry.
// Safe from any thread; none of its locks is held while a consumer runs.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <memory>

namespace BSS::DBG {

class DbgLogConsumerC;

class DbgLogMgrC
{
public:
    /// The one manager. Must not be called once isGone().
    static DbgLogMgrC& instance();

    /// True once the manager has been destroyed: a report then has only the debugger output left.
    static bool isGone() noexcept;

    /// The consumer "SystemErrorLogger", which writes "ErrorLog.txt". Null, and told on the debugger output,
    /// when there is none. The file is made by the first line, not by this.
    std::shared_ptr<DbgLogConsumerC> getSystemErrorLogger() const;

    /// Puts another consumer in its place; null takes it away.
    void setSystemErrorLogger(std::shared_ptr<DbgLogConsumerC> consumer);

    /// Flushes all log files; an assertion tells when that fails.
    void flush() const;

    DbgLogMgrC(const DbgLogMgrC&) = delete;
    DbgLogMgrC& operator=(const DbgLogMgrC&) = delete;

private:
    DbgLogMgrC();
    ~DbgLogMgrC();

    mutable TSK::MutexC m_lock;
    std::shared_ptr<DbgLogConsumerC> m_pSystemErrorLogger;
};

} // namespace BSS::DBG
