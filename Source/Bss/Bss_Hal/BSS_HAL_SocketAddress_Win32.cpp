// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Names and texts go to the system as wide text, so that names with non-ASCII letters work.
#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <cstring>

namespace BSS::HAL {

namespace {

static_assert(sizeof(sockaddr_storage) <= sizeof(SocketAddressT::bytes));

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
    ADDRINFOW hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    ADDRINFOW* list = nullptr;
    const int error = GetAddrInfoW(WideFromUtf8(name).c_str(), std::to_wstring(port).c_str(), &hints, &list);
    if (error != 0) return error;
    for (const ADDRINFOW* entry = list; entry != nullptr; entry = entry->ai_next)
        addresses.push_back(FromSystem(entry->ai_addr, entry->ai_addrlen));
    FreeAddrInfoW(list);
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
    if (name.empty() || name.find('\0') != std::string::npos) return WSAHOST_NOT_FOUND;
    return Look(name, port, 0, addresses);
}

std::string ResolveErrorText(int error)
{
    return SocketErrorText(error);
}

AddressKind KindOf(const SocketAddressT& address) noexcept
{
    if (address.length == 0) return AddressKind::None;
    const auto family = As<sockaddr>(address).sa_family;
    if (family == AF_INET) return AddressKind::IPv4;
    return family == AF_INET6 ? AddressKind::IPv6 : AddressKind::None;
}

std::string AddressText(const SocketAddressT& address)
{
    std::array<wchar_t, NI_MAXHOST> text = {};
    const auto* system = reinterpret_cast<const sockaddr*>(address.bytes.data());
    if (KindOf(address) == AddressKind::None ||
        GetNameInfoW(system, static_cast<socklen_t>(address.length), text.data(),
                     static_cast<DWORD>(text.size()), nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return Utf8FromWide(text.data());
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

// Sockets answer for IPv4 and IPv6 themselves, without another system library.
int ActiveAddresses(std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    for (const int family : {AF_INET, AF_INET6}) {
        const SOCKET socket = ::socket(family, SOCK_STREAM, IPPROTO_TCP);
        if (socket == INVALID_SOCKET) continue; // this family is not installed
        std::vector<unsigned char> buffer(65536);
        DWORD length = 0;
        const int answer = WSAIoctl(socket, SIO_ADDRESS_LIST_QUERY, nullptr, 0, buffer.data(),
                                    static_cast<DWORD>(buffer.size()), &length, nullptr, nullptr);
        const int error = answer == 0 ? 0 : WSAGetLastError();
        closesocket(socket);
        if (error != 0) return error;
        const auto* list = reinterpret_cast<const SOCKET_ADDRESS_LIST*>(buffer.data());
        for (int n = 0; n < list->iAddressCount; ++n) {
            addresses.push_back(FromSystem(list->Address[n].lpSockaddr,
                                           static_cast<std::size_t>(list->Address[n].iSockaddrLength)));
        }
    }
    return 0;
}

} // namespace BSS::HAL
