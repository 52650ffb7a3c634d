// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_LoggingLockDecorator.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <utility>

namespace BSS::TSK {

LoggingLockDecoratorC::LoggingLockDecoratorC(LockC& lock, DBG::DbgLogConsumerC* logger, std::string name)
    : m_lock(lock), m_pLogger(logger), m_name(std::move(name))
{}

LoggingLockDecoratorC::~LoggingLockDecoratorC() = default;

void LoggingLockDecoratorC::lock()
{
    Log(DBG::LEVEL_FINER, "acquiring %s\n");
    m_lock.lock();
    Log(DBG::LEVEL_FINE, "%s acquired\n");
}

void LoggingLockDecoratorC::unlock()
{
    Log(DBG::LEVEL_FINER, "releasing %s\n");
    m_lock.unlock();
    Log(DBG::LEVEL_FINE, "%s released\n");
}

void LoggingLockDecoratorC::Log(int level, const char* format) const
{
    if (m_pLogger != nullptr) m_pLogger->Log(level, format, m_name);
}

} // namespace BSS::TSK
