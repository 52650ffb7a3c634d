// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Loads the input as the configuration record of a TCP/IP client; what is loaded is stored and loaded again.
#include "Bss/Bss_Bio/BSS_BIO_Decoder.h"
#include "Bss/Bss_Bio/BSS_BIO_Writer.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfgRecord.h"

#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t s_nMaxBytes = 4096;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes > s_nMaxBytes) return -1;
    BSS::NET::NetTcpIpClientCfgT config;
    BSS::BIO::DecoderC decoder(pBytes, nBytes);
    if (BSS::NET::LoadClientCfg(decoder, config) != BSS::RC_OK) return 0;
    BSS::BIO::SimpleBufferC buffer(s_nMaxBytes);
    BSS::BIO::WriterC writer(buffer);
    BSS::NET::StoreClientCfg(writer, config);
    BSS::NET::NetTcpIpClientCfgT again;
    BSS::BIO::ReaderC reader(buffer.getData(), buffer.getSize());
    if (BSS::NET::LoadClientCfg(reader, again) != BSS::RC_OK) std::abort();
    if (again.m_wszIpDnsName != config.m_wszIpDnsName) std::abort();
    return 0;
}
