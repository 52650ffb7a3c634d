// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <algorithm>
#include <atomic>

namespace BSS::HAL {

namespace {

constexpr std::size_t MAX_TRANSFER_BYTES = std::size_t{1} << 30;

constinit std::atomic<std::int64_t> s_nOpen = 0;

SOCKET Native(SocketT socket) noexcept
{
    return static_cast<SOCKET>(socket);
}

int ErrorOf(int answer) noexcept
{
    return answer == 0 ? 0 : WSAGetLastError();
}

int SetOption(SocketT socket, int level, int option, DWORD value) noexcept
{
    return ErrorOf(
        ::setsockopt(Native(socket), level, option, reinterpret_cast<const char*>(&value), sizeof(value)));
}

const sockaddr* SystemAddress(const SocketAddressT& address) noexcept
{
    return reinterpret_cast<const sockaddr*>(address.bytes.data());
}

SocketT Counted(SOCKET socket, int& error) noexcept
{
    error = socket == INVALID_SOCKET ? WSAGetLastError() : 0;
    if (socket == INVALID_SOCKET) return NO_SOCKET;
    s_nOpen.fetch_add(1);
    // Refused by some network drivers; then a child process inherits the socket, which harms nothing here.
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
    // Urgent bytes are bytes like others; a wait would take them for a failure.
    SetOption(static_cast<SocketT>(socket), SOL_SOCKET, SO_OOBINLINE, 1);
    return static_cast<SocketT>(socket);
}

using AskT = int(WSAAPI*)(SOCKET, sockaddr*, int*);

int AddressFrom(AskT ask, SocketT socket, SocketAddressT& address) noexcept
{
    int length = static_cast<int>(address.bytes.size());
    const int error =
        ErrorOf(ask(Native(socket), reinterpret_cast<sockaddr*>(address.bytes.data()), &length));
    address.length = error == 0 ? static_cast<std::uint32_t>(length) : 0;
    return error;
}

TransferT Answer(int count) noexcept
{
    if (count == SOCKET_ERROR) return {0, WSAGetLastError()};
    return {static_cast<std::size_t>(count), 0};
}

} // namespace

// The system counts the calls itself and wants as many of the other kind.
int StartSockets() noexcept
{
    WSADATA data = {};
    return WSAStartup(MAKEWORD(2, 2), &data);
}

int StopSockets() noexcept
{
    return ErrorOf(WSACleanup());
}

std::int64_t OpenSocketCount() noexcept
{
    return s_nOpen.load();
}

SocketT OpenSocket(AddressKind kind, int& error) noexcept
{
    return Counted(::socket(kind == AddressKind::IPv6 ? AF_INET6 : AF_INET, SOCK_STREAM, IPPROTO_TCP), error);
}

int CloseSocket(SocketT socket) noexcept
{
    const int error = ErrorOf(::closesocket(Native(socket)));
    if (error == 0) s_nOpen.fetch_sub(1);
    return error;
}

int SetNonBlocking(SocketT socket, bool bNonBlocking) noexcept
{
    u_long value = bNonBlocking ? 1 : 0;
    return ErrorOf(::ioctlsocket(Native(socket), static_cast<long>(FIONBIO), &value));
}

int SetNoDelay(SocketT socket) noexcept
{
    return SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
}

int SetKeepAlive(SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) noexcept
{
    // Older systems refuse this and stay with their own number.
    constexpr int PROBES_OPTION = 16;
    static_cast<void>(SetOption(socket, IPPROTO_TCP, PROBES_OPTION, static_cast<DWORD>(nProbes)));
    tcp_keepalive values = {};
    values.onoff = 1;
    values.keepalivetime = static_cast<u_long>(idleSeconds) * 1000;
    values.keepaliveinterval = static_cast<u_long>(intervalSeconds) * 1000;
    DWORD length = 0;
    return ErrorOf(WSAIoctl(Native(socket), SIO_KEEPALIVE_VALS, &values, sizeof(values), nullptr, 0, &length,
                            nullptr, nullptr));
}

int SetSendLimit(SocketT, int) noexcept
{
    return 0;
}

bool IsUnanswered(SocketT) noexcept
{
    return false;
}

int SetSendBuffer(SocketT socket, int bytes) noexcept
{
    return SetOption(socket, SOL_SOCKET, SO_SNDBUF, static_cast<DWORD>(bytes));
}

int SetReceiveBuffer(SocketT socket, int bytes) noexcept
{
    return SetOption(socket, SOL_SOCKET, SO_RCVBUF, static_cast<DWORD>(bytes));
}

int SetResetOnClose(SocketT socket) noexcept
{
    const linger value = {1, 0};
    return ErrorOf(::setsockopt(Native(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&value),
                                sizeof(value)));
}

int ConnectSocket(SocketT socket, const SocketAddressT& address) noexcept
{
    return ErrorOf(::connect(Native(socket), SystemAddress(address), static_cast<int>(address.length)));
}

int BindSocket(SocketT socket, const SocketAddressT& address) noexcept
{
    // Here a port that was just left is free anyway, and the option of that name would let a second server
    // in.
    if (const int error = SetOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1)) return error;
    if (KindOf(address) == AddressKind::IPv6) {
        if (const int error = SetOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, 1)) return error;
    }
    return ErrorOf(::bind(Native(socket), SystemAddress(address), static_cast<int>(address.length)));
}

int ListenSocket(SocketT socket, int backlog) noexcept
{
    return ErrorOf(::listen(Native(socket), backlog));
}

SocketT AcceptSocket(SocketT socket, SocketAddressT& peer, int& error) noexcept
{
    int length = static_cast<int>(peer.bytes.size());
    const SocketT accepted =
        Counted(::accept(Native(socket), reinterpret_cast<sockaddr*>(peer.bytes.data()), &length), error);
    peer.length = accepted == NO_SOCKET ? 0 : static_cast<std::uint32_t>(length);
    // The system hands the listener's mode down; elsewhere it does not.
    if (accepted != NO_SOCKET) SetNonBlocking(accepted, false);
    return accepted;
}

int LocalAddressOf(SocketT socket, SocketAddressT& address) noexcept
{
    return AddressFrom(&::getsockname, socket, address);
}

int PeerAddressOf(SocketT socket, SocketAddressT& address) noexcept
{
    return AddressFrom(&::getpeername, socket, address);
}

int TakePendingError(SocketT socket, int& pending) noexcept
{
    int length = sizeof(pending);
    return ErrorOf(
        ::getsockopt(Native(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&pending), &length));
}

TransferT SendBytes(SocketT socket, const void* bytes, std::size_t count) noexcept
{
    return Answer(::send(Native(socket), static_cast<const char*>(bytes),
                         static_cast<int>(std::min(count, MAX_TRANSFER_BYTES)), 0));
}

TransferT ReceiveBytes(SocketT socket, void* bytes, std::size_t capacity) noexcept
{
    return Answer(::recv(Native(socket), static_cast<char*>(bytes),
                         static_cast<int>(std::min(capacity, MAX_TRANSFER_BYTES)), 0));
}

int ShutdownSocket(SocketT socket, ShutdownKind kind) noexcept
{
    const int how = kind == ShutdownKind::Both      ? SD_BOTH
                    : kind == ShutdownKind::Sending ? SD_SEND
                                                    : SD_RECEIVE;
    return ErrorOf(::shutdown(Native(socket), how));
}

} // namespace BSS::HAL
