// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The system is asked directly: the programs that do the same need to be installed, and lose
// the rights of a namespace for users when they are started.
#include "Support/JoinedNetworks_Posix.h"

#include "Support/Eventually.h"
#include "Support/OwnNetwork_Posix.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
#include <net/if.h>
#include <net/route.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Support {

namespace {

constexpr char NEAR_END[] = "near0";
constexpr char FAR_END[] = "far0";
constexpr char NETWORK[] = "10.77.0.0";
constexpr char MASK[] = "255.255.255.0";

/// Closes its number.
class DescriptorC
{
public:
    explicit DescriptorC(int descriptor) : m_descriptor(descriptor) {}
    ~DescriptorC()
    {
        if (m_descriptor >= 0) ::close(m_descriptor);
    }
    DescriptorC(const DescriptorC&) = delete;
    DescriptorC& operator=(const DescriptorC&) = delete;
    operator int() const { return m_descriptor; }

private:
    const int m_descriptor;
};

int ThisNetwork()
{
    return ::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC);
}

/// A request for an interface, with values inside values.
class LinkRequestC
{
public:
    LinkRequestC()
    {
        nlmsghdr header = {};
        header.nlmsg_type = RTM_NEWLINK;
        header.nlmsg_flags = NLM_F_REQUEST | NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL;
        append(&header, sizeof(header));
        addLink();
    }
    void addLink()
    {
        const ifinfomsg link = {};
        append(&link, sizeof(link));
    }
    void add(unsigned short type, const void* value, std::size_t size)
    {
        const std::size_t place = begin(type);
        append(value, size);
        end(place);
    }
    void add(unsigned short type, const char* text) { add(type, text, std::strlen(text) + 1); }
    std::size_t begin(unsigned short type)
    {
        const rtattr head = {0, type};
        append(&head, sizeof(head));
        return m_bytes.size() - sizeof(head);
    }
    void end(std::size_t place)
    {
        const auto length = static_cast<unsigned short>(m_bytes.size() - place);
        std::memcpy(m_bytes.data() + place, &length, sizeof(length));
        m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    }

    /// 0 or the system's number.
    int send()
    {
        const auto length = static_cast<std::uint32_t>(m_bytes.size());
        std::memcpy(m_bytes.data(), &length, sizeof(length));
        const DescriptorC socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
        if (socket < 0 || ::send(socket, m_bytes.data(), m_bytes.size(), 0) < 0) return errno;
        alignas(nlmsghdr) std::array<char, 4096> answer;
        if (::recv(socket, answer.data(), answer.size(), 0) <
            static_cast<ssize_t>(NLMSG_LENGTH(sizeof(nlmsgerr))))
            return EIO;
        nlmsgerr said = {};
        std::memcpy(&said, answer.data() + NLMSG_HDRLEN, sizeof(said));
        return -said.error;
    }

private:
    void append(const void* value, std::size_t size)
    {
        m_bytes.append(static_cast<const char*>(value), size);
    }

    std::string m_bytes;
};

/// A cable from here to another network.
int MakeCable(int otherNetwork)
{
    LinkRequestC request;
    request.add(IFLA_IFNAME, NEAR_END);
    const std::size_t info = request.begin(IFLA_LINKINFO);
    request.add(IFLA_INFO_KIND, "veth");
    const std::size_t data = request.begin(IFLA_INFO_DATA);
    const std::size_t peer = request.begin(VETH_INFO_PEER);
    request.addLink();
    request.add(IFLA_IFNAME, FAR_END);
    request.add(IFLA_NET_NS_FD, &otherNetwork, sizeof(otherNetwork));
    request.end(peer);
    request.end(data);
    request.end(info);
    return request.send();
}

sockaddr Address(const char* text)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    ::inet_pton(AF_INET, text, &address.sin_addr);
    sockaddr plain = {};
    std::memcpy(&plain, &address, sizeof(plain));
    return plain;
}

