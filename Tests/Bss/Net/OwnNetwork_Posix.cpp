// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "OwnNetwork_Posix.h"

#include "Loopback.h"

#include <cstdlib>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>

using namespace BSS;

namespace NetTests {

namespace {

constexpr int NOT_PERMITTED = 77;

bool HaveOwnNetwork()
{
    return ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
}

} // namespace

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

void ExpectInOwnNetwork(int (*scenario)())
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    static int s_status = -1;
    const auto look = [](int status) {
        s_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return s_status == 0 || s_status == NOT_PERMITTED;
    };
    const auto run = [scenario] {
        return HaveOwnNetwork() && SwitchInterface(true) ? scenario() : NOT_PERMITTED;
    };
    EXPECT_EXIT(std::_Exit(run()), look, "");
    if (s_status != NOT_PERMITTED) return;
    const char* const ci = std::getenv("CI");
    ASSERT_FALSE(ci != nullptr && std::string(ci) == "true") << "no network of its own here";
    GTEST_SKIP() << "this process may not have a network of its own";
}

} // namespace NetTests
