// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The TCP/IP client on sockets that answer as the test likes, turn by turn, on a clock that only waits move.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "FakeSockets.h"
#include "Loopback.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"
#include "Support/ReportCapture.h"

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace NetTests {

class RecorderC final : public BSS::BIO::PortReaderI
{
public:
    void onPortEvent(BSS::BIO::PortEvent event, BSS::BIO::PortReason reason) override
    {
        events += std::to_string(event) + "/" + std::to_string(static_cast<int>(reason)) + " ";
        if (onEvent) onEvent(event);
    }
    void onData(const std::uint8_t* bytes, std::size_t count) override
    {
        data.append(reinterpret_cast<const char*>(bytes), count);
        if (onBytes) onBytes();
    }
    std::string events;
    std::string data;
    std::function<void(BSS::BIO::PortEvent)> onEvent;
    std::function<void()> onBytes;
};

class TcpIpClientOnFakesC : public testing::Test
{
protected:
    TcpIpClientOnFakesC()
    {
        config.m_wszIpDnsName = L"127.0.0.1";
        config.m_unServerPort = 4711;
        settings.pSockets = &sockets;
        settings.resolver = resolver;
        settings.clock = [this] { return sockets.nowMs; };
        settings.logger = log;
        settings.reconnect.jitterPercent = 0;
    }
    ~TcpIpClientOnFakesC() override
    {
        m_client.reset();
        EXPECT_EQ(sockets.nOpen, 0);
    }

    BSS::NET::NetTcpIpClientC& Client()
    {
        if (!m_client) {
            m_client = std::make_unique<BSS::NET::NetTcpIpClientC>(settings);
            EXPECT_EQ(m_client->setPortConfig(config), BSS::RC_OK);
            EXPECT_EQ(m_client->attachReader(reader), BSS::RC_OK);
        }
        return *m_client;
    }

    /// One turn after a request to connect.
    BSS::NET::NetTcpIpClientC& Connecting()
    {
        Client().connectTcpIp();
        Client().serve(0);
        return Client();
    }

    BSS::NET::NetTcpIpClientC& Online()
    {
        Connecting();
        EXPECT_EQ(Client().getState(), BSS::NET::ONLINE);
        log->Clear();
        reader.events.clear();
        sockets.waits.clear();
        return Client();
    }

    BSS::ResultCodeT Write(const std::string& text)
    {
        return Client().write(text.data(), text.size(), nWritten);
    }

    bool Logged(const std::string& text) const
    {
        for (const std::string& message : log->Messages())
            if (message.substr(2) == text) return true;
        return false;
    }
    bool LoggedError(const std::string& text, int error) const
    {
        return Logged(text + "(err " + BSS::HAL::SocketErrorText(error) + ")\n");
    }

    const SocketsStartedC started;
    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    const std::shared_ptr<FakeResolverC> resolver = std::make_shared<FakeResolverC>();
    FakeSocketsC sockets;
    BSS::NET::NetTcpIpClientSettingsT settings;
    BSS::NET::NetTcpIpClientCfgT config;
    RecorderC reader;
    std::size_t nWritten = 0;

private:
    std::unique_ptr<BSS::NET::NetTcpIpClientC> m_client;
};

} // namespace NetTests
