// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A TCP/IP client whose server ends every connection, for tests of what is left of them.
#pragma once

#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"

#include <atomic>
#include <cstdint>
#include <gtest/gtest.h>

namespace NetTests {

class LosingClientC final : private BSS::BIO::PortWriterI
{
public:
    /// The listener is not owned. The name of its address is asked for on a thread each time.
    LosingClientC(ListenerC& listener, std::uint32_t minSpacingMs)
        : m_listener(listener), m_client(Settings(minSpacingMs))
    {
        BSS::NET::NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"localhost";
        config.m_unServerPort = listener.port();
        config.m_eAutoConnect = BSS::NET::AutoConnect::IMMEDIATELY;
        EXPECT_EQ(m_client.setPortConfig(config), BSS::RC_OK);
        EXPECT_EQ(m_client.attachWriter(*this), BSS::RC_OK);
        m_client.start();
    }

    /// Waits until so many connections have come and gone.
    void Lose(int nTimes)
    {
        for (int n = 0; n < nTimes; ++n) {
            const HeldSocketC peer = m_listener.accept();
            ASSERT_TRUE(Support::Eventually([this] { return m_nOnline > m_nLost; })) << n;
            ++m_nLost;
        }
    }
    void Stop()
    {
        m_client.stop();
        EXPECT_TRUE(m_client.waitForStop(LONG_MS));
    }

private:
    void onPortEvent(BSS::BIO::PortEvent event, BSS::BIO::PortReason) override
    {
        if (event == BSS::BIO::ONLINE) ++m_nOnline;
    }
    static BSS::NET::NetTcpIpClientSettingsT Settings(std::uint32_t minSpacingMs)
    {
        BSS::NET::NetTcpIpClientSettingsT settings;
        settings.reconnect.minSpacingMs = minSpacingMs;
        return settings;
    }

    ListenerC& m_listener;
    std::atomic<int> m_nOnline{0};
    int m_nLost = 0;
    BSS::NET::NetTcpIpClientC m_client;
};

} // namespace NetTests
