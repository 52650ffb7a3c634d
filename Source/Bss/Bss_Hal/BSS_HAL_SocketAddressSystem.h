// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the system itself knows of addresses, for BSS_HAL_SocketAddress.cpp only. Arguments have been checked.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

namespace BSS::HAL {

/// Where an address of the system has its parts, on every system; each half checks that of its own.
inline constexpr std::size_t ADDRESS_PORT_OFFSET = 2; // high byte first
inline constexpr std::size_t ADDRESS_IPV4_OFFSET = 4;
inline constexpr std::size_t ADDRESS_IPV6_OFFSET = 8;

/// Copies an address of the system; one that is too long gives none.
SocketAddressT AddressFromSystem(const void* address, std::size_t length) noexcept;

/// The kind by the family in it.
AddressKind SystemKindOf(const SocketAddressT& address) noexcept;

/// Adds what the system knows of a name, or of an address alone. 0 or an error number.
int SystemLookUp(const std::string& name, std::uint16_t port, bool bAddressAlone,
                 std::vector<SocketAddressT>& addresses);

/// The error number of a name that nobody can have.
int NoSuchNameError() noexcept;

/// Empty when the system has none.
std::string SystemAddressText(const SocketAddressT& address);

} // namespace BSS::HAL
