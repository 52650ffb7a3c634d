// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A process that has very many descriptors open.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "DescriptorLimit_Posix.h"
#include "Loopback.h"
#include "Support/Environment.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

class CountingReaderC final : public BIO::PortReaderI
{
public:
    void onPortEvent(BIO::PortEvent, BIO::PortReason) override {}
    void onData(const std::uint8_t*, std::size_t count) override { nBytes += count; }
    std::atomic<std::size_t> nBytes{0};
};

TEST(NetManyDescriptorsPosixTest, ClientWorksInAProcessWithTwoThousandOpenFiles)
{
    constexpr std::size_t FILES = 2000;
    if (!MayHaveDescriptors(FILES + 100)) {
        ASSERT_NE(Support::GetEnvironment("CI").value_or(""), "true") << "not enough descriptors here";
        GTEST_SKIP() << "this process may not have so many descriptors";
    }
    const Support::LogCapture systemLog;
    const DescriptorLimitC enough(FILES + 100);
    std::vector<int> files(FILES);
    std::generate(files.begin(), files.end(), [] { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); });
    ASSERT_GE(files.back(), static_cast<int>(FILES));
    {
        ListenerC listener;
        NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = listener.port();
        CountingReaderC reader;
        NetTcpIpClientC client;
        ASSERT_EQ(client.setPortConfig(config), RC_OK);
        ASSERT_EQ(client.attachReader(reader), RC_OK);
        client.start();
        const HeldSocketC peer = listener.accept();
        ASSERT_TRUE(Eventually([&] { return client.getState() == ONLINE; }));
        HAL::SendBytes(peer, "hello", 5);
        EXPECT_TRUE(Eventually([&] { return reader.nBytes == 5; }));
        std::size_t nWritten = 0;
        EXPECT_EQ(client.write("x", 1, nWritten), RC_OK);
        EXPECT_TRUE(CanRead(peer));
        client.close();
        EXPECT_TRUE(Eventually([&] { return client.getState() == IDLE; }));
    }
    std::for_each(files.begin(), files.end(), [](int file) { ::close(file); });
}

} // namespace
