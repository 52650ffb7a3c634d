// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's poll does not tell of a connect that has failed, before late versions of it; select does. Its
// limit is in the size of a list that the caller makes, so lists are made as long as they have to be.
#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"

#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace BSS::HAL {

namespace {

// A list of sockets as the system lays it out: the count, then the sockets. The count is half as wide as the
// place it has.
class SocketListC
{
public:
    explicit SocketListC(std::size_t capacity) noexcept
    {
        static_assert(offsetof(fd_set, fd_array) == sizeof(SOCKET));
        if (capacity < m_few.size()) return;
        m_many.reset(new (std::nothrow) SOCKET[capacity + 1]());
        m_list = m_many.get();
    }
    SocketListC(const SocketListC&) = delete;
    SocketListC& operator=(const SocketListC&) = delete;

    bool isMade() const noexcept { return m_list != nullptr; }
    fd_set* system() noexcept { return reinterpret_cast<fd_set*>(m_list); }
    bool isEmpty() const noexcept { return count() == 0; }

    void add(SocketT socket) noexcept
    {
        const u_int next = count() + 1;
        m_list[next] = static_cast<SOCKET>(socket);
        std::memcpy(m_list, &next, sizeof(next));
    }

    bool has(SocketT socket) const noexcept
    {
        const SOCKET* const end = m_list + 1 + count();
        return std::find<const SOCKET*>(m_list + 1, end, static_cast<SOCKET>(socket)) != end;
    }

private:
    u_int count() const noexcept
    {
        u_int value = 0;
        std::memcpy(&value, m_list, sizeof(value));
        return value;
    }

    std::array<SOCKET, 17> m_few = {};
    std::unique_ptr<SOCKET[]> m_many;
    SOCKET* m_list = m_few.data();
};

} // namespace

int PollSockets(PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) noexcept
{
    nReady = 0;
    SocketListC reading(count);
    SocketListC writing(count);
    SocketListC failing(count);
    if (!reading.isMade() || !writing.isMade() || !failing.isMade()) return WSA_NOT_ENOUGH_MEMORY;
    for (PollItemT* item = items; item != items + count; ++item) {
        item->canRead = item->canWrite = item->failed = false;
        if (item->socket == NO_SOCKET) continue;
        if (item->wantRead) reading.add(item->socket);
        if (item->wantWrite) writing.add(item->socket);
        failing.add(item->socket);
    }
    if (failing.isEmpty()) { // the system refuses to wait for nothing
        Sleep(timeoutMs < 0 ? INFINITE : static_cast<DWORD>(timeoutMs));
        return 0;
    }
    timeval limit = {timeoutMs / 1000, timeoutMs % 1000 * 1000};
    const int answer =
        ::select(0, reading.system(), writing.system(), failing.system(), timeoutMs < 0 ? nullptr : &limit);
    if (answer == SOCKET_ERROR) return WSAGetLastError();
    for (PollItemT* item = items; item != items + count; ++item) {
        if (item->socket == NO_SOCKET) continue;
        item->canRead = reading.has(item->socket);
        item->canWrite = writing.has(item->socket);
        item->failed = failing.has(item->socket);
        if (item->canRead || item->canWrite || item->failed) ++nReady;
    }
    return 0;
}

// A datagram socket that is connected to itself.
SocketWakerC::SocketWakerC() noexcept
{
    const SOCKET socket = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (socket == INVALID_SOCKET) return;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof(address);
    u_long nonBlocking = 1;
    auto* const system = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket, system, length) != 0 || ::getsockname(socket, system, &length) != 0 ||
        ::connect(socket, system, length) != 0 ||
        ::ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking) != 0) {
        ::closesocket(socket);
        return;
    }
    m_reading = static_cast<SocketT>(socket);
    m_writing = m_reading;
}

SocketWakerC::~SocketWakerC()
{
    if (m_reading != NO_SOCKET) ::closesocket(static_cast<SOCKET>(m_reading));
}

void SocketWakerC::wake() noexcept
{
    if (m_writing != NO_SOCKET) SendBytes(m_writing, "", 1);
}

void SocketWakerC::drain() noexcept
{
    std::array<char, 64> bytes;
    while (m_reading != NO_SOCKET && ReceiveBytes(m_reading, bytes.data(), bytes.size()).count > 0) {
    }
}

} // namespace BSS::HAL
