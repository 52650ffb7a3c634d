// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where a TCP/IP client connects to and how it keeps the connection. A plain value.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace BSS::NET {

/// Whether a lost connection is set up again. Every other number means the same as IMMEDIATELY.
enum class AutoConnect : std::uint32_t
{
    OFF = 0,
    WITH_TIMER = 1, ///< when the reconnect timer has run out
    IMMEDIATELY = 2
};

struct NetTcpIpClientCfgT
{
    static constexpr std::size_t MAX_NAME_LENGTH = 255;

    std::wstring m_wszIpDnsName; ///< an address, or a name to be resolved
    std::uint16_t m_unServerPort = 0;
    AutoConnect m_eAutoConnect = AutoConnect::OFF;
    std::uint32_t m_ulMaxReceiveTimeoutMs = 0; ///< silence for longer ends the connection; 0 is no limit

    /// RC_OK, or RC_INVALID_ARGUMENT for a name that is empty, too long or has a zero inside, and for port 0.
    [[nodiscard]] ResultCodeT check() const noexcept
    {
        const bool bName = !m_wszIpDnsName.empty() && m_wszIpDnsName.size() <= MAX_NAME_LENGTH &&
                           m_wszIpDnsName.find(L'\0') == std::wstring::npos;
        return bName && m_unServerPort != 0 ? RC_OK : RC_INVALID_ARGUMENT;
    }
};

} // namespace BSS::NET
