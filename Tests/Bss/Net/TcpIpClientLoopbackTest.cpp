// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The TCP/IP client with its thread, against servers on the loopback address that behave as servers do.
#include "AlteredSockets.h"
#include "TcpIpClientScenarios.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"

#include <array>
#include <atomic>
#include <boost/thread/exceptions.hpp>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

class TcpIpClientLoopbackTest : public TcpIpClientScenariosC
{};

TEST_F(TcpIpClientLoopbackTest, BytesGoBothWays)
{
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    std::size_t nWritten = 0;
    ASSERT_EQ(Client().write("ping", 4, nWritten), RC_OK);
    std::array<char, 4> bytes = {};
    ASSERT_TRUE(CanRead(peer));
    EXPECT_EQ(HAL::ReceiveBytes(peer, bytes.data(), 4).count, 4U);
    HAL::SendBytes(peer, "pong", 4);
    EXPECT_TRUE(Eventually([this] { return watcher.Data() == "pong"; }));
}

class TcpIpClientFamilyTest : public TcpIpClientLoopbackTest, public testing::WithParamInterface<const char*>
{};

TEST_P(TcpIpClientFamilyTest, ConnectsToAnAddressOfThatKind)
{
    config.m_wszIpDnsName = HAL::WideFromUtf8(GetParam());
    ListenerC listener(GetParam());
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

INSTANTIATE_TEST_SUITE_P(Both, TcpIpClientFamilyTest, testing::ValuesIn(LoopbackAddresses()));

TEST_F(TcpIpClientLoopbackTest, ConnectsByName)
{
    config.m_wszIpDnsName = L"localhost";
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

TEST_F(TcpIpClientLoopbackTest, AbsentServerIsTriedAgainUntilItIsThere)
{
    IsAbsentThenThere();
}

TEST_F(TcpIpClientLoopbackTest, AbsentServerWithoutAutoConnectIsTriedOnce)
{
    const DeadPortC dead;
    Start(dead.port());
    ASSERT_TRUE(Logs("5 NetTcpIpClientC::"));
    EXPECT_TRUE(Reaches(SETTING_UP));
    Client().stop();
    EXPECT_TRUE(Client().waitForStop(LONG_MS));
    EXPECT_EQ(Client().getState(), IDLE);
}

TEST_F(TcpIpClientLoopbackTest, ResetRightAfterAcceptIsALossAndIsMended)
{
    ResetsRightAfterAccept();
}

TEST_F(TcpIpClientLoopbackTest, HalfClosedConnectionIsALoss)
{
    ClosesHalf();
}

TEST_F(TcpIpClientLoopbackTest, SilentServerEndsWithTheReceiveLimit)
{
    config.m_ulMaxReceiveTimeoutMs = 1;
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Eventually([this] { return watcher.Told(BIO::OFFLINE, BIO::PortReason::RECEIVE_TIMEOUT); }));
}

TEST_F(TcpIpClientLoopbackTest, SilenceWithoutALimitEndsNothing)
{
    settings.receiveWaitMs = 1;
    config.m_ulMaxReceiveTimeoutMs = 0;
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Eventually([this] {
        std::size_t nWaits = 0;
        for (const std::string& message : log->Messages())
            nWaits += message.ends_with(", no max timeout set.\n") ? 1 : 0;
        return nWaits >= 2;
    }));
    HAL::SendBytes(peer, "x", 1);
    EXPECT_TRUE(Eventually([this] { return watcher.Data() == "x"; }));
    EXPECT_EQ(watcher.Count(BIO::OFFLINE), 0U);
}

TEST_F(TcpIpClientLoopbackTest, ServerThatReadsNothingEndsAWriteWithTheTimeout)
{
    ReadsNothing();
}

