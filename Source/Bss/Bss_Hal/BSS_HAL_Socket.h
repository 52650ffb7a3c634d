// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Stream sockets as the system has them: a socket is a number. Every operation answers at once with 0 or the
// system's error number (BSS_HAL_SocketError.h), never with a signal, and waits for nothing unless it says
// so; waiting is BSS_HAL_SocketPoll.h. Sockets are not inherited by child processes.
//
// Distinct sockets may be used from different threads; one socket may be read by one thread, written by
// another and shut down by a third. Whoever closes a socket must know that nobody uses its number any more:
// the system gives it to the next one that is opened.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include <cstddef>
#include <cstdint>

namespace BSS::HAL {

using SocketT = std::intptr_t;

inline constexpr SocketT NO_SOCKET = -1;

/// Starts the system's sockets, which Windows wants; to be said before anything else here, and taken back as
/// often. 0 or an error number.
int StartSockets() noexcept;
int StopSockets() noexcept;

/// How many sockets this process has opened here and not closed yet.
std::int64_t OpenSocketCount() noexcept;

/// A new stream socket for addresses of that kind, or NO_SOCKET and why.
SocketT OpenSocket(AddressKind kind, int& error) noexcept;
int CloseSocket(SocketT socket) noexcept;

int SetNonBlocking(SocketT socket, bool bNonBlocking) noexcept;

/// Small pieces leave at once instead of waiting for more.
int SetNoDelay(SocketT socket) noexcept;

/// Asks the other side for a sign of life after `idleSeconds` without traffic, then every `intervalSeconds`;
/// after `nProbes` without an answer the connection is lost. Windows before 10 (1703) always sends 10.
int SetKeepAlive(SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) noexcept;

/// Sent bytes that stay unacknowledged for longer, during which there are no signs of life, or for which the
/// other side has no room for longer, end the connection. Without it Linux goes on for about a quarter of an
/// hour; Windows has its own limit, and this is nothing there.
int SetSendLimit(SocketT socket, int seconds) noexcept;

/// Whether what was sent has had to be sent again and is still without an answer: the other side may be cut
/// off. While that is so the system asks for no sign of life. One that answers but takes nothing more does
/// not count. Always false on Windows, which ends such a connection by itself after about 20 s.
bool IsUnanswered(SocketT socket) noexcept;

/// What the system keeps for sending and for receiving, in bytes; it may take more.
int SetSendBuffer(SocketT socket, int bytes) noexcept;
int SetReceiveBuffer(SocketT socket, int bytes) noexcept;

/// The next close ends the connection by a reset instead of a proper end.
int SetResetOnClose(SocketT socket) noexcept;

/// Begins to connect. 0 when connected already; IsConnectPending tells one that goes on.
int ConnectSocket(SocketT socket, const SocketAddressT& address) noexcept;

/// Takes an address for a server. A port that an earlier server has just left is free; one that another
/// server uses is not. Port 0 lets the system choose. An IPv6 address is for IPv6 alone.
int BindSocket(SocketT socket, const SocketAddressT& address) noexcept;
int ListenSocket(SocketT socket, int backlog) noexcept;

/// The next client that waits, or NO_SOCKET and why.
SocketT AcceptSocket(SocketT socket, SocketAddressT& peer, int& error) noexcept;

int LocalAddressOf(SocketT socket, SocketAddressT& address) noexcept;
int PeerAddressOf(SocketT socket, SocketAddressT& address) noexcept;

/// The error that waits on a socket, after a connect for example; asking takes it away.
int TakePendingError(SocketT socket, int& pending) noexcept;

struct TransferT
{
    std::size_t count = 0; ///< bytes moved; when receiving, 0 without an error is the other side's end
    int error = 0;
};

/// Moves as much as can be moved at once, 2^30 bytes at most.
TransferT SendBytes(SocketT socket, const void* bytes, std::size_t count) noexcept;
TransferT ReceiveBytes(SocketT socket, void* bytes, std::size_t capacity) noexcept;

enum class ShutdownKind
{
    Receiving,
    Sending,
    Both
};

/// Ends one direction or both. Those who wait for the socket notice.
int ShutdownSocket(SocketT socket, ShutdownKind kind) noexcept;

} // namespace BSS::HAL
