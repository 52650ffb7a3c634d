// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Owners of clients and servers whose own thread is being interrupted.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "Loopback.h"
#include "Support/LogCapture.h"

#include <atomic>
#include <boost/thread/thread.hpp>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

/// Runs the first function on a thread, and the second one there when it is interrupted. Whether the
/// interruption is still to come after that.
bool KeepsTheInterruption(const std::function<void()>& before, const std::function<void()>& action)
{
    std::atomic<bool> bReady{false};
    std::atomic<bool> bInterrupted{false};
    bool bKept = false;
    boost::thread owner([&] {
        before();
        bReady = true;
        while (!bInterrupted)
            std::this_thread::yield();
        action();
        bKept = boost::this_thread::interruption_requested();
    });
    while (!bReady)
        std::this_thread::yield();
    owner.interrupt();
    bInterrupted = true;
    owner.join();
    return bKept;
}

class NetInterruptionTest : public testing::Test
{
protected:
    // Whether the owner has to wait for the object's thread depends on the moment.
    static constexpr int TIMES = 20;

    const SocketsStartedC started;
    const Support::LogCapture systemLog;
};

TEST_F(NetInterruptionTest, OwnerThatIsInterruptedMayDestroyAStartedClient)
{
    for (int n = 0; n < TIMES; ++n) {
        std::unique_ptr<NetTcpIpClientC> client;
        EXPECT_TRUE(KeepsTheInterruption(
            [&] {
                client = std::make_unique<NetTcpIpClientC>();
                client->start();
            },
            [&] { client.reset(); }));
    }
}

TEST_F(NetInterruptionTest, OwnerThatIsInterruptedMayStopAndDestroyAStartedServer)
{
    for (int n = 0; n < TIMES; ++n) {
        std::unique_ptr<NetTcpIpServerC> server;
        EXPECT_TRUE(KeepsTheInterruption(
            [&] {
                server = std::make_unique<NetTcpIpServerC>();
                EXPECT_EQ(server->configure("127.0.0.1", 0), RC_OK);
                EXPECT_EQ(server->start(), RC_OK);
            },
            [&] {
                if (n % 2 == 0) {
                    EXPECT_NO_THROW(server->stop());
                    EXPECT_EQ(server->getPort(), 0);
                }
                server.reset();
            }));
    }
}

} // namespace
