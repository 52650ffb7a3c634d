// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server of many clients where the system refuses it something, and where its thread ends by itself.
#include "AlteredSockets.h"
#include "FakeSockets.h"
#include "TcpIpServerFixture.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <new>
#include <string>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

class TcpIpServerFaultTest : public TcpIpServerFixtureC
{
protected:
    TcpIpServerFaultTest() { settings.pSockets = &sockets; }
    ~TcpIpServerFaultTest() override { End(); }

    std::size_t CountOf(const std::string& begin) const
    {
        std::size_t count = 0;
        for (const std::string& message : log->Messages())
            count += message.starts_with(begin) ? 1 : 0;
        return count;
    }

    AlteredSocketsC sockets;
};

TEST_F(TcpIpServerFaultTest, OptionsThatAreNotToBeHadAreLoggedAndTheClientIsServedAllTheSame)
{
    sockets.optionError = SOME_ERROR;
    const HeldSocketC client = Join();
    for (const char* const option : {"TCP_NODELAY", "SO_KEEPALIVE", "TCP_USER_TIMEOUT"}) {
        EXPECT_TRUE(log->Has("5 NetTcpIpServerC - setsockopt " + std::string(option) +
                             " failed on client 1 (err " + HAL::SocketErrorText(SOME_ERROR) + ")\n"))
            << option;
    }
    Server().send("on", 2);
    EXPECT_EQ(Receive(client, 2), "on");
}

TEST_F(TcpIpServerFaultTest, ClientThatHasGoneBeforeItIsTakenIsLoggedAndTheNextOneIsTakenAtOnce)
{
    HoldT hold;
    settings.onData = [&](std::uint32_t, const std::uint8_t*, std::size_t) { hold.Hold(); };
    const HeldSocketC first = Join();
    HAL::SendBytes(first, "x", 1);
    ASSERT_TRUE(Eventually([&] { return hold.bHeld.load(); }));
    sockets.nextAcceptError = Lost();
    const HeldSocketC gone = Open();
    const HeldSocketC next = Open();
    for (const HeldSocketC* const client : {&gone, &next})
        ASSERT_EQ(HAL::ConnectSocket(*client, Address("127.0.0.1", Server().getPort())), 0);
    hold.Let();
    EXPECT_TRUE(Eventually([this] { return Server().getClientCount() == 2; }));
    EXPECT_TRUE(log->Has("5 NetTcpIpServerC - accept failed (err " + HAL::SocketErrorText(Lost()) + ")\n"));
    EXPECT_EQ(sockets.nLimitedPolls, 0); // nothing was put off
    Server().send("on", 2);
    EXPECT_EQ(Receive(next, 2), "on");
    Server().stop();
}

/// Stops a thread where it logs that its task is ended by an exception: it is about to go, but has not gone.
class HoldingRecorderC final : public Support::LogRecorder
{
public:
    void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments) override
    {
        LogRecorder::logFormatted(level, format, arguments);
        if (std::string(format).starts_with("TaskC::c_main() exception")) hold.Hold();
    }
    HoldT hold;
};

TEST_F(TcpIpServerFaultTest, StartWhileAThreadThatHasEndedByItselfIsAboutToGoBringsTheServerBack)
{
    const auto holding = std::make_shared<HoldingRecorderC>();
    std::atomic<bool> bNoMemory{false};
    sockets.onPoll = [&] {
        if (bNoMemory.exchange(false)) throw std::bad_alloc();
    };
    settings.logger = holding;
    NetTcpIpServerC server(settings);
    ASSERT_EQ(server.configure("127.0.0.1", 0), RC_OK);
    ASSERT_EQ(server.start(), RC_OK);
    bNoMemory = true;
    const HeldSocketC waker = Open(); // somebody has to come for the thread to look
    HAL::ConnectSocket(waker, Address("127.0.0.1", server.getPort()));
    ASSERT_TRUE(Eventually([&] { return holding->hold.bHeld.load(); }));
    ASSERT_EQ(server.getPort(), 0);
    std::future<ResultCodeT> answer = std::async(std::launch::async, [&] { return server.start(); });
    // It waits for the thread, or has not seen that there is none to count on.
    ASSERT_TRUE(Eventually([&] {
        return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready ||
               !holding->Beginning("4  371 TaskC::waitForStop() join").empty();
    }));
    holding->hold.Let();
    EXPECT_EQ(answer.get(), RC_OK);
    EXPECT_NE(server.getPort(), 0);
    const HeldSocketC client = Open();
    EXPECT_EQ(HAL::ConnectSocket(client, Address("127.0.0.1", server.getPort())), 0);
    EXPECT_TRUE(Eventually([&] { return server.getClientCount() == 1; }));
}

constexpr char WAIT_FAILED[] = "6 NetTcpIpServerC - waiting failed (err ";

TEST_F(TcpIpServerFaultTest, ServerWhoseWaitsFailSaysSoOnceAndTriesAgainTenTimesASecond)
{
    sockets.pollError = SOME_ERROR;
    const auto begin = std::chrono::steady_clock::now();
    Server();
    ASSERT_TRUE(Eventually([this] { return sockets.nPolls >= 5; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(400));
    EXPECT_EQ(CountOf(WAIT_FAILED), 1U);
    EXPECT_TRUE(log->Has(WAIT_FAILED + HAL::SocketErrorText(SOME_ERROR) + ")\n"));
}

TEST_F(TcpIpServerFaultTest, ServerWhoseWaitsSucceedAgainServesAndTellsTheNextFailureToo)
{
    sockets.pollError = SOME_ERROR;
    Server();
    ASSERT_TRUE(Eventually([this] { return CountOf(WAIT_FAILED) == 1; }));
    sockets.pollError = 0;
    const HeldSocketC client = Join();
    Server().send("on", 2);
    EXPECT_EQ(Receive(client, 2), "on");
    sockets.pollError = SOME_ERROR;
    Server().send("x", 1); // ends the wait
    EXPECT_TRUE(Eventually([this] { return CountOf(WAIT_FAILED) == 2; }));
}

TEST_F(TcpIpServerFaultTest, ServerWhoseWaitsFailCanBeStopped)
{
    sockets.pollError = SOME_ERROR;
    Server();
    ASSERT_TRUE(Eventually([this] { return CountOf(WAIT_FAILED) == 1; }));
    Server().stop();
    EXPECT_EQ(Server().getPort(), 0);
}

} // namespace
