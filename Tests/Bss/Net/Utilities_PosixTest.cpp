// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Questions to a network of the process's own, in which it may do what it may not elsewhere.
#include "Bss/Bss_Net/BSS_NET_Utilities.h"

#include "Loopback.h"
#include "Support/OwnNetwork_Posix.h"

#include <arpa/inet.h>
#include <linux/capability.h>
#include <linux/ipv6.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

int PingWithPermission()
{
    for (const char* const address : LoopbackAddresses()) {
        std::int64_t roundTripUs = -1;
        if (PingAddress(address, LONG_MS, roundTripUs) != RC_OK) return 1;
        if (roundTripUs < 0) return 2;
    }
    return 0;
}

bool GiveUpAllRights()
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    const std::vector<__user_cap_data_struct> none(_LINUX_CAPABILITY_U32S_3);
    return ::syscall(SYS_capset, &header, none.data()) == 0;
}

int PingWithoutPermission()
{
    if (!GiveUpAllRights()) return 1;
    for (const char* const address : LoopbackAddresses()) {
        std::int64_t roundTripUs = -1;
        if (PingAddress(address, LONG_MS, roundTripUs) != RC_SERVICE_FAILED) return 2;
        if (roundTripUs != -1) return 3;
    }
    return 0;
}

TEST(UtilitiesPosixDeathTest, PingOfTheLoopbackIsAnsweredWhereItIsPermitted)
{
    Support::ExpectInOwnNetwork(&PingWithPermission);
}

TEST(UtilitiesPosixDeathTest, PingThatIsNotPermittedSaysSo)
{
    Support::ExpectInOwnNetwork(&PingWithoutPermission);
}

bool AddToLoopback(const char* address)
{
    int error = 0;
    const HeldSocketC socket(HAL::OpenSocket(HAL::AddressKind::IPv6, error));
    in6_ifreq request = {};
    request.ifr6_ifindex = static_cast<int>(::if_nametoindex("lo"));
    request.ifr6_prefixlen = 64;
    return ::inet_pton(AF_INET6, address, &request.ifr6_addr) == 1 &&
           ::ioctl(static_cast<int>(static_cast<HAL::SocketT>(socket)), SIOCSIFADDR, &request) == 0;
}

int AskForAnAddressOfALink()
{
    if (LoopbackAddresses().size() < 2) return Support::NOT_PERMITTED; // this system has no IPv6
    if (CheckActiveAddress("fe80::7") != RC_NOT_FOUND) return 1;
    if (!AddToLoopback("fe80::7")) return 2;
    if (CheckActiveAddress("fe80::7") != RC_OK) return 3;
    if (CheckActiveAddress("fe80::7%lo") != RC_OK) return 4;
    if (CheckActiveAddress("fe80::7%1") != RC_OK) return 5;
    if (CheckActiveAddress("fe80::7%99") == RC_OK) return 6; // another interface
    return CheckActiveAddress("fe80::") == RC_NOT_FOUND ? 0 : 7;
}

TEST(UtilitiesPosixDeathTest, AddressOfALinkIsActiveWithAndWithoutItsInterface)
{
    Support::ExpectInOwnNetwork(&AskForAnAddressOfALink);
}

int AskForAnAddressOfAnInterfaceThatIsDown()
{
    if (CheckActiveAddress("127.0.0.1") != RC_OK) return 1;
    if (!Support::SwitchInterface(false)) return 2;
    if (CheckActiveAddress("127.0.0.1") != RC_NOT_FOUND) return 3;
    if (!Support::SwitchInterface(true)) return 4;
    return CheckActiveAddress("127.0.0.1") == RC_OK ? 0 : 5;
}

TEST(UtilitiesPosixDeathTest, AddressIsActiveWhileItsInterfaceIsUp)
{
    Support::ExpectInOwnNetwork(&AskForAnAddressOfAnInterfaceThatIsDown);
}

TEST(UtilitiesPosixTest, ServiceThatDoesNotAnswerTimesOut)
{
    const SocketsStartedC started;
    const ListenerC full("127.0.0.1", 0, 0); // the system throws away what comes to a full list
    std::vector<HeldSocketC> waiting;
    for (int n = 0; n < 4; ++n) {
        waiting.push_back(Open());
        HAL::SetNonBlocking(waiting.back(), true);
        HAL::ConnectSocket(waiting.back(), full.address());
    }
    EXPECT_EQ(CheckService("127.0.0.1", full.port(), 50), RC_TIMED_OUT);
}

} // namespace
