// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Echo requests are a service of their own here, in a system library that is looked up at run time, so that
// programs that never ask do not depend on it.
#include "Bss/Bss_Hal/BSS_HAL_Ping.h"

#include "Bss/Bss_Hal/BSS_HAL_Winsock.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <iphlpapi.h>

#include <icmpapi.h>

namespace BSS::HAL {

namespace {

// The answer of the newer protocol as the system lays it out; not every compiler's headers have it.
struct EchoReply6T
{
    std::array<unsigned char, 26> address;
    ULONG status;
    ULONG roundTripMs;
};
static_assert(offsetof(EchoReply6T, status) == 28 && offsetof(EchoReply6T, roundTripMs) == 32);

struct ServiceT
{
    decltype(&IcmpCreateFile) create = nullptr;
    decltype(&Icmp6CreateFile) create6 = nullptr;
    decltype(&IcmpSendEcho) send = nullptr;
    decltype(&Icmp6SendEcho2) send6 = nullptr;
    decltype(&IcmpCloseHandle) close = nullptr;
    bool bFound = false;
};

template<typename FunctionT>
void Find(HMODULE library, const char* name, FunctionT& function) noexcept
{
    const FARPROC found = GetProcAddress(library, name);
    static_assert(sizeof(found) == sizeof(function));
    std::memcpy(&function, &found, sizeof(function));
}

ServiceT FindService() noexcept
{
    ServiceT service;
    const HMODULE library = LoadLibraryW(L"iphlpapi.dll");
    if (library == nullptr) return service;
    Find(library, "IcmpCreateFile", service.create);
    Find(library, "Icmp6CreateFile", service.create6);
    Find(library, "IcmpSendEcho", service.send);
    Find(library, "Icmp6SendEcho2", service.send6);
    Find(library, "IcmpCloseHandle", service.close);
    service.bFound = service.create != nullptr && service.create6 != nullptr && service.send != nullptr &&
                     service.send6 != nullptr && service.close != nullptr;
    return service;
}

PingResultT ResultOf(DWORD nReplies, ULONG status, ULONG roundTripMs) noexcept
{
    if (nReplies > 0 && status == IP_SUCCESS)
        return {PingAnswer::Answered, std::int64_t{roundTripMs} * 1000, 0};
    const DWORD error = nReplies > 0 ? status : GetLastError();
    if (error == ERROR_ACCESS_DENIED) return {PingAnswer::NotPermitted, 0, static_cast<int>(error)};
    const bool bAway = error >= IP_STATUS_BASE && error < MAX_IP_STATUS;
    return {bAway ? PingAnswer::TimedOut : PingAnswer::Failed, 0, static_cast<int>(error)};
}

} // namespace

PingResultT Ping(const SocketAddressT& address, int timeoutMs) noexcept
{
    static const ServiceT s_service = FindService();
    const AddressKind kind = KindOf(address);
    if (!s_service.bFound || kind == AddressKind::None) return {PingAnswer::Failed, 0, ERROR_NOT_SUPPORTED};
    const bool bNewer = kind == AddressKind::IPv6;
    const HANDLE handle = bNewer ? s_service.create6() : s_service.create();
    if (handle == INVALID_HANDLE_VALUE) return ResultOf(0, 0, 0);
    std::array<char, 32> request = {};
    alignas(8) std::array<unsigned char, 1024> reply = {};
    const DWORD size = static_cast<DWORD>(reply.size());
    const DWORD limit = static_cast<DWORD>(timeoutMs);
    PingResultT result;
    if (bNewer) {
        sockaddr_in6 from = {};
        from.sin6_family = AF_INET6;
        sockaddr_in6 to = {};
        std::memcpy(&to, address.bytes.data(), sizeof(to));
        const DWORD count =
            s_service.send6(handle, nullptr, nullptr, nullptr, &from, &to, request.data(),
                            static_cast<WORD>(request.size()), nullptr, reply.data(), size, limit);
        EchoReply6T answer = {};
        std::memcpy(&answer, reply.data(), sizeof(answer));
        result = ResultOf(count, answer.status, answer.roundTripMs);
    } else {
        sockaddr_in to = {};
        std::memcpy(&to, address.bytes.data(), sizeof(to));
        const DWORD count =
            s_service.send(handle, to.sin_addr.s_addr, request.data(), static_cast<WORD>(request.size()),
                           nullptr, reply.data(), size, limit);
        ICMP_ECHO_REPLY answer = {};
        std::memcpy(&answer, reply.data(), sizeof(answer));
        result = ResultOf(count, answer.Status, answer.RoundTripTime);
    }
    s_service.close(handle);
    return result;
}

} // namespace BSS::HAL
