// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client and the server of many leave behind, as the system counts it.
#include "Bss/Bss_Net/BSS_NET_TcpIpServer.h"

#include "AlteredSockets.h"
#include "LosingClient.h"
#include "Support/LogCapture.h"

#include <filesystem>
#include <iterator>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

std::ptrdiff_t Entries(const char* directory)
{
    return std::distance(std::filesystem::directory_iterator(directory),
                         std::filesystem::directory_iterator());
}

TEST(TcpIpClientPosixTest, ThousandLossesLeaveNoDescriptorAndNoThread)
{
    const Support::LogCapture systemLog;
    ListenerC listener;
    const std::ptrdiff_t nDescriptors = Entries("/proc/self/fd");
    const std::ptrdiff_t nThreads = Entries("/proc/self/task");
    {
        LosingClientC client(listener, 1);
        client.Lose(1000);
    }
    EXPECT_TRUE(Support::Eventually([&] { return Entries("/proc/self/task") == nThreads; }));
    listener.close();
    EXPECT_EQ(Entries("/proc/self/fd"), nDescriptors - 1);
}

template<typename OwnerT, typename SettingsT>
void ExpectAllClosedBeforeTheSocketsAreStopped()
{
    const Support::LogCapture systemLog;
    const std::ptrdiff_t before = Entries("/proc/self/fd");
    std::ptrdiff_t left = -1;
    AlteredSocketsC sockets;
    sockets.onCleanUp = [&] { left = Entries("/proc/self/fd"); };
    SettingsT settings;
    settings.pSockets = &sockets;
    {
        const OwnerT owner(settings);
        EXPECT_GT(Entries("/proc/self/fd"), before);
    }
    EXPECT_EQ(left, before);
}

TEST(TcpIpClientPosixTest, ClientAndServerHaveClosedEverythingWhenTheyStopTheSockets)
{
    ExpectAllClosedBeforeTheSocketsAreStopped<NetTcpIpClientC, NetTcpIpClientSettingsT>();
    ExpectAllClosedBeforeTheSocketsAreStopped<NetTcpIpServerC, NetTcpIpServerSettingsT>();
}

} // namespace
