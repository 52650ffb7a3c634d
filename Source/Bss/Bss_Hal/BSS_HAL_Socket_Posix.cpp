// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. There is nothing to start here; the calls are counted by nobody.
#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constexpr std::size_t MAX_TRANSFER_BYTES = std::size_t{1} << 30;

constinit std::atomic<std::int64_t> s_nOpen = 0;

int ErrorOf(int answer) noexcept
{
    return answer == 0 ? 0 : errno;
}

int SetOption(SocketT socket, int level, int option, int value) noexcept
{
    return ErrorOf(::setsockopt(static_cast<int>(socket), level, option, &value, sizeof(value)));
}

const sockaddr* SystemAddress(const SocketAddressT& address) noexcept
{
    return reinterpret_cast<const sockaddr*>(address.bytes.data());
}

SocketT Counted(int socket, int& error) noexcept
{
    error = socket < 0 ? errno : 0;
    if (socket < 0) return NO_SOCKET;
    s_nOpen.fetch_add(1);
    SetOption(socket, SOL_SOCKET, SO_OOBINLINE, 1); // urgent bytes are bytes like others
    return socket;
}

using AskT = int (*)(int, sockaddr*, socklen_t*);

int AddressFrom(AskT ask, SocketT socket, SocketAddressT& address) noexcept
{
    socklen_t length = static_cast<socklen_t>(address.bytes.size());
    const int error =
        ErrorOf(ask(static_cast<int>(socket), reinterpret_cast<sockaddr*>(address.bytes.data()), &length));
    address.length = error == 0 ? length : 0;
    return error;
}

// A signal that is handled elsewhere in the program is no reason to move nothing.
template<typename CallT>
TransferT Transfer(const CallT& call) noexcept
{
    for (;;) {
        const ssize_t count = call();
        if (count >= 0) return {static_cast<std::size_t>(count), 0};
        if (errno != EINTR) return {0, errno};
    }
}

} // namespace

int StartSockets() noexcept
{
    return 0;
}

int StopSockets() noexcept
{
    return 0;
}

std::int64_t OpenSocketCount() noexcept
{
    return s_nOpen.load();
}

SocketT OpenSocket(AddressKind kind, int& error) noexcept
{
    const int family = kind == AddressKind::IPv6 ? AF_INET6 : AF_INET;
    return Counted(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP), error);
}

int CloseSocket(SocketT socket) noexcept
{
    // Interrupted or not, the number is free afterwards.
    if (::close(static_cast<int>(socket)) != 0 && errno != EINTR) return errno;
    s_nOpen.fetch_sub(1);
    return 0;
}

int SetNonBlocking(SocketT socket, bool bNonBlocking) noexcept
{
    int value = bNonBlocking ? 1 : 0;
    return ErrorOf(::ioctl(static_cast<int>(socket), FIONBIO, &value));
}

int SetNoDelay(SocketT socket) noexcept
{
    return SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
}

int SetKeepAlive(SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) noexcept
{
    if (const int error = SetOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds)) return error;
    if (const int error = SetOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, intervalSeconds)) return error;
    if (const int error = SetOption(socket, IPPROTO_TCP, TCP_KEEPCNT, nProbes)) return error;
    return SetOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1);
}

int SetSendLimit(SocketT socket, int seconds) noexcept
{
    return SetOption(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, seconds * 1000);
}

bool IsUnanswered(SocketT socket) noexcept
{
    tcp_info info = {};
    socklen_t length = sizeof(info);
    if (::getsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return false;
    // A first probe of whether there is room again is on its way now and then, however well the other side
    // is.
    return info.tcpi_retransmits > 0 || (info.tcpi_probes > 1 && info.tcpi_unacked == 0);
}

int SetSendBuffer(SocketT socket, int bytes) noexcept
{
    return SetOption(socket, SOL_SOCKET, SO_SNDBUF, bytes);
}

int SetReceiveBuffer(SocketT socket, int bytes) noexcept
{
    return SetOption(socket, SOL_SOCKET, SO_RCVBUF, bytes);
}

int SetResetOnClose(SocketT socket) noexcept
{
    const linger value = {1, 0};
    return ErrorOf(::setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_LINGER, &value, sizeof(value)));
}

int ConnectSocket(SocketT socket, const SocketAddressT& address) noexcept
{
    return ErrorOf(::connect(static_cast<int>(socket), SystemAddress(address), address.length));
}

int BindSocket(SocketT socket, const SocketAddressT& address) noexcept
{
    if (const int error = SetOption(socket, SOL_SOCKET, SO_REUSEADDR, 1)) return error;
    if (KindOf(address) == AddressKind::IPv6) {
        if (const int error = SetOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, 1)) return error;
    }
    return ErrorOf(::bind(static_cast<int>(socket), SystemAddress(address), address.length));
}

int ListenSocket(SocketT socket, int backlog) noexcept
{
    return ErrorOf(::listen(static_cast<int>(socket), backlog));
}

SocketT AcceptSocket(SocketT socket, SocketAddressT& peer, int& error) noexcept
{
    socklen_t length = static_cast<socklen_t>(peer.bytes.size());
    const SocketT accepted =
        Counted(::accept4(static_cast<int>(socket), reinterpret_cast<sockaddr*>(peer.bytes.data()), &length,
                          SOCK_CLOEXEC),
                error);
    peer.length = accepted == NO_SOCKET ? 0 : length;
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
    socklen_t length = sizeof(pending);
    return ErrorOf(::getsockopt(static_cast<int>(socket), SOL_SOCKET, SO_ERROR, &pending, &length));
}

TransferT SendBytes(SocketT socket, const void* bytes, std::size_t count) noexcept
{
    // A connection that is gone answers with an error instead of a signal that ends the host.
    return Transfer([&] {
        return ::send(static_cast<int>(socket), bytes, std::min(count, MAX_TRANSFER_BYTES), MSG_NOSIGNAL);
    });
}

TransferT ReceiveBytes(SocketT socket, void* bytes, std::size_t capacity) noexcept
{
    return Transfer(
        [&] { return ::recv(static_cast<int>(socket), bytes, std::min(capacity, MAX_TRANSFER_BYTES), 0); });
}

int ShutdownSocket(SocketT socket, ShutdownKind kind) noexcept
{
    const int how = kind == ShutdownKind::Both      ? SHUT_RDWR
                    : kind == ShutdownKind::Sending ? SHUT_WR
                                                    : SHUT_RD;
    return ErrorOf(::shutdown(static_cast<int>(socket), how));
}

} // namespace BSS::HAL
