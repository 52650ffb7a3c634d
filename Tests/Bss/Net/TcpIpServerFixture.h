// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server of many clients on the loopback address, for tests that are its clients.
#pragma once

#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"

#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>

namespace NetTests {

/// Holds the server's thread until it is let.
struct HoldT
{
    std::mutex lock;
    std::condition_variable let;
    bool bLet = false;
    std::atomic<bool> bHeld{false};

    void Hold()
    {
        std::unique_lock<std::mutex> guard(lock);
        bHeld = true;
        let.wait(guard, [this] { return bLet; });
    }
    void Let()
    {
        const std::lock_guard<std::mutex> guard(lock);
        bLet = true;
        let.notify_all();
    }
};

class TcpIpServerFixtureC : public testing::Test
{
protected:
    BSS::NET::NetTcpIpServerC& Server()
    {
        if (!m_server) {
            settings.logger = log;
            m_server = std::make_unique<BSS::NET::NetTcpIpServerC>(settings);
            EXPECT_EQ(m_server->configure("127.0.0.1", 0), BSS::RC_OK);
            EXPECT_EQ(m_server->start(), BSS::RC_OK);
        }
        return *m_server;
    }

    /// For what the server uses and goes before this object.
    void End() { m_server.reset(); }

    HeldSocketC Join()
    {
        const std::size_t before = Server().getClientCount();
        HeldSocketC client = Open();
        EXPECT_EQ(BSS::HAL::ConnectSocket(client, Address("127.0.0.1", Server().getPort())), 0);
        EXPECT_TRUE(Support::Eventually([&] { return Server().getClientCount() == before + 1; }));
        return client;
    }

    static std::string Receive(BSS::HAL::SocketT socket, std::size_t count)
    {
        std::string text(count, '\0');
        std::size_t nGot = 0;
        while (nGot < count && CanRead(socket)) {
            const BSS::HAL::TransferT got = BSS::HAL::ReceiveBytes(socket, text.data() + nGot, count - nGot);
            if (got.error != 0 || got.count == 0) break;
            nGot += got.count;
        }
        text.resize(nGot);
        return text;
    }

    const SocketsStartedC started;
    const Support::LogCapture systemLog;
    std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    BSS::NET::NetTcpIpServerSettingsT settings;

private:
    std::unique_ptr<BSS::NET::NetTcpIpServerC> m_server;
};

} // namespace NetTests