TEST_F(TcpIpClientLoopbackTest, CloseEndsAWriteThatWaits)
{
    AlteredSocketsC sockets;
    std::atomic<bool> bFull{false};
    std::atomic<bool> bWaits{false};
    sockets.onPoll = [&](int timeoutMs) {
        if (bFull && timeoutMs == NetTcpIpClientC::WRITE_TIMEOUT_MS) bWaits = true;
    };
    settings.pSockets = &sockets;
    settings.receiveWaitMs = 1000; // another time than a write's
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    const std::vector<char> much(std::size_t{64} << 20);
    std::size_t nWritten = 0;
    ASSERT_EQ(Client().write(much.data(), much.size(), nWritten), RC_TIMED_OUT);
    log->Clear();
    bFull = true;
    std::thread writing([&] { EXPECT_EQ(Client().write("x", 1, nWritten), RC_CLOSED); });
    EXPECT_TRUE(Eventually([&] { return bWaits.load(); }));
    Client().close();
    writing.join();
    EXPECT_TRUE(log->Beginning("5 NetTcpIpClientC::writeData timeout").empty());
    EXPECT_TRUE(Reaches(IDLE));
    End();
}

TEST_F(TcpIpClientLoopbackTest, ServerThatRestartsAHundredTimesIsFoundAgain)
{
    RestartsAHundredTimes();
}

TEST_F(TcpIpClientLoopbackTest, CloseDuringReceiveGoesIdle)
{
    IsLeftDuringReceive();
}

TEST_F(TcpIpClientLoopbackTest, CloseFromACallbackGoesIdle)
{
    IsLeftFromACallback();
}

TEST_F(TcpIpClientLoopbackTest, ReaderMayAnswerFromItsCallback)
{
    watcher.onBytes = [this] {
        std::size_t nWritten = 0;
        EXPECT_EQ(Client().write("y", 1, nWritten), RC_OK);
    };
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    HAL::SendBytes(peer, "x", 1);
    EXPECT_TRUE(CanRead(peer));
}

TEST_F(TcpIpClientLoopbackTest, ClosedClientConnectsAgainWhenItIsAsked)
{
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC first = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    Client().close();
    Client().connectTcpIp();
    const HeldSocketC second = listener.accept();
    EXPECT_TRUE(Eventually([this] { return watcher.Count(BIO::ONLINE) == 2; }));
}

TEST_F(TcpIpClientLoopbackTest, StopDoesNotWaitForANameServer)
{
    struct SystemT
    {
        std::mutex lock;
        std::condition_variable let;
        bool bLet = false;
        std::atomic<bool> bAsked{false};
    };
    const auto system = std::make_shared<SystemT>();
    settings.resolver = std::make_shared<NameResolverC>([system](const std::string&, std::uint16_t, auto&) {
        std::unique_lock<std::mutex> guard(system->lock);
        system->bAsked = true;
        system->let.wait(guard, [&] { return system->bLet; });
        return 1;
    });
    config.m_wszIpDnsName = L"sensor.example";
    Start(1);
    ASSERT_TRUE(Eventually([&] { return system->bAsked.load(); }));
    Client().stop();
    EXPECT_TRUE(Client().waitForStop(LONG_MS));
    const std::lock_guard<std::mutex> guard(system->lock);
    EXPECT_FALSE(system->bLet);
    system->bLet = true;
    system->let.notify_all();
}

