// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A consumer that streams its lines to the clients of a TCP/IP server. The server comes from a maker that the
// network floor installs; without one the consumer refuses to start, says so on the debugger output, and
// stays closed: messages to it cost next to nothing.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogServer.h"

#include <atomic>
#include <memory>

namespace BSS::DBG {

class DbgLogTcpIpConsumerC final : public DbgLogConsumerC
{
public:
    /// Where clients come.
    static constexpr std::uint16_t PORT = 10002;

    /// Owns the server, which may be null.
    DbgLogTcpIpConsumerC(std::string name, std::unique_ptr<DbgLogServerI> server);
    ~DbgLogTcpIpConsumerC() override;

    /// True once the server has started.
    bool isOpen() const noexcept override;

    /// Configures the server for PORT and starts it. What the server answers; RC_OBJECT_MISSING without one.
    ResultCodeT start() override;

protected:
    bool write(std::string_view lines) override;

private:
    const std::unique_ptr<DbgLogServerI> m_server;
    std::atomic<bool> m_bStarted{false};
};

/// Says how servers are made; null takes the maker away.
void SetLogServerMaker(LogServerMakerT maker) noexcept;

/// Makes the log manager know this class. For the composition root.
void InstallTcpIpLogConsumer() noexcept;

} // namespace BSS::DBG
