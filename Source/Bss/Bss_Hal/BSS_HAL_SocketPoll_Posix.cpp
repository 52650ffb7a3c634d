// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"

#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constexpr std::size_t FEW = 16; // as many need no memory

// Until when to go on after a signal.
int Wait(pollfd* list, std::size_t count, int timeoutMs) noexcept
{
    int answer = ::poll(list, static_cast<nfds_t>(count), timeoutMs);
    if (answer >= 0 || errno != EINTR) return answer;
    const std::int64_t end = TickMicroseconds() + std::int64_t{timeoutMs} * 1000;
    while (answer < 0 && errno == EINTR) {
        int leftMs = timeoutMs;
        if (timeoutMs > 0) {
            const std::int64_t left = end - TickMicroseconds();
            leftMs = left > 0 ? static_cast<int>((left + 999) / 1000) : 0;
        }
        answer = ::poll(list, static_cast<nfds_t>(count), leftMs);
    }
    return answer;
}

pollfd Asked(const PollItemT& item) noexcept
{
    const int events = (item.wantRead ? POLLIN : 0) | (item.wantWrite ? POLLOUT : 0);
    return {static_cast<int>(item.socket), static_cast<short>(events), 0};
}

void Answer(PollItemT& item, int events) noexcept
{
    item.canRead = item.wantRead && (events & (POLLIN | POLLHUP | POLLERR)) != 0;
    item.canWrite = item.wantWrite && (events & POLLOUT) != 0;
    item.failed = (events & (POLLERR | POLLNVAL)) != 0;
}

} // namespace

int PollSockets(PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) noexcept
{
    nReady = 0;
    std::array<pollfd, FEW> few;
    std::unique_ptr<pollfd[]> many;
    if (count > FEW) many.reset(new (std::nothrow) pollfd[count]);
    if (count > FEW && !many) return ENOMEM;
    pollfd* const list = count > FEW ? many.get() : few.data();
    for (std::size_t n = 0; n < count; ++n)
        list[n] = Asked(items[n]);
    const int answer = Wait(list, count, timeoutMs);
    if (answer < 0) return errno;
    for (std::size_t n = 0; n < count; ++n)
        Answer(items[n], answer > 0 ? list[n].revents : 0);
    nReady = static_cast<std::size_t>(answer);
    return 0;
}

SocketWakerC::SocketWakerC() noexcept
{
    std::array<int, 2> pair = {};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, pair.data()) != 0) return;
    m_reading = pair[0];
    m_writing = pair[1];
}

SocketWakerC::~SocketWakerC()
{
    if (m_reading == NO_SOCKET) return;
    ::close(static_cast<int>(m_reading));
    ::close(static_cast<int>(m_writing));
}

void SocketWakerC::wake() noexcept
{
    // One that is full wakes as well.
    if (m_writing != NO_SOCKET) SendBytes(m_writing, "", 1);
}

void SocketWakerC::drain() noexcept
{
    std::array<char, 64> bytes;
    while (m_reading != NO_SOCKET &&
           ReceiveBytes(m_reading, bytes.data(), bytes.size()).count == bytes.size()) {
    }
}

} // namespace BSS::HAL
