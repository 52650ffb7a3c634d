// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Questions to the network. Sockets are started by the calls themselves. Safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>
#include <string>

namespace BSS::NET {

/// Whether a service takes connections: RC_OK; RC_TIMED_OUT when nobody answers; RC_CLOSED or RC_FAILED when
/// it is refused or no way leads there; RC_NOT_FOUND when the name cannot be resolved. No single address of a
/// name gets more than that many milliseconds; resolving takes as long as the system takes.
[[nodiscard]] ResultCodeT CheckService(const std::string& name, std::uint16_t port, int timeoutMs);

/// Whether this machine has the address on an interface that is up, which need not be named in an address
/// like "fe80::1": RC_OK; RC_NOT_FOUND; RC_INVALID_ARGUMENT for what is no address; RC_FAILED when the system
/// does not tell.
[[nodiscard]] ResultCodeT CheckActiveAddress(const std::string& address);

/// Sends one echo request and waits for the answer: RC_OK with the round trip; RC_TIMED_OUT when there is
/// none; RC_SERVICE_FAILED when this process may not send one; RC_INVALID_ARGUMENT for what is no address;
/// RC_FAILED.
[[nodiscard]] ResultCodeT PingAddress(const std::string& address, int timeoutMs, std::int64_t& roundTripUs);

} // namespace BSS::NET