bool SetAddress(const char* name, const char* text)
{
    const DescriptorC socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request = {};
    std::strcpy(request.ifr_name, name);
    request.ifr_addr = Address(text);
    if (::ioctl(socket, SIOCSIFADDR, &request) != 0) return false;
    request.ifr_netmask = Address(MASK);
    return ::ioctl(socket, SIOCSIFNETMASK, &request) == 0;
}

bool ChangeRoute(unsigned long request)
{
    const DescriptorC socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    std::string device = NEAR_END;
    rtentry route = {};
    route.rt_dst = Address(NETWORK);
    route.rt_genmask = Address(MASK);
    route.rt_flags = RTF_UP;
    route.rt_dev = device.data();
    return ::ioctl(socket, request, &route) == 0;
}

} // namespace

JoinedNetworks::JoinedNetworks() : m_near(ThisNetwork())
{
    m_error = make();
}

JoinedNetworks::~JoinedNetworks()
{
    for (const int network : {m_near, m_far})
        if (network >= 0) ::close(network);
}

int JoinedNetworks::make()
{
    if (m_near < 0) return errno;
    if (::unshare(CLONE_NEWNET) != 0) return errno;
    m_far = ThisNetwork();
    if (::setns(m_near, CLONE_NEWNET) != 0) return errno;
    if (m_far < 0) return EMFILE;
    if (const int error = MakeCable(m_far)) return error;
    bool bFar = false;
    far([&bFar] { bFar = SwitchInterface(true) && SetAddress(FAR_END, FAR_ADDRESS); });
    if (!bFar || !switchFar(true)) return EIO;
    if (!SetAddress(NEAR_END, NEAR_ADDRESS) || !switchNear(true)) return EIO;
    return Eventually([] { return IsInterfaceRunning(NEAR_END); }) && carries() ? 0 : EIO;
}

// An interface that is running may still throw away what comes first, and the first step to a connection is
// not repeated within a second.
bool JoinedNetworks::carries() const
{
    int receiving = -1;
    sockaddr place = Address(FAR_ADDRESS);
    socklen_t length = sizeof(place);
    far([&] {
        receiving = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (::bind(receiving, &place, length) != 0 || ::getsockname(receiving, &place, &length) != 0)
            length = 0;
    });
    const DescriptorC receiver(receiving);
    const DescriptorC sender(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    return length != 0 && Eventually([&] {
               char byte = 'x';
               ::sendto(sender, &byte, 1, 0, &place, length);
               return ::recv(receiver, &byte, 1, 0) == 1;
           });
}

void JoinedNetworks::far(const std::function<void()>& action) const
{
    ASSERT_EQ(::setns(m_far, CLONE_NEWNET), 0);
    action();
    ASSERT_EQ(::setns(m_near, CLONE_NEWNET), 0);
}

bool JoinedNetworks::switchNear(bool bUp) const
{
    return SwitchInterface(bUp, NEAR_END);
}

bool JoinedNetworks::switchFar(bool bUp) const
{
    bool bDone = false;
    far([&] { bDone = SwitchInterface(bUp, FAR_END); });
    return bDone;
}

bool JoinedNetworks::removeRoute() const
{
    return ChangeRoute(SIOCDELRT);
}

bool JoinedNetworks::addRoute() const
{
    return ChangeRoute(SIOCADDRT);
}

void ExpectInJoinedNetworks(const std::function<void(JoinedNetworks&)>& scenario)
{
    ExpectInOwnNetwork([&scenario] {
        JoinedNetworks networks;
        const int error = networks.getError();
        for (const int one : {EPERM, EACCES, EOPNOTSUPP, ENOSPC}) // no rights, no such interfaces, a limit
            if (error == one) return NOT_PERMITTED;
        EXPECT_EQ(error, 0) << std::strerror(error);
        if (error == 0) scenario(networks);
        return 0;
    });
}

} // namespace Support
