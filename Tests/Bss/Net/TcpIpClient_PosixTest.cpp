// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client leaves behind, as the system counts it.
#include "LosingClient.h"
#include "Support/LogCapture.h"

#include <filesystem>
#include <iterator>

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

} // namespace
