// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client leaves behind, as the system counts it.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"

#include <atomic>
#include <filesystem>
#include <iterator>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

std::ptrdiff_t Entries(const char* directory)
{
    return std::distance(std::filesystem::directory_iterator(directory),
                         std::filesystem::directory_iterator());
}

class CounterC final : public BIO::PortWriterI
{
public:
    void onPortEvent(BIO::PortEvent event, BIO::PortReason) override
    {
        if (event == BIO::ONLINE) ++nOnline;
    }
    std::atomic<int> nOnline{0};
};

TEST(TcpIpClientPosixTest, ThousandLossesLeaveNoDescriptorAndNoThread)
{
    const Support::LogCapture systemLog;
    ListenerC listener;
    NetTcpIpClientCfgT config;
    config.m_wszIpDnsName = L"localhost"; // asked for on a thread each time
    config.m_unServerPort = listener.port();
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    const std::ptrdiff_t nDescriptors = Entries("/proc/self/fd");
    const std::ptrdiff_t nThreads = Entries("/proc/self/task");
    {
        CounterC counter;
        NetTcpIpClientSettingsT settings;
        settings.reconnect.minSpacingMs = 1;
        NetTcpIpClientC client(settings);
        ASSERT_EQ(client.setPortConfig(config), RC_OK);
        ASSERT_EQ(client.attachWriter(counter), RC_OK);
        client.start();
        for (int n = 0; n < 1000; ++n) {
            const HeldSocketC peer = listener.accept();
            ASSERT_TRUE(Support::Eventually([&] { return counter.nOnline > n; })) << n;
        }
    }
    EXPECT_TRUE(Support::Eventually([&] { return Entries("/proc/self/task") == nThreads; }));
    listener.close();
    EXPECT_EQ(Entries("/proc/self/fd"), nDescriptors - 1);
}

} // namespace
