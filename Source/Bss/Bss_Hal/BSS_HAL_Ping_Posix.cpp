// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system has echo sockets for groups of users that it is told, and raw ones for those who may everything.
// With the former it fills in the number of the request and the checksum.
#include "Bss/Bss_Hal/BSS_HAL_Ping.h"

#include "Bss/Bss_Hal/BSS_HAL_Socket.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constexpr std::size_t HEADER_BYTES = 8;
constexpr std::size_t REQUEST_BYTES = HEADER_BYTES + 32;

// What tells one kind of address from the other.
struct KindT
{
    int family;
    int protocol;
    std::uint8_t request;
    std::uint8_t reply;
};
constexpr KindT IPV4 = {AF_INET, IPPROTO_ICMP, 8, 0};
constexpr KindT IPV6 = {AF_INET6, IPPROTO_ICMPV6, 128, 129};

using PacketT = std::array<std::uint8_t, REQUEST_BYTES>;

constinit std::atomic<std::uint32_t> s_nRequests = 0;

void Put16(PacketT& packet, std::size_t place, std::uint32_t value) noexcept
{
    packet[place] = static_cast<std::uint8_t>(value >> 8);
    packet[place + 1] = static_cast<std::uint8_t>(value);
}

// The sum of all units of 16 bits, with its carries.
std::uint32_t Checksum(const PacketT& packet) noexcept
{
    std::uint32_t sum = 0;
    for (std::size_t n = 0; n < packet.size(); n += 2)
        sum += static_cast<std::uint32_t>(packet[n] << 8 | packet[n + 1]);
    while (sum >> 16 != 0)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return ~sum & 0xFFFF;
}

PacketT Request(const KindT& kind, std::uint32_t number) noexcept
{
    PacketT packet = {};
    packet[0] = kind.request;
    Put16(packet, 4, number >> 16);
    Put16(packet, 6, number);
    // The system does it itself for the newer protocol.
    if (kind.protocol == IPPROTO_ICMP) Put16(packet, 2, Checksum(packet));
    return packet;
}

// An echo socket's request gets its identity from the system; only a raw one comes back with ours.
bool IsOurReply(const KindT& kind, const PacketT& request, const std::uint8_t* bytes, std::size_t count,
                bool bRaw) noexcept
{
    if (bRaw && kind.family == AF_INET && count > 0) { // the header of the network comes along
        const std::size_t header = static_cast<std::size_t>(bytes[0] & 0x0F) * 4;
        if (header > count) return false;
        bytes += header;
        count -= header;
    }
    if (count < HEADER_BYTES || bytes[0] != kind.reply) return false;
    if (bRaw && (bytes[4] != request[4] || bytes[5] != request[5])) return false;
    return bytes[6] == request[6] && bytes[7] == request[7];
}

PingResultT WaitForReply(int socket, const KindT& kind, const PacketT& request, int timeoutMs,
                         bool bRaw) noexcept
{
    const std::int64_t begin = TickMicroseconds();
    for (;;) {
        const std::int64_t leftUs = begin + std::int64_t{timeoutMs} * 1000 - TickMicroseconds();
        PollItemT item{socket, true};
        std::size_t nReady = 0;
        if (const int error =
                PollSockets(&item, 1, leftUs > 0 ? static_cast<int>((leftUs + 999) / 1000) : 0, nReady))
            return {PingAnswer::Failed, 0, error};
        if (nReady == 0) return {PingAnswer::TimedOut, 0, 0};
        std::array<std::uint8_t, 2048> bytes = {};
        const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN && errno != EINTR) return {PingAnswer::TimedOut, 0, errno};
        if (count > 0 && IsOurReply(kind, request, bytes.data(), static_cast<std::size_t>(count), bRaw))
            return {PingAnswer::Answered, TickMicroseconds() - begin, 0};
        if (leftUs <= 0) return {PingAnswer::TimedOut, 0, 0};
    }
}

} // namespace

PingResultT Ping(const SocketAddressT& address, int timeoutMs) noexcept
{
    if (KindOf(address) == AddressKind::None) return {PingAnswer::Failed, 0, EINVAL};
    const KindT& kind = KindOf(address) == AddressKind::IPv6 ? IPV6 : IPV4;
    bool bRaw = false;
    int socket = ::socket(kind.family, SOCK_DGRAM | SOCK_CLOEXEC, kind.protocol);
    if (socket < 0) {
        bRaw = true;
        socket = ::socket(kind.family, SOCK_RAW | SOCK_CLOEXEC, kind.protocol);
    }
    if (socket < 0) {
        const bool bForbidden = errno == EACCES || errno == EPERM;
        return {bForbidden ? PingAnswer::NotPermitted : PingAnswer::Failed, 0, errno};
    }
    const std::uint32_t identity = static_cast<std::uint32_t>(::getpid()) << 16;
    const PacketT request = Request(kind, identity | (s_nRequests.fetch_add(1) & 0xFFFF));
    const ssize_t sent = ::sendto(socket, request.data(), request.size(), MSG_NOSIGNAL,
                                  reinterpret_cast<const sockaddr*>(address.bytes.data()), address.length);
    PingResultT result;
    if (sent < 0) {
        const bool bAway = errno == ENETUNREACH || errno == EHOSTUNREACH;
        result = {bAway ? PingAnswer::TimedOut : PingAnswer::Failed, 0, errno};
    } else {
        result = WaitForReply(socket, kind, request, timeoutMs, bRaw);
    }
    ::close(socket);
    return result;
}

} // namespace BSS::HAL
