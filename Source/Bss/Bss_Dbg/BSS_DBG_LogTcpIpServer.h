// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server behind the log consumer "TcpIp": whoever connects is sent the lines. A diagnostic channel: there
// is no authentication and no encryption, so it listens on the loopback address alone unless the
// configuration says otherwise (32-bit value "TcpIpLogAnyAddress" in "Configuration", not zero: on all
// addresses of this machine). What clients send is thrown away.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogServer.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include <memory>
#include <string>

namespace BSS::DBG {

class DbgLogTcpIpServerC final : public DbgLogServerI
{
public:
    /// `address` is where it listens; empty: as the configuration says. The logger is told of clients that
    /// come and go and are dropped; it must not be a consumer that this server serves.
    explicit DbgLogTcpIpServerC(std::string address = {}, std::shared_ptr<DbgLogConsumerC> logger = {});
    ~DbgLogTcpIpServerC() override;

    void configure(std::uint16_t port) override;
    ResultCodeT start() override;
    bool send(std::string_view lines) override;

    NET::NetTcpIpServerC& getServer() noexcept { return m_server; }

private:
    const std::string m_address;
    NET::NetTcpIpServerC m_server;
};

/// Gives "TcpIp" consumers their server from now on; it logs to the consumer "NetTcpIpServer". For the
/// composition root of a program with a network.
void InstallTcpIpLogServer() noexcept;

} // namespace BSS::DBG
