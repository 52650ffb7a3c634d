// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the headers. Names and texts go to the system as wide text, so that names with non-ASCII letters work.
#include "Bss/Bss_Hal/BSS_HAL_SocketAddressSystem.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

namespace BSS::HAL {

namespace {

static_assert(sizeof(sockaddr_storage) <= sizeof(SocketAddressT::bytes));
static_assert(offsetof(sockaddr_in, sin_port) == ADDRESS_PORT_OFFSET);
static_assert(offsetof(sockaddr_in6, sin6_port) == ADDRESS_PORT_OFFSET);
static_assert(offsetof(sockaddr_in, sin_addr) == ADDRESS_IPV4_OFFSET);
static_assert(offsetof(sockaddr_in6, sin6_addr) == ADDRESS_IPV6_OFFSET);

struct FreeT
{
    void operator()(ADDRINFOW* list) const noexcept { FreeAddrInfoW(list); }
};

class QuerySocketC
{
public:
    explicit QuerySocketC(int family) noexcept : m_socket(::socket(family, SOCK_STREAM, IPPROTO_TCP)) {}
    ~QuerySocketC()
    {
        if (isOpen()) closesocket(m_socket);
    }
    QuerySocketC(const QuerySocketC&) = delete;
    QuerySocketC& operator=(const QuerySocketC&) = delete;

    bool isOpen() const noexcept { return m_socket != INVALID_SOCKET; }
    SOCKET get() const noexcept { return m_socket; }
    bool binds(const SocketAddressT& address) const noexcept
    {
        const auto* system = reinterpret_cast<const sockaddr*>(address.bytes.data());
        return ::bind(m_socket, system, static_cast<int>(address.length)) == 0;
    }

private:
    const SOCKET m_socket;
};

} // namespace

int SystemLookUp(const std::string& name, std::uint16_t port, bool bAddressAlone,
                 std::vector<SocketAddressT>& addresses)
{
    ADDRINFOW hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = bAddressAlone ? AI_NUMERICHOST : 0;
    ADDRINFOW* found = nullptr;
    const int error = GetAddrInfoW(WideFromUtf8(name).c_str(), std::to_wstring(port).c_str(), &hints, &found);
    if (error != 0) return error;
    const std::unique_ptr<ADDRINFOW, FreeT> list(found);
    for (const ADDRINFOW* entry = list.get(); entry != nullptr; entry = entry->ai_next)
        addresses.push_back(AddressFromSystem(entry->ai_addr, entry->ai_addrlen));
    return 0;
}

int NoSuchNameError() noexcept
{
    return WSAHOST_NOT_FOUND;
}

int ResolveResourcesError() noexcept
{
    return WSA_NOT_ENOUGH_MEMORY;
}

std::string ResolveErrorText(int error)
{
    return SocketErrorText(error);
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
    std::array<wchar_t, NI_MAXHOST> text = {};
    const auto* system = reinterpret_cast<const sockaddr*>(address.bytes.data());
    const int error = GetNameInfoW(system, static_cast<socklen_t>(address.length), text.data(),
                                   static_cast<DWORD>(text.size()), nullptr, 0, NI_NUMERICHOST);
    return error == 0 ? Utf8FromWide(text.data()) : std::string();
}

// Sockets answer for IPv4 and IPv6 themselves, without another system library. They may leave the loopback
// address out.
int ActiveAddresses(std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    for (const int family : {AF_INET, AF_INET6}) {
        const QuerySocketC socket(family);
        if (!socket.isOpen()) continue; // this family is not installed
        std::vector<unsigned char> buffer(65536);
        DWORD length = 0;
        if (WSAIoctl(socket.get(), SIO_ADDRESS_LIST_QUERY, nullptr, 0, buffer.data(),
                     static_cast<DWORD>(buffer.size()), &length, nullptr, nullptr) != 0)
            return WSAGetLastError();
        const auto* list = reinterpret_cast<const SOCKET_ADDRESS_LIST*>(buffer.data());
        for (int n = 0; n < list->iAddressCount; ++n) {
            addresses.push_back(AddressFromSystem(
                list->Address[n].lpSockaddr, static_cast<std::size_t>(list->Address[n].iSockaddrLength)));
        }
        SocketAddressT loopback;
        const bool bThere =
            ParseAddress(family == AF_INET ? "127.0.0.1" : "::1", 0, loopback) && socket.binds(loopback);
        const auto isTold = [family](const SocketAddressT& address) {
            return IsLoopback(address) &&
                   KindOf(address) == (family == AF_INET ? AddressKind::IPv4 : AddressKind::IPv6);
        };
        if (bThere && std::none_of(addresses.begin(), addresses.end(), isTold)) addresses.push_back(loopback);
    }
    return 0;
}

} // namespace BSS::HAL
