// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server behind the log consumer "TcpIp".
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpServer.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

using namespace BSS;
using namespace BSS::DBG;
using namespace NetTests;

namespace {

class LogTcpIpServerTest : public testing::Test
{
protected:
    const SocketsStartedC started;
    const Support::LogCapture systemLog;
};

TEST_F(LogTcpIpServerTest, LinesReachAClient)
{
    DbgLogTcpIpServerC server("127.0.0.1");
    server.configure(0);
    ASSERT_EQ(server.start(), RC_OK);
    const HeldSocketC client = Open();
    ASSERT_EQ(HAL::ConnectSocket(client, Address("127.0.0.1", server.getServer().getPort())), 0);
    ASSERT_TRUE(Support::Eventually([&] { return server.getServer().getClientCount() == 1; }));
    EXPECT_TRUE(server.send("a line\n"));
    std::array<char, 7> bytes = {};
    ASSERT_TRUE(CanRead(client));
    EXPECT_EQ(HAL::ReceiveBytes(client, bytes.data(), bytes.size()).count, 7U);
    EXPECT_EQ(std::string(bytes.data(), 7), "a line\n");
}

TEST_F(LogTcpIpServerTest, NoClientsIsNoFailure)
{
    DbgLogTcpIpServerC server("127.0.0.1");
    server.configure(0);
    ASSERT_EQ(server.start(), RC_OK);
    EXPECT_TRUE(server.send("a line\n"));
}

/// The server at whichever port is free, as others may have the one that consumers ask for.
class AnyPortC final : public DbgLogServerI
{
public:
    void configure(std::uint16_t port) override
    {
        nAskedPort = port;
        m_server.configure(0);
    }
    ResultCodeT start() override { return m_server.start(); }
    bool send(std::string_view lines) override { return m_server.send(lines); }
    NET::NetTcpIpServerC& Network() { return m_server.getServer(); }

    std::uint16_t nAskedPort = 0;

private:
    DbgLogTcpIpServerC m_server{"127.0.0.1"};
};

TEST_F(LogTcpIpServerTest, ConsumerWithTheServerStreamsItsLines)
{
    auto made = std::make_unique<AnyPortC>();
    AnyPortC& server = *made;
    DbgLogTcpIpConsumerC consumer("TcpIp", std::move(made));
    ASSERT_EQ(consumer.start(), RC_OK);
    EXPECT_EQ(server.nAskedPort, 10002);
    const HeldSocketC client = Open();
    ASSERT_EQ(HAL::ConnectSocket(client, Address("127.0.0.1", server.Network().getPort())), 0);
    ASSERT_TRUE(Support::Eventually([&] { return server.Network().getClientCount() == 1; }));
    consumer.Log(LEVEL_INFO, "over the %s", "network");
    std::array<char, 4096> bytes = {};
    std::string text;
    while (text.find('\n') == std::string::npos && CanRead(client))
        text.append(bytes.data(), HAL::ReceiveBytes(client, bytes.data(), bytes.size()).count);
    EXPECT_TRUE(text.ends_with(" INFO over the network\n")) << text;
}

TEST_F(LogTcpIpServerTest, ServerIsNotStartedAnyMoreOnceTheProgramEnds)
{
    const auto run = [] {
        static DbgLogTcpIpServerC server("127.0.0.1");
        server.configure(0);
        std::atexit(
            [] { std::_Exit(server.start() == RC_FAILED ? 0 : 1); }); // after those that run are stopped
        std::exit(server.start() == RC_OK ? 2 : 3);
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_F(LogTcpIpServerTest, ProgramThatEndsWithAServerEndsCleanly)
{
    const auto run = [] {
        InstallTcpIpLogServer();
        InstallTcpIpLogConsumer();
        static DbgLogTcpIpServerC server("127.0.0.1");
        server.configure(0);
        std::exit(server.start() == RC_OK ? 0 : 1);
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

} // namespace
