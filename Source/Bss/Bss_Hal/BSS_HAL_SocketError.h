// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The numbers by which the system says why a call on a socket failed, in the system's own counting, and what
// they mean. 0 is success everywhere. Safe from any thread.
#pragma once

#include <string>

namespace BSS::HAL {

/// The number and the system's own words for it: "111: Connection refused". The words are the system's.
std::string SocketErrorText(int error);

/// Nothing was done because the call would have had to wait.
bool IsWouldBlock(int error) noexcept;

/// A connect that has been started and is not decided yet.
bool IsConnectPending(int error) noexcept;

/// The other side is gone without a proper end, or the way to it is.
bool IsConnectionLost(int error) noexcept;

/// The socket is not connected, or there is no such socket any more.
bool IsNotConnected(int error) noexcept;

} // namespace BSS::HAL
