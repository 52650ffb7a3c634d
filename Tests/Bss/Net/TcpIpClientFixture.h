// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The TCP/IP client with its thread, for tests that let servers do to it what servers do.
#pragma once

#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"
#include "Support/ReportCapture.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace NetTests {

/// Keeps what it is told; from any thread.
class WatcherC final : public BSS::BIO::PortReaderI
{
public:
    void onPortEvent(BSS::BIO::PortEvent event, BSS::BIO::PortReason reason) override
    {
        if (event == BSS::BIO::ONLINE) ++nOnline;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_events.emplace_back(event, reason);
        }
        if (onEvent) onEvent(event);
    }
    void onData(const std::uint8_t* bytes, std::size_t count) override
    {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_data.append(reinterpret_cast<const char*>(bytes), count);
        }
        if (onBytes) onBytes();
    }

    std::vector<std::pair<BSS::BIO::PortEvent, BSS::BIO::PortReason>> Events() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_events;
    }
    std::string Data() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_data;
    }
    std::size_t Count(BSS::BIO::PortEvent event) const
    {
        std::size_t count = 0;
        for (const auto& [one, reason] : Events())
            count += one == event ? 1 : 0;
        return count;
    }
    bool Told(BSS::BIO::PortEvent event, BSS::BIO::PortReason reason) const
    {
        for (const auto& one : Events())
            if (one == std::pair{event, reason}) return true;
        return false;
    }

    std::function<void(BSS::BIO::PortEvent)> onEvent;
    std::function<void()> onBytes;
    std::atomic<std::size_t> nOnline{0};

private:
    mutable std::mutex m_lock;
    std::vector<std::pair<BSS::BIO::PortEvent, BSS::BIO::PortReason>> m_events;
    std::string m_data;
};

/// A client with its thread, a reader and a log. Whatever happens, nothing may be reported.
class TcpIpClientFixtureC : public testing::Test
{
protected:
    TcpIpClientFixtureC()
    {
        config.m_wszIpDnsName = L"127.0.0.1";
        settings.logger = log;
        settings.reconnect.intervalMs = 1;
        settings.reconnect.minSpacingMs = 1;
        settings.reconnect.jitterPercent = 0;
    }
    ~TcpIpClientFixtureC() override
    {
        End();
        EXPECT_TRUE(reports.Reports().empty());
    }

    BSS::NET::NetTcpIpClientC& Client()
    {
        if (!m_client) {
            m_client = std::make_unique<BSS::NET::NetTcpIpClientC>(settings);
            EXPECT_EQ(m_client->attachReader(watcher), BSS::RC_OK);
        }
        return *m_client;
    }
    void Start(std::uint16_t port)
    {
        config.m_unServerPort = port;
        ASSERT_EQ(Client().setPortConfig(config), BSS::RC_OK);
        Client().start();
    }

    /// Callbacks use the client until its thread has ended.
    void End()
    {
        if (!m_client) return;
        m_client->stop();
        EXPECT_TRUE(m_client->waitForStop(LONG_MS));
        m_client.reset();
    }
    bool Reaches(std::uint32_t state)
    {
        return Support::Eventually([&] { return Client().getState() == state; });
    }
    bool Logs(const std::string& text)
    {
        return Support::Eventually([&] { return !log->Beginning(text).empty(); });
    }

    const SocketsStartedC started;
    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    BSS::NET::NetTcpIpClientSettingsT settings;
    BSS::NET::NetTcpIpClientCfgT config;
    WatcherC watcher;

private:
    std::unique_ptr<BSS::NET::NetTcpIpClientC> m_client;
};

} // namespace NetTests
