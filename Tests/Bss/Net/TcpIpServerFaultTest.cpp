// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The server of many clients where the system refuses it something, and where its thread ends by itself.
#include "AlteredSockets.h"
#include "FakeSockets.h"
#include "TcpIpServerFixture.h"

#include <atomic>
#include <chrono>
#include <functional>
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

/// Calls a function on a thread whose task has ended by an exception: it is about to go, but has not gone.
class EndRecorderC final : public Support::LogRecorder
{
public:
    void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments) override
    {
        LogRecorder::logFormatted(level, format, arguments);
        if (std::string(format).starts_with("TaskC::c_main() exception")) onEnd();
    }
    std::function<void()> onEnd;
};

/// A server whose thread ends for want of memory.
class TcpIpServerEndTest : public TcpIpServerFaultTest
{
protected:
    TcpIpServerEndTest()
    {
        sockets.onPoll = [this](int timeoutMs) { // of the thread's own wait, not of a socket's
            if (timeoutMs < 0 && bNoMemory.exchange(false)) throw std::bad_alloc();
        };
        sockets.onClose = [this] {
            if (bHoldAtClose.exchange(false)) atClose.Hold();
        };
    }
    ~TcpIpServerEndTest() override { End(); }

    /// Somebody has to come for the thread to look; whether the server lasts until then is of no interest.
    void EndTheThread()
    {
        const std::uint16_t port = Server().getPort();
        bNoMemory = true;
        HAL::ConnectSocket(m_waker, Address("127.0.0.1", port));
    }

    bool WaitsForTheThread() const { return !log->Beginning("4  371 TaskC::waitForStop() join").empty(); }

    const std::shared_ptr<EndRecorderC> recorder = std::make_shared<EndRecorderC>();
    std::atomic<bool> bNoMemory{false};
    std::atomic<bool> bHoldAtClose{false};
    HoldT atClose;

private:
    const HeldSocketC m_waker = Open();
};

TEST_F(TcpIpServerEndTest, StartThatMeetsAThreadThatIsAboutToGoBringsTheServerBack)
{
    HoldT hold;
    recorder->onEnd = [&] { hold.Hold(); };
    log = recorder;
    EndTheThread();
    ASSERT_TRUE(Eventually([&] { return hold.bHeld.load(); }));
    ASSERT_EQ(Server().getPort(), 0);
    std::future<ResultCodeT> answer = std::async(std::launch::async, [&] { return Server().start(); });
    // It waits for the thread, or has not seen that there is none to count on.
    ASSERT_TRUE(Eventually([&] {
        return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready || WaitsForTheThread();
    }));
    hold.Let();
    EXPECT_EQ(answer.get(), RC_OK);
    EXPECT_NE(Server().getPort(), 0);
    const HeldSocketC client = Join();
    Server().send("back", 4);
    EXPECT_EQ(Receive(client, 4), "back");
}

// The thread is held as it ends its clients' connections, before the port is given back.
TEST_F(TcpIpServerEndTest, StartThatMeetsAThreadThatEndsItsConnectionsBringsTheServerBack)
{
    const HeldSocketC first = Join();
    bHoldAtClose = true;
    EndTheThread();
    ASSERT_TRUE(Eventually([&] { return atClose.bHeld.load(); }));
    std::future<ResultCodeT> answer = std::async(std::launch::async, [&] { return Server().start(); });
    // It waits for the thread, or believes in it.
    ASSERT_TRUE(Eventually([&] {
        return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready || WaitsForTheThread();
    }));
    EXPECT_TRUE(WaitsForTheThread());
    atClose.Let();
    EXPECT_EQ(answer.get(), RC_OK);
    const HeldSocketC client = Join();
    Server().send("back", 4);
    EXPECT_EQ(Receive(client, 4), "back");
}

TEST_F(TcpIpServerEndTest, StartOnTheThreadThatIsAboutToGoIsRefused)
{
    std::atomic<ResultCodeT> answer{RC_OK};
    std::atomic<bool> bAsked{false};
    recorder->onEnd = [&] {
        answer = Server().start();
        bAsked = true;
    };
    log = recorder;
    EndTheThread();
    ASSERT_TRUE(Eventually([&] { return bAsked.load(); }));
    EXPECT_EQ(answer, RC_FAILED);
    EXPECT_EQ(Server().start(), RC_OK);
    EXPECT_NE(Server().getPort(), 0);
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
