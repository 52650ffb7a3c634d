// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What only this platform's sockets can go wrong with: signals, high descriptors, child processes.
#include "DescriptorLimit_Posix.h"
#include "Loopback.h"
#include "Support/Environment.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace BSS::HAL;
using namespace NetTests;

namespace {

TEST(HalSocketPosixTest, DescriptorsBeyondAThousandAreWatched)
{
    constexpr int HIGH = 1500;
    if (!MayHaveDescriptors(HIGH + 1)) {
        ASSERT_NE(Support::GetEnvironment("CI").value_or(""), "true") << "not enough descriptors here";
        GTEST_SKIP() << "this process may not have so many descriptors";
    }
    const DescriptorLimitC enough(HIGH + 1);
    const PairT pair = Pair();
    const int high = ::fcntl(static_cast<int>(static_cast<SocketT>(pair.client)), F_DUPFD, HIGH);
    ASSERT_GE(high, HIGH);
    SendBytes(pair.server, "x", 1);
    EXPECT_TRUE(CanRead(high));
    ::close(high);
}

TEST(HalSocketPosixTest, SocketsAreNotInheritedByOtherPrograms)
{
    const PairT pair = Pair();
    for (const SocketT socket : {SocketT{pair.client}, SocketT{pair.server}})
        EXPECT_NE(::fcntl(static_cast<int>(socket), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(HalSocketPosixTest, SignalsDoNotEndAWait)
{
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    const PairT pair = Pair();
    std::atomic<bool> bDone{false};
    const pthread_t waiting = ::pthread_self();
    std::thread other([&] {
        for (int n = 0; n < 1000; ++n)
            ::pthread_kill(waiting, SIGUSR1);
        SendBytes(pair.server, "x", 1);
        bDone = true;
    });
    EXPECT_TRUE(CanRead(pair.client));
    other.join();
    EXPECT_TRUE(bDone);
    ::sigaction(SIGUSR1, &before, nullptr);
}

TEST(HalSocketPosixTest, ClosedDescriptorIsToldAsFailed)
{
    int error = 0;
    const SocketT socket = OpenSocket(AddressKind::IPv4, error);
    ASSERT_EQ(CloseSocket(socket), 0);
    PollItemT item{socket, true};
    std::size_t nReady = 0;
    EXPECT_EQ(PollSockets(&item, 1, 0, nReady), 0);
    EXPECT_TRUE(item.failed);
}

TEST(HalSocketPosixTest, SendLimitIsTheSystems)
{
    const PairT pair = Pair();
    ASSERT_EQ(SetSendLimit(pair.client, 45), 0);
    int limitMs = 0;
    socklen_t length = sizeof(limitMs);
    ASSERT_EQ(::getsockopt(static_cast<int>(static_cast<SocketT>(pair.client)), IPPROTO_TCP, TCP_USER_TIMEOUT,
                           &limitMs, &length),
              0);
    EXPECT_EQ(limitMs, 45000);
}

TEST(HalSocketPosixTest, LostConnectionHasManyNumbers)
{
    for (const int error : {ECONNRESET, EPIPE, ECONNABORTED, ETIMEDOUT, ENETDOWN, ENETUNREACH, EHOSTUNREACH})
        EXPECT_TRUE(IsConnectionLost(error)) << SocketErrorText(error);
    for (const int error : {0, EAGAIN, EINPROGRESS, EMFILE, EBADF, EINVAL, ECONNREFUSED})
        EXPECT_FALSE(IsConnectionLost(error)) << SocketErrorText(error);
}

} // namespace
