// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A process that has no descriptors to spare, and one that has very many open.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "FakeSockets.h"
#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

/// Another limit for the process's descriptors while it lives.
class DescriptorLimitC
{
public:
    explicit DescriptorLimitC(rlim_t limit)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_before), 0);
        rlimit now = m_before;
        now.rlim_cur = limit;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &now), 0) << "this process may not open enough files";
    }
    ~DescriptorLimitC() { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &m_before), 0); }
    DescriptorLimitC(const DescriptorLimitC&) = delete;
    DescriptorLimitC& operator=(const DescriptorLimitC&) = delete;

private:
    rlimit m_before = {};
};

/// The lowest number that is free: with it as the limit nothing can be opened.
rlim_t LowestFree()
{
    const int lowest = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(::close(lowest), 0);
    return static_cast<rlim_t>(lowest);
}

class NetDescriptorsPosixTest : public testing::Test
{
protected:
    const Support::LogCapture systemLog;
};

TEST_F(NetDescriptorsPosixTest, ClientThatNothingCanWakeLooksForItselfTenTimesASecond)
{
    FakeSocketsC sockets;
    NetTcpIpClientSettingsT settings;
    settings.pSockets = &sockets;
    settings.clock = [&] { return sockets.nowMs; };
    std::optional<NetTcpIpClientC> client;
    {
        const DescriptorLimitC none(LowestFree());
        client.emplace(settings);
    }
    NetTcpIpClientCfgT config;
    config.m_wszIpDnsName = L"127.0.0.1";
    config.m_unServerPort = 4711;
    ASSERT_EQ(client->setPortConfig(config), RC_OK);
    client->serve(60000); // idle
    sockets.connectError = Pending();
    sockets.bRoom = false;
    client->connectTcpIp();
    client->serve(60000); // connecting
    sockets.connectError = 0;
    client->connectTcpIp();
    client->serve(60000);
    ASSERT_EQ(client->getState(), ONLINE);
    client->serve(60000); // receiving
    EXPECT_EQ(sockets.waits.size(), 12U);
    EXPECT_EQ(*std::max_element(sockets.waits.begin(), sockets.waits.end()), 100);
}

TEST_F(NetDescriptorsPosixTest, ServerThatNothingCouldWakeDoesNotStart)
{
    const auto log = std::make_shared<Support::LogRecorder>();
    NetTcpIpServerSettingsT settings;
    settings.logger = log;
    std::optional<NetTcpIpServerC> server;
    {
        const DescriptorLimitC none(LowestFree());
        server.emplace(settings);
    }
    ASSERT_EQ(server->configure("127.0.0.1", 0), RC_OK);
    EXPECT_EQ(server->start(), RC_FAILED);
    EXPECT_TRUE(log->Has("6 NetTcpIpServerC - start failed: no sockets to wake it by\n"));
}

TEST_F(NetDescriptorsPosixTest, ServerTakesTheClientThatCameWhenThereWereNoDescriptors)
{
    const auto log = std::make_shared<Support::LogRecorder>();
    NetTcpIpServerSettingsT settings;
    settings.logger = log;
    NetTcpIpServerC server(settings);
    ASSERT_EQ(server.configure("127.0.0.1", 0), RC_OK);
    ASSERT_EQ(server.start(), RC_OK);
    const HeldSocketC client = Open();
    {
        const DescriptorLimitC none(LowestFree());
        ASSERT_EQ(HAL::ConnectSocket(client, Address("127.0.0.1", server.getPort())), 0);
        ASSERT_TRUE(
            Eventually([&] { return !log->Beginning("5 NetTcpIpServerC - accept failed (err ").empty(); }));
    }
    EXPECT_TRUE(Eventually([&] { return server.getClientCount() == 1; }));
}

class LastDataC final : public BIO::PortReaderI
{
public:
    void onPortEvent(BIO::PortEvent, BIO::PortReason) override {}
    void onData(const std::uint8_t*, std::size_t count) override { nBytes += count; }
    std::atomic<std::size_t> nBytes{0};
};

TEST_F(NetDescriptorsPosixTest, ClientWorksInAProcessWithTwoThousandOpenFiles)
{
    constexpr std::size_t FILES = 2000;
    const DescriptorLimitC enough(FILES + 100);
    std::vector<int> files(FILES);
    std::generate(files.begin(), files.end(), [] { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); });
    ASSERT_GE(files.back(), static_cast<int>(FILES));
    {
        ListenerC listener;
        NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = listener.port();
        LastDataC reader;
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
