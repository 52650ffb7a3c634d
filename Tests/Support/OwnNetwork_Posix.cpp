// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/OwnNetwork_Posix.h"

#include "Support/Environment.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

namespace {

constexpr int FAILED_WITHIN = 78;

/// Asks the system for the flags of an interface, or gives it new ones.
bool Flags(unsigned long request, const char* name, short& flags)
{
    ifreq question = {};
    if (std::strlen(name) >= sizeof(question.ifr_name)) return false;
    std::strcpy(question.ifr_name, name);
    question.ifr_flags = flags;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) return false;
    const bool bDone = ::ioctl(socket, request, &question) == 0;
    ::close(socket);
    flags = question.ifr_flags;
    return bDone;
}

/// Whether everything may be done in this network that tests do. Containers let their root make one, but keep
/// some of the rights in it to themselves.
bool MayDoEverything()
{
    const int raw = ::socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
    if (raw >= 0) ::close(raw);
    return raw >= 0 && SwitchInterface(true);
}

/// As the process may, or as the root of a namespace for users.
bool HaveOwnNetwork()
{
    return (::unshare(CLONE_NEWNET) == 0 && MayDoEverything()) ||
           (::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && MayDoEverything());
}

/// Machines without IPv6 may have it in a network of one's own. Refused where the system's settings are read
/// only.
void SwitchIpv6On()
{
    if (std::FILE* const setting = std::fopen("/proc/sys/net/ipv6/conf/lo/disable_ipv6", "w")) {
        std::fputs("0", setting);
        std::fclose(setting);
    }
}

/// Nobody prints what fails in a child.
bool TellFailures()
{
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int n = 0; n < result.total_part_count(); ++n) {
        const testing::TestPartResult& part = result.GetTestPartResult(n);
        if (part.failed())
            std::fprintf(stderr, "%s:%d: %s\n", part.file_name(), part.line_number(), part.summary());
    }
    return result.Failed();
}

int Run(const std::function<int()>& scenario)
{
    if (!HaveOwnNetwork()) return NOT_PERMITTED;
    SwitchIpv6On();
    const int answer = scenario();
    return TellFailures() && answer == 0 ? FAILED_WITHIN : answer;
}

} // namespace

bool SwitchInterface(bool bUp, const char* name)
{
    short flags = 0;
    if (!Flags(SIOCGIFFLAGS, name, flags)) return false;
    flags = static_cast<short>(bUp ? flags | IFF_UP : flags & ~IFF_UP);
    return Flags(SIOCSIFFLAGS, name, flags);
}

bool IsInterfaceRunning(const char* name)
{
    short flags = 0;
    return Flags(SIOCGIFFLAGS, name, flags) && (flags & IFF_RUNNING) != 0;
}

void ExpectInOwnNetwork(const std::function<int()>& scenario)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    static int s_status = -1;
    const auto look = [](int status) {
        s_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return s_status == 0 || s_status == NOT_PERMITTED;
    };
    EXPECT_EXIT(std::_Exit(Run(scenario)), look, "");
    if (s_status != NOT_PERMITTED) return;
    ASSERT_NE(GetEnvironment("CI").value_or(""), "true") << "no network of its own here";
    GTEST_SKIP() << "this process may not have a network of its own";
}

} // namespace Support
