// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Addresses of IPv4 and IPv6 with their port, made from text and by name resolution. An address is a plain
// value; its bytes are the system's own form. Sockets must have been started (BSS_HAL_Socket.h). Safe from
// any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace BSS::HAL {

struct SocketAddressT
{
    alignas(8) std::array<unsigned char, 128> bytes = {};
    std::uint32_t length = 0; ///< 0 is no address
};

enum class AddressKind
{
    None,
    IPv4,
    IPv6
};

/// Reads "192.0.2.1", "2001:db8::1" or "fe80::1%eth0". Never asks a server. False for anything else.
bool ParseAddress(const std::string& text, std::uint16_t port, SocketAddressT& address);

/// Asks the system for the addresses of a name, in the order in which it wants them tried. Blocks for as long
/// as the system likes, which may be many seconds. 0, or a number for ResolveErrorText. The name is UTF-8.
int ResolveName(const std::string& name, std::uint16_t port, std::vector<SocketAddressT>& addresses);
std::string ResolveErrorText(int error);

/// The number of a question that could not be asked for want of memory or threads.
int ResolveResourcesError() noexcept;

AddressKind KindOf(const SocketAddressT& address) noexcept;

/// Without the port; empty for no address.
std::string AddressText(const SocketAddressT& address);
std::uint16_t PortOf(const SocketAddressT& address) noexcept;

/// Whether it leads back to this machine by its very form.
bool IsLoopback(const SocketAddressT& address) noexcept;

/// The addresses that this machine's interfaces have at this moment; those of interfaces that are down are
/// left out. 0 or an error number.
int ActiveAddresses(std::vector<SocketAddressT>& addresses);

} // namespace BSS::HAL
