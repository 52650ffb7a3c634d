// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

#include <array>
#include <cerrno>
#include <cstring>

namespace BSS::HAL {

namespace {

// strerror_r comes in two kinds; which one depends on how the C library was asked for.
[[maybe_unused]] const char* Words(int answer, const char* buffer) noexcept
{
    return answer == 0 ? buffer : "Unknown error";
}
[[maybe_unused]] const char* Words(const char* answer, const char*) noexcept
{
    return answer;
}

} // namespace

std::string SocketErrorText(int error)
{
    std::array<char, 256> buffer = {};
    const char* words = Words(::strerror_r(error, buffer.data(), buffer.size()), buffer.data());
    return std::to_string(error) + ": " + words;
}

bool IsWouldBlock(int error) noexcept
{
    return error == EAGAIN || error == EWOULDBLOCK;
}

bool IsConnectPending(int error) noexcept
{
    return error == EINPROGRESS || error == EINTR || IsWouldBlock(error);
}

bool IsConnectionLost(int error) noexcept
{
    switch (error) {
    case ECONNRESET:
    case EPIPE:
    case ECONNABORTED:
    case ETIMEDOUT:
    case ENETDOWN:
    case ENETUNREACH:
    case EHOSTUNREACH:
        return true;
    default:
        return false;
    }
}

bool IsNotConnected(int error) noexcept
{
    return error == ENOTCONN || error == EBADF || error == ENOTSOCK;
}

} // namespace BSS::HAL
