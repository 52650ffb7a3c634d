// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The state machine of the TCP/IP client with a client and a timer that do what a test says.
#pragma once

#include "Bss/Bss_Net/BSS_NET_TcpIpClientStateMachine.h"

#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"
#include "Support/ReportCapture.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace NetTests {

class FakeClientC final : public BSS::NET::TcpIpClientI
{
public:
    bool isSocketValid() const override { return bOpen; }
    BSS::NET::AutoConnect getAutoConnect() const override { return autoConnect; }
    BSS::ResultCodeT setupConnection() override
    {
        ++nAttempts;
        bOpen = bServerThere;
        return bServerThere ? BSS::RC_OK : BSS::RC_FAILED;
    }
    BSS::ResultCodeT waitForConnection() override
    {
        ++nWaits;
        return bServerThere ? BSS::RC_OK : BSS::RC_FAILED;
    }
    void shutdownConnection() override { ++nShutdowns; }
    void closeSocket() override { bOpen = false; }
    BSS::HAL::SocketT shutdownSocket(int& error) override
    {
        error = shutdownError;
        return bOpen ? 17 : BSS::HAL::NO_SOCKET;
    }
    void forwardPortEvent(BSS::BIO::PortEvent event, BSS::BIO::PortReason reason) override
    {
        told.emplace_back(event, reason);
        if (bThrow) throw std::runtime_error("no");
    }

    BSS::NET::AutoConnect autoConnect = BSS::NET::AutoConnect::OFF;
    bool bServerThere = true;
    bool bOpen = false;
    bool bThrow = false;
    int shutdownError = 0;
    int nAttempts = 0;
    int nWaits = 0;
    int nShutdowns = 0;
    std::vector<std::pair<BSS::BIO::PortEvent, BSS::BIO::PortReason>> told;
};

class FakeTimerC final : public BSS::NET::ReconnectTimerI
{
public:
    bool isRunning() const override { return bRunning; }
    void start(std::uint32_t ms) override
    {
        bRunning = true;
        delayMs = ms;
    }
    void stop() override { bRunning = false; }
    std::uint64_t nowMs() const override { return clockMs; }

    std::uint64_t clockMs = 1000000;
    bool bRunning = false;
    std::uint32_t delayMs = 0;
};

class TcpIpClientStateMachineFixtureC : public testing::Test
{
protected:
    TcpIpClientStateMachineFixtureC() { settings.jitterPercent = 0; }

    BSS::NET::TcpIpClientStateMachineC& Machine()
    {
        if (!m_machine)
            m_machine = std::make_unique<BSS::NET::TcpIpClientStateMachineC>(client, timer,
                                                                             BSS::NET::LogC(log), settings);
        return *m_machine;
    }

    /// Brings the machine into a state as a program would.
    BSS::NET::TcpIpClientStateMachineC& In(std::uint32_t state)
    {
        if (state == BSS::NET::IDLE) return Machine();
        client.bServerThere = state == BSS::NET::ONLINE;
        Machine().start();
        client.bServerThere = true;
        timer.stop();
        timer.clockMs += settings.minSpacingMs;
        EXPECT_EQ(Machine().getState(), state);
        log->Clear();
        client.told.clear();
        client.nAttempts = 0;
        return Machine();
    }

    bool Logged(const std::string& text) const { return log->Has("3 " + text + "\n"); }
    static std::string Of(const std::string& text) { return "TcpIpClientStateMachineC::" + text; }

    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
    FakeClientC client;
    FakeTimerC timer;
    BSS::NET::ReconnectSettingsT settings;

private:
    std::unique_ptr<BSS::NET::TcpIpClientStateMachineC> m_machine;
};

} // namespace NetTests
