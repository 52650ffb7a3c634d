// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. What all systems have alike.
#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include "Bss/Bss_Hal/BSS_HAL_SocketAddressSystem.h"

#include <algorithm>
#include <cstring>

namespace BSS::HAL {

namespace {

constexpr std::size_t IPV6_BYTES = 16;
constexpr unsigned char LOOPBACK_NET = 127; // the first byte of 127.0.0.0/8

bool IsLoopback6(const unsigned char* ip) noexcept
{
    constexpr std::array<unsigned char, IPV6_BYTES> LOOPBACK = {0, 0, 0, 0, 0, 0, 0, 0,
                                                                0, 0, 0, 0, 0, 0, 0, 1};
    constexpr std::array<unsigned char, 12> MAPPED = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    if (std::equal(MAPPED.begin(), MAPPED.end(), ip)) return ip[MAPPED.size()] == LOOPBACK_NET;
    return std::equal(LOOPBACK.begin(), LOOPBACK.end(), ip);
}

} // namespace

SocketAddressT AddressFromSystem(const void* address, std::size_t length) noexcept
{
    SocketAddressT result;
    if (length > result.bytes.size()) return result;
    std::memcpy(result.bytes.data(), address, length);
    result.length = static_cast<std::uint32_t>(length);
    return result;
}

// The system reads "10" and "0x7f.1" as addresses too; nobody means that. An address has three dots or a
// colon.
bool ParseAddress(const std::string& text, std::uint16_t port, SocketAddressT& address)
{
    const auto nDots = std::count(text.begin(), text.end(), '.');
    if (nDots != 3 && text.find(':') == std::string::npos) return false;
    std::vector<SocketAddressT> addresses;
    if (text.find('\0') != std::string::npos || SystemLookUp(text, port, true, addresses) != 0) return false;
    if (addresses.empty()) return false;
    address = addresses.front();
    return true;
}

int ResolveName(const std::string& name, std::uint16_t port, std::vector<SocketAddressT>& addresses)
{
    addresses.clear();
    if (name.empty() || name.find('\0') != std::string::npos) return NoSuchNameError();
    return SystemLookUp(name, port, false, addresses);
}

AddressKind KindOf(const SocketAddressT& address) noexcept
{
    return address.length == 0 ? AddressKind::None : SystemKindOf(address);
}

std::string AddressText(const SocketAddressT& address)
{
    return KindOf(address) == AddressKind::None ? std::string() : SystemAddressText(address);
}

std::uint16_t PortOf(const SocketAddressT& address) noexcept
{
    if (KindOf(address) == AddressKind::None) return 0;
    const unsigned char* const port = &address.bytes[ADDRESS_PORT_OFFSET];
    return static_cast<std::uint16_t>(port[0] << 8 | port[1]);
}

bool IsLoopback(const SocketAddressT& address) noexcept
{
    switch (KindOf(address)) {
    case AddressKind::IPv4:
        return address.bytes[ADDRESS_IPV4_OFFSET] == LOOPBACK_NET;
    case AddressKind::IPv6:
        return IsLoopback6(&address.bytes[ADDRESS_IPV6_OFFSET]);
    case AddressKind::None:
        break;
    }
    return false;
}

} // namespace BSS::HAL
