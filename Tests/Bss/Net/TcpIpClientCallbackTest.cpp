// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What observers may ask of the TCP/IP client from their callbacks, and in which order that is done.
#include "TcpIpClientFixture.h"

#include <functional>
#include <memory>
#include <ostream>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

/// Calls a function from within a close(), when it has ended the connection.
class CloseRecorderC final : public Support::LogRecorder
{
public:
    void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments) override
    {
        LogRecorder::logFormatted(level, format, arguments);
        if (std::string(format).starts_with("%s - Closing on")) onClosing();
    }
    std::function<void()> onClosing;
};

class TcpIpClientCallbackTest : public TcpIpClientFixtureC
{
protected:
    bool Receives(const HeldSocketC& peer, std::size_t count)
    {
        HAL::SendBytes(peer, "x", 1);
        return Eventually([&] { return watcher.Data().size() == count; });
    }
};

// The client's thread is quicker than the one that closes.
TEST_F(TcpIpClientCallbackTest, ConnectThatAnswersTheOfflineOfACloseIsNotUndoneByIt)
{
    const auto recorder = std::make_shared<CloseRecorderC>();
    settings.logger = recorder;
    recorder->onClosing = [this] { EXPECT_TRUE(Eventually([this] { return watcher.nOnline == 2; })); };
    watcher.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::OFFLINE) Client().connectTcpIp();
    };
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC first = listener.accept();
    ASSERT_TRUE(Eventually([this] { return watcher.nOnline == 1; }));
    Client().close();
    const HeldSocketC second = listener.accept();
    EXPECT_TRUE(Receives(second, 1));
    EXPECT_TRUE(Receives(second, 2));
    EXPECT_EQ(Client().getState(), ONLINE);
    watcher.onEvent = nullptr;
    End();
}

/// What is asked for, at which event, and how the client ends.
struct AskedT
{
    const char* name;
    BIO::PortEvent event;
    void (NetTcpIpClientC::*ask)();
    bool bOnlineAgain;

    friend void PrintTo(const AskedT& asked, std::ostream* out) { *out << asked.name; }
};

class TcpIpClientAskedTest : public TcpIpClientCallbackTest, public testing::WithParamInterface<AskedT>
{};

TEST_P(TcpIpClientAskedTest, IsDone)
{
    const AskedT& asked = GetParam();
    std::atomic<bool> bAsk{true};
    watcher.onEvent = [&](BIO::PortEvent event) {
        if (event == asked.event && bAsk.exchange(false)) (Client().*asked.ask)();
    };
    ListenerC listener;
    Start(listener.port());
    if (asked.event == BIO::OFFLINE) listener.accept(); // and ends it
    if (!asked.bOnlineAgain) {
        EXPECT_TRUE(Eventually([&] { return !bAsk && watcher.Count(BIO::OFFLINE) > 0; }));
        EXPECT_TRUE(Reaches(IDLE));
    } else {
        const HeldSocketC peer = listener.accept();
        EXPECT_TRUE(Eventually([&] { return !bAsk && Client().getState() == ONLINE; }));
        EXPECT_TRUE(Receives(peer, 1));
    }
    End();
}

INSTANTIATE_TEST_SUITE_P(
    Requests, TcpIpClientAskedTest,
    testing::Values(AskedT{"CloseAtGoingOnline", BIO::GOING_ONLINE, &NetTcpIpClientC::close, false},
                    AskedT{"CloseAtOnline", BIO::ONLINE, &NetTcpIpClientC::close, false},
                    AskedT{"CloseAtOffline", BIO::OFFLINE, &NetTcpIpClientC::close, false},
                    AskedT{"ConnectAtGoingOnline", BIO::GOING_ONLINE, &NetTcpIpClientC::connectTcpIp, true},
                    AskedT{"ConnectAtOnline", BIO::ONLINE, &NetTcpIpClientC::connectTcpIp, true},
                    AskedT{"ConnectAtOffline", BIO::OFFLINE, &NetTcpIpClientC::connectTcpIp, true},
                    AskedT{"StopAtGoingOnline", BIO::GOING_ONLINE, &NetTcpIpClientC::stop, false},
                    AskedT{"StopAtOnline", BIO::ONLINE, &NetTcpIpClientC::stop, false},
                    AskedT{"StopAtOffline", BIO::OFFLINE, &NetTcpIpClientC::stop, false}),
    [](const auto& which) { return which.param.name; });

} // namespace
