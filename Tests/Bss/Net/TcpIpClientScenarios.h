// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What servers do to a TCP/IP client, wherever they are: in the client's network or in another one.
#pragma once

#include "TcpIpClientFixture.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace NetTests {

class TcpIpClientScenariosC : public TcpIpClientFixtureC
{
protected:
    using ListenerPtrT = std::unique_ptr<ListenerC>;
    using WhereT = std::function<void(const std::function<void()>&)>;

    /// Servers are there: their address, and how to do something in that network.
    void PlaceServers(std::string address, WhereT there)
    {
        m_address = std::move(address);
        m_there = std::move(there);
    }
    ListenerPtrT Listen()
    {
        ListenerPtrT listener;
        m_there([&] { listener = std::make_unique<ListenerC>(m_address); });
        return listener;
    }
    ListenerPtrT ListenAt(DeadPortC& dead)
    {
        ListenerPtrT listener;
        m_there([&] { listener = std::make_unique<ListenerC>(dead.listen()); });
        return listener;
    }

    void IsAbsentThenThere()
    {
        config.m_eAutoConnect = BSS::NET::AutoConnect::WITH_TIMER;
        std::optional<DeadPortC> dead;
        m_there([&] { dead.emplace(m_address); });
        Start(dead->port());
        ASSERT_TRUE(Logs("5 NetTcpIpClientC::"));
        EXPECT_EQ(watcher.nOnline, 0U);
        const ListenerPtrT listener = ListenAt(*dead);
        const HeldSocketC peer = listener->accept();
        EXPECT_TRUE(Reaches(BSS::NET::ONLINE));
    }

    void ResetsRightAfterAccept()
    {
        config.m_eAutoConnect = BSS::NET::AutoConnect::IMMEDIATELY;
        const ListenerPtrT listener = Listen();
        Start(listener->port());
        for (int n = 0; n < 20; ++n)
            listener->accept().reset();
        const HeldSocketC peer = listener->accept();
        EXPECT_TRUE(Reaches(BSS::NET::ONLINE));
    }

    void ClosesHalf()
    {
        const ListenerPtrT listener = Listen();
        Start(listener->port());
        const HeldSocketC peer = listener->accept();
        ASSERT_TRUE(Reaches(BSS::NET::ONLINE));
        BSS::HAL::ShutdownSocket(peer, BSS::HAL::ShutdownKind::Sending);
        EXPECT_TRUE(Support::Eventually(
            [this] { return watcher.Told(BSS::BIO::OFFLINE, BSS::BIO::PortReason::CLOSED_BY_PEER); }));
    }

    void ReadsNothing()
    {
        const ListenerPtrT listener = Listen();
        Start(listener->port());
        const HeldSocketC peer = listener->accept();
        ASSERT_TRUE(Reaches(BSS::NET::ONLINE));
        const std::vector<char> much(std::size_t{64} << 20);
        std::size_t nWritten = 0;
        EXPECT_EQ(Client().write(much.data(), much.size(), nWritten), BSS::RC_TIMED_OUT);
        EXPECT_LT(nWritten, much.size());
        EXPECT_TRUE(log->Has("5 NetTcpIpClientC::writeData timeout(500ms) exceeded\r\n"));
        EXPECT_EQ(Client().getState(), BSS::NET::ONLINE);
    }

    void RestartsAHundredTimes()
    {
        config.m_eAutoConnect = BSS::NET::AutoConnect::WITH_TIMER;
        std::optional<DeadPortC> dead;
        m_there([&] { dead.emplace(m_address); });
        Start(dead->port());
        for (std::size_t n = 1; n <= 100; ++n) {
            const ListenerPtrT listener = ListenAt(*dead);
            const HeldSocketC peer = listener->accept();
            BSS::HAL::SendBytes(peer, "x", 1);
            ASSERT_TRUE(Support::Eventually([&] { return watcher.Data().size() == n; })) << n;
        }
        EXPECT_GE(watcher.Count(BSS::BIO::ONLINE), 100U);
    }

    void IsLeftDuringReceive()
    {
        config.m_eAutoConnect = BSS::NET::AutoConnect::IMMEDIATELY;
        const ListenerPtrT listener = Listen();
        Start(listener->port());
        const HeldSocketC peer = listener->accept();
        ASSERT_TRUE(Reaches(BSS::NET::ONLINE));
        Client().close();
        EXPECT_TRUE(Reaches(BSS::NET::IDLE));
        EXPECT_EQ(Client().getLastResult(), 0x02000008U);
        std::array<char, 1> byte = {};
        ASSERT_TRUE(CanRead(peer));
        EXPECT_EQ(BSS::HAL::ReceiveBytes(peer, byte.data(), 1).count, 0U);
    }

    void IsLeftFromACallback()
    {
        config.m_eAutoConnect = BSS::NET::AutoConnect::IMMEDIATELY;
        watcher.onBytes = [this] { Client().close(); };
        const ListenerPtrT listener = Listen();
        Start(listener->port());
        const HeldSocketC peer = listener->accept();
        BSS::HAL::SendBytes(peer, "x", 1);
        EXPECT_TRUE(Support::Eventually(
            [this] { return watcher.Told(BSS::BIO::OFFLINE, BSS::BIO::PortReason::CLOSED_HERE); }));
        EXPECT_TRUE(Reaches(BSS::NET::IDLE));
        End();
    }

private:
    std::string m_address = "127.0.0.1";
    WhereT m_there = [](const std::function<void()>& action) { action(); };
};

} // namespace NetTests
