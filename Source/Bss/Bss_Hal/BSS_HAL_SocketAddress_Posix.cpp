// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the headers.
#include "Bss/Bss_Hal/BSS_HAL_SocketAddressSystem.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace BSS::HAL {

namespace {

static_assert(sizeof(sockaddr_storage) <= sizeof(SocketAddressT::bytes));
static_assert(offsetof(sockaddr_in, sin_port) == ADDRESS_PORT_OFFSET);
static_assert(offsetof(sockaddr_in6, sin6_port) == ADDRESS_PORT_OFFSET);
static_assert(offsetof(sockaddr_in, sin_addr) == ADDRESS_IPV4_OFFSET);
static_assert(offsetof(sockaddr_in6, sin6_addr) == ADDRESS_IPV6_OFFSET);

// Numbers of the resolver and errno overlap; errno's are told apart by an offset.
constexpr int SYSTEM_ERROR_OFFSET = 100000;

struct FreeT
{
    void operator()(addrinfo* list) const noexcept { ::freeaddrinfo(list); }
    void operator()(ifaddrs* list) const noexcept { ::freeifaddrs(list); }
};

} // namespace

int SystemLookUp(const std::string& name, std::uint16_t port, bool bAddressAlone,
                 std::vector<SocketAddressT>& addresses)
{
    addrinfo hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = (bAddressAlone ? AI_NUMERICHOST : 0) | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int error = ::getaddrinfo(name.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error == EAI_SYSTEM) return SYSTEM_ERROR_OFFSET + errno;
    if (error != 0) return error;
    const std::unique_ptr<addrinfo, FreeT> list(found);
    for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next)
        addresses.push_back(AddressFromSystem(entry->ai_addr, entry->ai_addrlen));
    return 0;
}

int NoSuchNameError() noexcept
{
    return EAI_NONAME;
}

int ResolveResourcesError() noexcept
{
    return EAI_MEMORY;
}

std::string ResolveErrorText(int error)
{
    if (error >= SYSTEM_ERROR_OFFSET) return SocketErrorText(error - SYSTEM_ERROR_OFFSET);
    return std::to_string(error) + ": " + ::gai_strerror(error);
}

AddressKind SystemKindOf(const SocketAddressT& address) noexcept
{
    sockaddr system = {};
    std::memcpy(&system, address.bytes.data(), sizeof(system));
    if (system.sa_family == AF_INET) return AddressKind::IPv4;
    return system.sa_family == AF_INET6 ? AddressKind::IPv6 : AddressKind::None;
}

std::string SystemAddressText(const SocketAddressT& address)
{
    std::array<char, NI_MAXHOST> text = {};
    const auto* system = reinterpret_cast<const sockaddr*>(address.bytes.data());
    const int error =
        ::getnameinfo(system, address.length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return error == 0 ? text.data() : std::string();
}

int ActiveAddresses(std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    ifaddrs* found = nullptr;
    if (::getifaddrs(&found) != 0) return errno;
    const std::unique_ptr<ifaddrs, FreeT> list(found);
    for (const ifaddrs* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || (entry->ifa_flags & IFF_UP) == 0) continue;
        const int family = entry->ifa_addr->sa_family;
        if (family == AF_INET) addresses.push_back(AddressFromSystem(entry->ifa_addr, sizeof(sockaddr_in)));
        if (family == AF_INET6) addresses.push_back(AddressFromSystem(entry->ifa_addr, sizeof(sockaddr_in6)));
    }
    return 0;
}

} // namespace BSS::HAL
