// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include <utility>

namespace BSS::DBG {

namespace {

constinit std::atomic<LogServerMakerT> s_maker = nullptr;

std::shared_ptr<DbgLogConsumerC> MakeTcpIpConsumer(const std::string& name)
{
    const LogServerMakerT maker = s_maker.load();
    return std::make_shared<DbgLogTcpIpConsumerC>(name, maker != nullptr ? maker() : nullptr);
}

} // namespace

DbgLogTcpIpConsumerC::DbgLogTcpIpConsumerC(std::string name, std::unique_ptr<DbgLogServerI> server)
    : DbgLogConsumerC(std::move(name), PrefixKind::Full), m_server(std::move(server))
{}

DbgLogTcpIpConsumerC::~DbgLogTcpIpConsumerC() = default;

bool DbgLogTcpIpConsumerC::isOpen() const noexcept
{
    return m_bStarted.load(std::memory_order_acquire); // pairs with start(): the server is up
}

ResultCodeT DbgLogTcpIpConsumerC::start()
{
    if (!m_server) {
        HAL::DebugOutput(
            L"BSS::DBG::DbgLogTcpIpConsumerC::start there is no TCP/IP server in this program\r\n");
        return RC_OBJECT_MISSING;
    }
    m_server->configure(PORT);
    const ResultCodeT rc = m_server->start();
    m_bStarted.store(rc == RC_OK, std::memory_order_release);
    return rc;
}

bool DbgLogTcpIpConsumerC::write(std::string_view lines)
{
    return m_server->send(lines);
}

void SetLogServerMaker(LogServerMakerT maker) noexcept
{
    s_maker.store(maker);
}

void InstallTcpIpLogConsumer() noexcept
{
    DbgLogMgrC::setTcpIpConsumerMaker(&MakeTcpIpConsumer);
}

} // namespace BSS::DBG
