// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A process that has no descriptors to spare.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "DescriptorLimit_Posix.h"
#include "FakeSockets.h"
#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <unistd.h>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

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

} // namespace
