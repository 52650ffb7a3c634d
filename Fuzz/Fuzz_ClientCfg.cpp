// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Loads the input as the configuration record of a TCP/IP client. What is loaded is stored, which gives the
// bytes it came from, but for a later sub-version, and loaded again; what is refused has changed nothing.
#include "Bss/Bss_Bio/BSS_BIO_Decoder.h"
#include "Bss/Bss_Bio/BSS_BIO_Writer.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfgRecord.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using BSS::NET::NetTcpIpClientCfgT;

namespace {

constexpr std::size_t s_nMaxBytes = 4096;
constexpr std::size_t s_nVersionBytes = 2;

void Require(bool bTrue)
{
    if (!bTrue) std::abort();
}

bool AreEqual(const NetTcpIpClientCfgT& rLeft, const NetTcpIpClientCfgT& rRight)
{
    return rLeft.m_wszIpDnsName == rRight.m_wszIpDnsName && rLeft.m_unServerPort == rRight.m_unServerPort &&
           rLeft.m_eAutoConnect == rRight.m_eAutoConnect &&
           rLeft.m_ulMaxReceiveTimeoutMs == rRight.m_ulMaxReceiveTimeoutMs;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes > s_nMaxBytes) return -1;
    NetTcpIpClientCfgT config;
    BSS::BIO::DecoderC decoder(pBytes, nBytes);
    if (BSS::NET::LoadClientCfg(decoder, config) != BSS::RC_OK) {
        Require(AreEqual(config, NetTcpIpClientCfgT()));
        return 0;
    }
    Require(config.check() == BSS::RC_OK && decoder.getPosition() <= nBytes);
    BSS::BIO::SimpleBufferC buffer(s_nMaxBytes);
    BSS::BIO::WriterC writer(buffer);
    Require(BSS::NET::StoreClientCfg(writer, config) == BSS::RC_OK);
    Require(buffer.getSize() == decoder.getPosition());
    const auto* const pStored = static_cast<const std::uint8_t*>(buffer.getData());
    Require(std::equal(pStored + s_nVersionBytes, pStored + buffer.getSize(), pBytes + s_nVersionBytes));
    NetTcpIpClientCfgT again;
    BSS::BIO::ReaderC reader(pStored, buffer.getSize());
    Require(BSS::NET::LoadClientCfg(reader, again) == BSS::RC_OK && AreEqual(again, config));
    return 0;
}
