// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Os/BSS_OS_Configuration.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <atomic>
#include <utility>

namespace BSS::DBG {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Dbg\BSS_DBG_LogMgr)";

constinit std::atomic<bool> s_gone = false;

std::shared_ptr<DbgLogConsumerC> MakeSystemErrorLogger()
{
    const std::uint64_t limit =
        OS::ReadErrorLogLimitBytes(OS::PlatformConfigStore(), DbgLogFileConsumerC::DEFAULT_LIMIT_BYTES);
    return std::make_shared<DbgLogFileConsumerC>("SystemErrorLogger", L"ErrorLog.txt", limit);
}

} // namespace

DbgLogMgrC::DbgLogMgrC() : m_pSystemErrorLogger(MakeSystemErrorLogger())
{
    OS::PreparePathMap(); // every line uses it, so it must outlive the manager
}

DbgLogMgrC::~DbgLogMgrC()
{
    s_gone.store(true);
}

DbgLogMgrC& DbgLogMgrC::instance()
{
    static DbgLogMgrC manager;
    return manager;
}

bool DbgLogMgrC::isGone() noexcept
{
    return s_gone.load();
}

std::shared_ptr<DbgLogConsumerC> DbgLogMgrC::getSystemErrorLogger() const
{
    std::shared_ptr<DbgLogConsumerC> logger;
    {
        const TSK::GuardC guard(m_lock);
        logger = m_pSystemErrorLogger;
    }
    if (!logger) {
        HAL::DebugOutput(L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
    }
    return logger;
}

void DbgLogMgrC::setSystemErrorLogger(std::shared_ptr<DbgLogConsumerC> consumer)
{
    const TSK::GuardC guard(m_lock);
    m_pSystemErrorLogger.swap(consumer);
}

void DbgLogMgrC::flush() const
{
    std::shared_ptr<DbgLogConsumerC> logger;
    {
        const TSK::GuardC guard(m_lock);
        logger = m_pSystemErrorLogger;
    }
    if (logger && !logger->flush()) BSS_ASSERT(!"Failed flushing logs!");
}

} // namespace BSS::DBG
