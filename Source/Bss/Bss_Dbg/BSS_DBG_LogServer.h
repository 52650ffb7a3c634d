// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP consumer needs of a server: to be told a port, to start, and to send lines to whoever is
// connected. The network floor implements it; the consumer knows no network. Implementations are safe from
// any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace BSS::DBG {

class DbgLogServerI
{
public:
    /// Says where clients will come, before start().
    virtual void configure(std::uint16_t port) = 0;

    /// Begins to accept clients. RC_OK, or why that is not possible.
    [[nodiscard]] virtual ResultCodeT start() = 0;

    /// Sends lines to every client. False when one of them did not get them; no clients is no failure.
    virtual bool send(std::string_view lines) = 0;
    virtual ~DbgLogServerI() = default;

protected:
    DbgLogServerI() = default;
    DbgLogServerI(const DbgLogServerI&) = default;
    DbgLogServerI& operator=(const DbgLogServerI&) = default;
};

/// Makes a server; may return null.
using LogServerMakerT = std::unique_ptr<DbgLogServerI> (*)();

} // namespace BSS::DBG
