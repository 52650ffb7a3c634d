// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpServer.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

#include <atomic>
#include <mutex>
#include <set>
#include <utility>

namespace BSS::DBG {

namespace {

// The log manager keeps its consumers until the very end of the process; threads must not run that long. This
// object makes first what the threads need, and so goes before it. They could not make it themselves while
// exit() waits for them here: it may keep the lock that registering takes.
class RunningServersC
{
public:
    static RunningServersC& instance()
    {
        static RunningServersC servers;
        return servers;
    }
    static bool isGone() noexcept { return s_bGone; }

    RunningServersC()
    {
        static_cast<void>(DbgLogMgrC::instance());
        static_cast<void>(ERR::GetPanicHandlerRegistry());
    }
    ~RunningServersC()
    {
        s_bGone = true;
        for (NET::NetTcpIpServerC* const pServer : m_servers)
            pServer->stop();
    }
    void add(NET::NetTcpIpServerC& server)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_servers.insert(&server);
    }
    void remove(NET::NetTcpIpServerC& server)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_servers.erase(&server);
    }

private:
    inline static std::atomic<bool> s_bGone{false};
    std::mutex m_lock;
    std::set<NET::NetTcpIpServerC*> m_servers;
};

std::string ConfiguredAddress()
{
    std::uint32_t value = 0;
    const ResultCodeT rc = OS::PlatformConfigStore().Read(L"Configuration", L"TcpIpLogAnyAddress", value);
    return rc == RC_OK && value != 0 ? "0.0.0.0" : "127.0.0.1";
}

std::unique_ptr<DbgLogServerI> MakeServer()
{
    return std::make_unique<DbgLogTcpIpServerC>(std::string(),
                                                DbgLogMgrC::instance().getConsumer("NetTcpIpServer"));
}

NET::NetTcpIpServerSettingsT Settings(std::shared_ptr<DbgLogConsumerC> logger)
{
    NET::NetTcpIpServerSettingsT settings;
    settings.name = "TcpIpLogServer";
    settings.logger = std::move(logger);
    return settings;
}

} // namespace

DbgLogTcpIpServerC::DbgLogTcpIpServerC(std::string address, std::shared_ptr<DbgLogConsumerC> logger)
    : m_address(address.empty() ? ConfiguredAddress() : std::move(address)),
      m_server(Settings(std::move(logger)))
{}

DbgLogTcpIpServerC::~DbgLogTcpIpServerC()
{
    if (!RunningServersC::isGone()) RunningServersC::instance().remove(m_server);
}

void DbgLogTcpIpServerC::configure(std::uint16_t port)
{
    static_cast<void>(m_server.configure(m_address, port));
}

ResultCodeT DbgLogTcpIpServerC::start()
{
    if (RunningServersC::isGone()) return RC_FAILED; // nobody would stop it any more
    RunningServersC& running = RunningServersC::instance();
    const ResultCodeT rc = m_server.start();
    if (rc == RC_OK) running.add(m_server);
    return rc;
}

bool DbgLogTcpIpServerC::send(std::string_view lines)
{
    return lines.empty() || m_server.send(lines.data(), lines.size()) == RC_OK;
}

void InstallTcpIpLogServer() noexcept
{
    SetLogServerMaker(&MakeServer);
}

} // namespace BSS::DBG
