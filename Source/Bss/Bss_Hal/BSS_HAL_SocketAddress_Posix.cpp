// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace BSS::HAL {

namespace {

static_assert(sizeof(sockaddr_storage) <= sizeof(SocketAddressT::bytes));

// Numbers of the resolver and errno overlap; errno's are told apart by an offset.
constexpr int SYSTEM_ERROR_OFFSET = 100000;

SocketAddressT FromSystem(const sockaddr* address, std::size_t length)
{
    SocketAddressT result;
    if (length > result.bytes.size()) return result;
    std::memcpy(result.bytes.data(), address, length);
    result.length = static_cast<std::uint32_t>(length);
    return result;
}

template<typename SystemT>
SystemT As(const SocketAddressT& address) noexcept
{
    SystemT result = {};
    std::memcpy(&result, address.bytes.data(), sizeof(result));
    return result;
}

int Look(const std::string& name, std::uint16_t port, int flags, std::vector<SocketAddressT>& addresses)
{
    addrinfo hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags | AI_NUMERICSERV;
    addrinfo* list = nullptr;
    const int error = ::getaddrinfo(name.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (error == EAI_SYSTEM) return SYSTEM_ERROR_OFFSET + errno;
    if (error != 0) return error;
    for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next)
        addresses.push_back(FromSystem(entry->ai_addr, entry->ai_addrlen));
    ::freeaddrinfo(list);
    return 0;
}

} // namespace

// The system reads "10" and "0x7f.1" as addresses too; nobody means that. An address has three dots or a
// colon.
bool ParseAddress(const std::string& text, std::uint16_t port, SocketAddressT& address)
{
    std::size_t nDots = 0;
    for (const char character : text)
        nDots += character == '.' ? 1 : 0;
    if (nDots != 3 && text.find(':') == std::string::npos) return false;
    std::vector<SocketAddressT> addresses;
    if (text.find('\0') != std::string::npos || Look(text, port, AI_NUMERICHOST, addresses) != 0)
        return false;
    if (addresses.empty()) return false;
    address = addresses.front();
    return true;
}

int ResolveName(const std::string& name, std::uint16_t port, std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    if (name.empty() || name.find('\0') != std::string::npos) return EAI_NONAME;
    return Look(name, port, 0, addresses);
}

std::string ResolveErrorText(int error)
{
    if (error >= SYSTEM_ERROR_OFFSET) return SocketErrorText(error - SYSTEM_ERROR_OFFSET);
    return std::to_string(error) + ": " + ::gai_strerror(error);
}

AddressKind KindOf(const SocketAddressT& address) noexcept
{
    if (address.length == 0) return AddressKind::None;
    const sa_family_t family = As<sockaddr>(address).sa_family;
    if (family == AF_INET) return AddressKind::IPv4;
    return family == AF_INET6 ? AddressKind::IPv6 : AddressKind::None;
}

std::string AddressText(const SocketAddressT& address)
{
    std::array<char, NI_MAXHOST> text = {};
    const auto* system = reinterpret_cast<const sockaddr*>(address.bytes.data());
    if (KindOf(address) == AddressKind::None ||
        ::getnameinfo(system, address.length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return text.data();
}

std::uint16_t PortOf(const SocketAddressT& address) noexcept
{
    switch (KindOf(address)) {
    case AddressKind::IPv4:
        return ntohs(As<sockaddr_in>(address).sin_port);
    case AddressKind::IPv6:
        return ntohs(As<sockaddr_in6>(address).sin6_port);
    case AddressKind::None:
        break;
    }
    return 0;
}

bool IsLoopback(const SocketAddressT& address) noexcept
{
    if (KindOf(address) == AddressKind::IPv4)
        return (ntohl(As<sockaddr_in>(address).sin_addr.s_addr) >> 24) == 127;
    if (KindOf(address) != AddressKind::IPv6) return false;
    const in6_addr ip = As<sockaddr_in6>(address).sin6_addr;
    return IN6_IS_ADDR_LOOPBACK(&ip) || (IN6_IS_ADDR_V4MAPPED(&ip) && ip.s6_addr[12] == 127);
}

int ActiveAddresses(std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) return errno;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || (entry->ifa_flags & IFF_UP) == 0) continue;
        const int family = entry->ifa_addr->sa_family;
        if (family == AF_INET) addresses.push_back(FromSystem(entry->ifa_addr, sizeof(sockaddr_in)));
        if (family == AF_INET6) addresses.push_back(FromSystem(entry->ifa_addr, sizeof(sockaddr_in6)));
    }
    ::freeifaddrs(list);
    return 0;
}

} // namespace BSS::HAL
