// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Starting a TCP/IP client whose thread is just ending: a start is refused or it connects.
#include "TcpIpClientFixture.h"

#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"

#include <atomic>
#include <boost/thread/exceptions.hpp>
#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;
using Support::Eventually;

namespace {

class TcpIpClientStartTest : public TcpIpClientFixtureC
{
protected:
    bool Starts()
    {
        try {
            Client().start();
            return true;
        } catch (const SysServiceErrorC&) {
            return false;
        }
    }
};

// The end of the thread falls anywhere between the looks that a start takes at it. As often as there is time
// for.
TEST_F(TcpIpClientStartTest, StartThatIsTakenRightAfterAStopConnects)
{
    ListenerC listener;
    Start(listener.port());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (int n = 0; n < 2000 && std::chrono::steady_clock::now() < end; ++n) {
        const HeldSocketC peer = listener.accept();
        ASSERT_TRUE(Reaches(ONLINE)) << n;
        Client().stop();
        ASSERT_TRUE(Eventually([this] { return Starts(); })) << n;
        ASSERT_TRUE(CanRead(listener.socket())) << n;
    }
}

TEST_F(TcpIpClientStartTest, StartWhileAThreadThatHasFailedTellsItsEndIsRefusedAndALaterOneConnects)
{
    std::mutex lock;
    std::condition_variable let;
    bool bLet = false;
    std::atomic<bool> bHeld{false};
    watcher.onBytes = [] { throw boost::thread_interrupted(); };
    watcher.onEvent = [&](BIO::PortEvent event) {
        if (event != BIO::OFFLINE) return;
        std::unique_lock<std::mutex> guard(lock);
        bHeld = true;
        let.wait(guard, [&] { return bLet; });
    };
    ListenerC listener;
    Start(listener.port());
    const HeldSocketC peer = listener.accept();
    ASSERT_EQ(HAL::SendBytes(peer, "x", 1).count, 1U);
    ASSERT_TRUE(Eventually([&] { return bHeld.load(); }));
    EXPECT_FALSE(Starts());
    {
        const std::lock_guard<std::mutex> guard(lock);
        bLet = true;
    }
    let.notify_all();
    ASSERT_TRUE(Client().waitForStop(LONG_MS));
    ASSERT_TRUE(Starts());
    const HeldSocketC again = listener.accept();
    EXPECT_TRUE(Eventually([this] { return watcher.nOnline == 2; }));
    End();
}

} // namespace
