// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_SocketApi.h"

namespace BSS::NET {

namespace {

class SystemSocketsC final : public SocketApiI
{
public:
    int startUp() override { return HAL::StartSockets(); }
    int cleanUp() override { return HAL::StopSockets(); }
    HAL::SocketT open(HAL::AddressKind kind, int& error) override { return HAL::OpenSocket(kind, error); }
    int close(HAL::SocketT socket) override { return HAL::CloseSocket(socket); }
    int setNonBlocking(HAL::SocketT socket) override { return HAL::SetNonBlocking(socket, true); }
    int setNoDelay(HAL::SocketT socket) override { return HAL::SetNoDelay(socket); }
    int setKeepAlive(HAL::SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) override
    {
        return HAL::SetKeepAlive(socket, idleSeconds, intervalSeconds, nProbes);
    }
    int setSendLimit(HAL::SocketT socket, int seconds) override { return HAL::SetSendLimit(socket, seconds); }
    bool isUnanswered(HAL::SocketT socket) override { return HAL::IsUnanswered(socket); }
    int connect(HAL::SocketT socket, const HAL::SocketAddressT& address) override
    {
        return HAL::ConnectSocket(socket, address);
    }
    int bind(HAL::SocketT socket, const HAL::SocketAddressT& address) override
    {
        return HAL::BindSocket(socket, address);
    }
    int listen(HAL::SocketT socket, int backlog) override { return HAL::ListenSocket(socket, backlog); }
    HAL::SocketT accept(HAL::SocketT socket, HAL::SocketAddressT& peer, int& error) override
    {
        return HAL::AcceptSocket(socket, peer, error);
    }
    int takePendingError(HAL::SocketT socket, int& pending) override
    {
        return HAL::TakePendingError(socket, pending);
    }
    HAL::TransferT send(HAL::SocketT socket, const void* bytes, std::size_t count) override
    {
        return HAL::SendBytes(socket, bytes, count);
    }
    HAL::TransferT receive(HAL::SocketT socket, void* bytes, std::size_t capacity) override
    {
        return HAL::ReceiveBytes(socket, bytes, capacity);
    }
    int shutdown(HAL::SocketT socket, HAL::ShutdownKind kind) override
    {
        return HAL::ShutdownSocket(socket, kind);
    }
    int poll(HAL::PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) override
    {
        return HAL::PollSockets(items, count, timeoutMs, nReady);
    }
};

} // namespace

SocketApiI& SystemSockets() noexcept
{
    static constinit SystemSocketsC sockets;
    return sockets;
}

} // namespace BSS::NET