TEST_F(TcpIpClientLoopbackTest, ClientStartsAgainAfterAStop)
{
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC first = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    Client().stop();
    ASSERT_TRUE(Client().waitForStop(LONG_MS));
    Client().start();
    const HeldSocketC second = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

TEST_F(TcpIpClientLoopbackTest, CloseBeforeTheStartDoesNotEndALaterConnection)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    ListenerC listener;
    Client().close();
    Start(listener.port());
    listener.accept();
    const HeldSocketC second = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

TEST_F(TcpIpClientLoopbackTest, CloseBehindAStopDoesNotEndALaterConnection)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC first = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    Client().stop();
    Client().close(); // no request is taken behind the stop
    ASSERT_TRUE(Client().waitForStop(LONG_MS));
    Client().close();
    Client().start();
    listener.accept();
    const HeldSocketC third = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

TEST_F(TcpIpClientLoopbackTest, StartOfAClientThatHasGoneIdleConnectsItAgain)
{
    ListenerC listener;
    Start(listener.port());
    listener.accept();
    ASSERT_TRUE(Reaches(IDLE));
    EXPECT_NO_THROW(Client().start());
    const HeldSocketC second = listener.accept();
    EXPECT_TRUE(Reaches(ONLINE));
}

TEST_F(TcpIpClientLoopbackTest, ReaderThatEndsTheThreadLeavesNoConnectionBehind)
{
    watcher.onBytes = [] { throw boost::thread_interrupted(); };
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    HAL::SendBytes(peer, "x", 1);
    EXPECT_TRUE(Client().waitForStop(LONG_MS));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_FALSE(Client().isSocketValid());
    EXPECT_EQ(watcher.Count(BIO::OFFLINE), 2U);
}

TEST_F(TcpIpClientLoopbackTest, ObserverOfALossThatEndsTheThreadLeavesNoConnectionBehind)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    watcher.onEvent = [](BIO::PortEvent event) {
        if (event == BIO::OFFLINE) throw boost::thread_interrupted();
    };
    ListenerC listener;
    Start(listener.port());
    listener.accept();
    EXPECT_TRUE(Client().waitForStop(LONG_MS));
    EXPECT_EQ(Client().getState(), IDLE);
    EXPECT_FALSE(Client().isSocketValid());
}

TEST_F(TcpIpClientLoopbackTest, LossThatAWriteNoticesFirstIsToldByTheClientsThread)
{
    std::mutex reading; // holds the client's thread in its reader
    std::unique_lock<std::mutex> hold(reading);
    std::atomic<bool> bHeld{false};
    watcher.onBytes = [&] {
        bHeld = true;
        const std::lock_guard<std::mutex> guard(reading);
    };
    ListenerC listener;
    Start(listener.port());
    HeldSocketC peer = listener.accept();
    HAL::SendBytes(peer, "x", 1);
    ASSERT_TRUE(Eventually([&] { return bHeld.load(); }));
    peer.reset();
    std::size_t nWritten = 0;
    EXPECT_TRUE(Eventually([&] { return Client().write("y", 1, nWritten) == RC_CLOSED; }));
    EXPECT_EQ(watcher.Count(BIO::OFFLINE), 0U);
    hold.unlock();
    EXPECT_TRUE(Eventually([this] { return watcher.Told(BIO::OFFLINE, BIO::PortReason::CLOSED_BY_PEER); }));
    End();
}

TEST_F(TcpIpClientLoopbackTest, RandomBytesOfTheServerArriveAndDoNoHarm)
{
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    std::mt19937 random(20);
    std::string bytes(std::size_t{1} << 20, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    std::size_t nSent = 0;
    while (nSent < bytes.size())
        nSent += HAL::SendBytes(peer, bytes.data() + nSent, bytes.size() - nSent).count;
    EXPECT_TRUE(Eventually([&] { return watcher.Data().size() == bytes.size(); }));
    EXPECT_TRUE(watcher.Data() == bytes);
}

TEST_F(TcpIpClientLoopbackTest, WritesOfSeveralThreadsAreNotMixed)
{
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    ASSERT_TRUE(Reaches(ONLINE));
    constexpr std::size_t PIECE = 10000;
    constexpr int PIECES = 20;
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c'}) {
        writers.emplace_back([this, letter] {
            const std::string piece(PIECE, letter);
            std::size_t nWritten = 0;
            for (int n = 0; n < PIECES; ++n)
                EXPECT_EQ(Client().write(piece.data(), piece.size(), nWritten), RC_OK);
        });
    }
    std::string all;
    std::array<char, 65536> bytes;
    while (all.size() < PIECE * PIECES * 3 && CanRead(peer))
        all.append(bytes.data(), HAL::ReceiveBytes(peer, bytes.data(), bytes.size()).count);
    for (std::thread& writer : writers)
        writer.join();
    ASSERT_EQ(all.size(), PIECE * PIECES * 3);
    for (std::size_t n = 0; n < all.size(); n += PIECE)
        ASSERT_EQ(all.substr(n, PIECE), std::string(PIECE, all[n]));
}

