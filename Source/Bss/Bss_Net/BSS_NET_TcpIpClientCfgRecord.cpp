// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. A later sub-version adds values behind those that are known here.
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfgRecord.h"

#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"

#include <utility>

namespace BSS::NET {

namespace {

constexpr std::uint8_t MAIN_VERSION = 1;
constexpr std::uint8_t SUB_VERSION = 1;

constexpr char NAME_MAIN_VERSION[] = "MainVersion";
constexpr char NAME_SUB_VERSION[] = "SubVersion";
constexpr char NAME_LENGTH[] = "unSvrNameLen";
constexpr char NAME_PORT[] = "m_unServerPort";
constexpr char NAME_AUTO_CONNECT[] = "(uint32_t)m_eAutoConnect";
constexpr char NAME_TIMEOUT[] = "(uint32_t)m_ulMaxReceiveTimeoutMs";

ResultCodeT Check(const NetTcpIpClientCfgT& config) noexcept
{
    const bool bKnown = config.m_eAutoConnect <= AutoConnect::IMMEDIATELY;
    return bKnown ? config.check() : RC_VALUE_REJECTED;
}

ResultCodeT Load(BIO::BinaryPersistencyC& persistency, NetTcpIpClientCfgT& config)
{
    const auto mainVersion = persistency.read<std::uint8_t>(NAME_MAIN_VERSION);
    const auto subVersion = persistency.read<std::uint8_t>(NAME_SUB_VERSION);
    if (mainVersion != MAIN_VERSION || subVersion < SUB_VERSION) return RC_VALUE_REJECTED;
    config.m_wszIpDnsName = persistency.readText(NAME_LENGTH);
    config.m_unServerPort = persistency.read<std::uint16_t>(NAME_PORT);
    config.m_eAutoConnect = static_cast<AutoConnect>(persistency.read<std::uint32_t>(NAME_AUTO_CONNECT));
    config.m_ulMaxReceiveTimeoutMs = persistency.read<std::uint32_t>(NAME_TIMEOUT);
    return Check(config);
}

} // namespace

ResultCodeT StoreClientCfg(BIO::BinaryPersistencyC& persistency, const NetTcpIpClientCfgT& config)
{
    const ResultCodeT rc = Check(config);
    if (rc != RC_OK) return rc;
    persistency.write(NAME_MAIN_VERSION, MAIN_VERSION);
    persistency.write(NAME_SUB_VERSION, SUB_VERSION);
    persistency.writeText(NAME_LENGTH, config.m_wszIpDnsName);
    persistency.write(NAME_PORT, config.m_unServerPort);
    persistency.write(NAME_AUTO_CONNECT, static_cast<std::uint32_t>(config.m_eAutoConnect));
    persistency.write(NAME_TIMEOUT, config.m_ulMaxReceiveTimeoutMs);
    return RC_OK;
}

ResultCodeT LoadClientCfg(BIO::BinaryPersistencyC& persistency, NetTcpIpClientCfgT& config)
{
    NetTcpIpClientCfgT loaded;
    try {
        const ResultCodeT rc = Load(persistency, loaded);
        if (rc != RC_OK) return rc;
    } catch (const BIO::OverflowExceptionC& error) {
        return error.GetResultCode();
    }
    config = std::move(loaded);
    return RC_OK;
}

} // namespace BSS::NET
