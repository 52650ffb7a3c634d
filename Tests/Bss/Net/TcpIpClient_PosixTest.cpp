// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client leaves behind, as the system counts it.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <net/if.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <thread>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

std::ptrdiff_t Entries(const char* directory)
{
    return std::distance(std::filesystem::directory_iterator(directory),
                         std::filesystem::directory_iterator());
}

class CounterC final : public BIO::PortWriterI
{
public:
    void onPortEvent(BIO::PortEvent event, BIO::PortReason) override
    {
        if (event == BIO::ONLINE) ++nOnline;
    }
    std::atomic<int> nOnline{0};
};

TEST(TcpIpClientPosixTest, ThousandLossesLeaveNoDescriptorAndNoThread)
{
    const Support::LogCapture systemLog;
    ListenerC listener;
    NetTcpIpClientCfgT config;
    config.m_wszIpDnsName = L"localhost"; // asked for on a thread each time
    config.m_unServerPort = listener.port();
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    const std::ptrdiff_t nDescriptors = Entries("/proc/self/fd");
    const std::ptrdiff_t nThreads = Entries("/proc/self/task");
    {
        CounterC counter;
        NetTcpIpClientSettingsT settings;
        settings.reconnect.minSpacingMs = 1;
        NetTcpIpClientC client(settings);
        ASSERT_EQ(client.setPortConfig(config), RC_OK);
        ASSERT_EQ(client.attachWriter(counter), RC_OK);
        client.start();
        for (int n = 0; n < 1000; ++n) {
            const HeldSocketC peer = listener.accept();
            ASSERT_TRUE(Support::Eventually([&] { return counter.nOnline > n; })) << n;
        }
    }
    EXPECT_TRUE(Support::Eventually([&] { return Entries("/proc/self/task") == nThreads; }));
    listener.close();
    EXPECT_EQ(Entries("/proc/self/fd"), nDescriptors - 1);
}

// A network of the process's own, whose only interface can be switched.

constexpr int NOT_PERMITTED = 77;

bool HaveOwnNetwork()
{
    return ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
}

bool SwitchInterface(bool bUp)
{
    int error = 0;
    const HeldSocketC socket(HAL::OpenSocket(HAL::AddressKind::IPv4, error));
    ifreq request = {};
    std::strcpy(request.ifr_name, "lo");
    const int descriptor = static_cast<int>(static_cast<HAL::SocketT>(socket));
    if (::ioctl(descriptor, SIOCGIFFLAGS, &request) != 0) return false;
    const int flags = bUp ? request.ifr_flags | IFF_UP : request.ifr_flags & ~IFF_UP;
    request.ifr_flags = static_cast<short>(flags);
    return ::ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
}

class LastEventC final : public BIO::PortReaderI
{
public:
    void onData(const std::uint8_t*, std::size_t count) override { nBytes += count; }
    void onPortEvent(BIO::PortEvent event, BIO::PortReason reason) override
    {
        if (event == BIO::ONLINE) ++nOnline;
        if (event == BIO::OFFLINE && reason == BIO::PortReason::RECEIVE_TIMEOUT) ++nTimedOut;
    }
    std::atomic<int> nOnline{0};
    std::atomic<int> nTimedOut{0};
    std::atomic<std::size_t> nBytes{0};
};

int LoseTheInterfaceAndGetItBack()
{
    if (!HaveOwnNetwork() || !SwitchInterface(true)) return NOT_PERMITTED;
    ListenerC listener;
    NetTcpIpClientCfgT config;
    config.m_wszIpDnsName = L"127.0.0.1";
    config.m_unServerPort = listener.port();
    config.m_eAutoConnect = AutoConnect::WITH_TIMER;
    config.m_ulMaxReceiveTimeoutMs = 500;
    NetTcpIpClientSettingsT settings;
    settings.reconnect.intervalMs = 1;
    LastEventC events;
    NetTcpIpClientC client(settings);
    if (client.setPortConfig(config) != RC_OK || client.attachReader(events) != RC_OK) return 2;
    client.start();
    const HeldSocketC first = listener.accept();
    if (!Support::Eventually([&] { return events.nOnline == 1; })) return 3;
    // The server keeps talking, so that the silence is the interface's.
    HAL::SetNonBlocking(first, true);
    std::atomic<bool> bTalk{true};
    std::thread talking([&] {
        while (bTalk) {
            HAL::SendBytes(first, "x", 1);
            std::this_thread::yield();
        }
    });
    const bool bSilentBefore =
        Support::Eventually([&] { return events.nBytes > 1000; }) && events.nTimedOut > 0;
    const bool bDown = SwitchInterface(false);
    const bool bNoticed = Support::Eventually([&] { return events.nTimedOut >= 1; });
    bTalk = false;
    talking.join();
    if (bSilentBefore || !bDown) return 4;
    if (!bNoticed) return 5;
    if (!SwitchInterface(true)) return 6;
    return Support::Eventually([&] { return events.nOnline >= 2; }) ? 0 : 7;
}

TEST(TcpIpClientPosixDeathTest, InterfaceThatGoesDownWithoutAWordIsNoticedAndItsReturnToo)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    static int s_status = -1;
    const auto look = [](int status) {
        s_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return s_status == 0 || s_status == NOT_PERMITTED;
    };
    EXPECT_EXIT(std::_Exit(LoseTheInterfaceAndGetItBack()), look, "");
    if (s_status != NOT_PERMITTED) return;
    const char* const ci = std::getenv("CI");
    ASSERT_FALSE(ci != nullptr && std::string(ci) == "true") << "no network of its own here";
    GTEST_SKIP() << "this process may not have a network of its own";
}

} // namespace