/// Keeps what the state subject tells; on the client's thread.
class SubjectWatcherC final : public UTI::ObserverC
{
public:
    ~SubjectWatcherC() override { detachAll(); }
    void update(UTI::SubjectC&, std::uint32_t code, const UTI::RefPtrT<UTI::SharedObjectC>& payload) override
    {
        const auto& event = dynamic_cast<const BIO::PortEventC&>(*payload);
        events.emplace_back(static_cast<BIO::PortEvent>(code), event.getReason());
        if (onEvent) onEvent(events.back().first);
    }
    std::vector<std::pair<BIO::PortEvent, BIO::PortReason>> events;
    std::function<void(BIO::PortEvent)> onEvent;
};

TEST_F(TcpIpClientLoopbackTest, CloseFromAnObserverOfTheStateGoesIdle)
{
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    SubjectWatcherC observer;
    observer.onEvent = [this](BIO::PortEvent event) {
        if (event == BIO::ONLINE) Client().close();
    };
    Client().getStateSubject().attach(observer);
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    EXPECT_TRUE(Eventually([this] { return watcher.Told(BIO::OFFLINE, BIO::PortReason::CLOSED_HERE); }));
    EXPECT_TRUE(Reaches(IDLE));
    EXPECT_EQ(Client().getLastResult(), 0x02000008U);
    End();
}

using ToldT = std::pair<BIO::PortEvent, BIO::PortReason>;

constexpr ToldT TRIES{BIO::GOING_ONLINE, BIO::PortReason::NONE};
constexpr ToldT TRIED_IN_VAIN{BIO::GOING_ONLINE, BIO::PortReason::CONNECT_FAILED};

// What observers may be told after what. Failed attempts in between are not told; the end of them all is.
bool MayFollow(const ToldT& before, const ToldT& after)
{
    switch (before.first) {
    case BIO::OFFLINE: // once for the connection, once for the client that stays without one
        return after.first == BIO::OFFLINE || after == TRIES;
    case BIO::GOING_ONLINE:
        return before == TRIES ? after.first == BIO::ONLINE || after == TRIED_IN_VAIN
                               : after.first == BIO::OFFLINE;
    case BIO::ONLINE:
        return after.first == BIO::OFFLINE;
    }
    return false;
}

// Whether the connections are cut, or come to a proper end.
class TcpIpClientLossTest : public TcpIpClientLoopbackTest, public testing::WithParamInterface<bool>
{};

TEST_P(TcpIpClientLossTest, ThousandLossesLeaveNoSocketAndAConsistentStory)
{
    constexpr std::size_t CYCLES = 1000;
    const std::int64_t before = HAL::OpenSocketCount();
    SubjectWatcherC observer;
    {
        config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
        Client().getStateSubject().attach(observer);
        ListenerC listener;
        Start(listener.port());
        for (std::size_t n = 0; n < CYCLES; ++n) {
            HeldSocketC peer = listener.accept();
            ASSERT_TRUE(Eventually([&] { return watcher.nOnline > n; })) << n;
            if (GetParam()) peer.reset();
        }
        End();
    }
    EXPECT_EQ(HAL::OpenSocketCount(), before);
    EXPECT_GE(watcher.nOnline, CYCLES);
    const auto events = watcher.Events();
    for (std::size_t n = 1; n < events.size(); ++n)
        ASSERT_TRUE(MayFollow(events[n - 1], events[n])) << n;
    EXPECT_EQ(observer.events, events);
    int state = 0;
    for (const std::string& message : log->Messages()) {
        const std::string begin = "4 TcpIpClientStateMachineC::goToState - state-change: ";
        if (!message.starts_with(begin)) continue;
        ASSERT_EQ(message[begin.size()] - '0', state);
        state = message[begin.size() + 5] - '0';
    }
    EXPECT_EQ(state, 0);
}

INSTANTIATE_TEST_SUITE_P(Both, TcpIpClientLossTest, testing::Bool(),
                         [](const auto& which) { return which.param ? "Cut" : "Ended"; });

} // namespace
