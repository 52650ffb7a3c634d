// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <array>
#include <string_view>

namespace BSS::HAL {

std::string SocketErrorText(int error)
{
    std::array<wchar_t, 512> buffer = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(error), 0, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
    std::wstring_view words(buffer.data(), length);
    while (!words.empty() && (words.back() == L'\r' || words.back() == L'\n' || words.back() == L' '))
        words.remove_suffix(1);
    return std::to_string(error) + ": " + (words.empty() ? "Unknown error" : Utf8FromWide(words));
}

bool IsWouldBlock(int error) noexcept
{
    return error == WSAEWOULDBLOCK;
}

bool IsConnectPending(int error) noexcept
{
    return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS || error == WSAEALREADY;
}

bool IsConnectionLost(int error) noexcept
{
    switch (error) {
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENETRESET:
    case WSAETIMEDOUT:
    case WSAESHUTDOWN:
    case WSAENETDOWN:
    case WSAENETUNREACH:
    case WSAEHOSTUNREACH:
        return true;
    default:
        return false;
    }
}

bool IsNotConnected(int error) noexcept
{
    return error == WSAENOTCONN || error == WSAENOTSOCK;
}

} // namespace BSS::HAL
