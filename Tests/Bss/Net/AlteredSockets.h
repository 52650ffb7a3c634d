// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The system's sockets, but for what a test answers in its place.
#pragma once

#include "Bss/Bss_Net/BSS_NET_SocketApi.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace NetTests {

class AlteredSocketsC final : public BSS::NET::SocketApiI
{
public:
    using SocketT = BSS::HAL::SocketT;
    using AddressT = BSS::HAL::SocketAddressT;

    int startUp() override { return m_system.startUp(); }
    int cleanUp() override
    {
        if (onCleanUp) onCleanUp();
        return m_system.cleanUp();
    }
    SocketT open(BSS::HAL::AddressKind kind, int& error) override { return m_system.open(kind, error); }
    int close(SocketT socket) override
    {
        if (onClose) onClose();
        return m_system.close(socket);
    }
    int setNonBlocking(SocketT socket) override { return m_system.setNonBlocking(socket); }
    int setNoDelay(SocketT socket) override
    {
        return optionError != 0 ? optionError.load() : m_system.setNoDelay(socket);
    }
    int setKeepAlive(SocketT socket, int idleSeconds, int intervalSeconds, int nProbes) override
    {
        return optionError != 0 ? optionError.load()
                                : m_system.setKeepAlive(socket, idleSeconds, intervalSeconds, nProbes);
    }
    int setSendLimit(SocketT socket, int seconds) override
    {
        return optionError != 0 ? optionError.load() : m_system.setSendLimit(socket, seconds);
    }
    bool isUnanswered(SocketT socket) override { return m_system.isUnanswered(socket); }
    int connect(SocketT socket, const AddressT& address) override
    {
        return m_system.connect(socket, address);
    }
    int bind(SocketT socket, const AddressT& address) override { return m_system.bind(socket, address); }
    int listen(SocketT socket, int backlog) override
    {
        const int error = m_system.listen(socket, backlog);
        AddressT address;
        if (BSS::HAL::LocalAddressOf(socket, address) == 0) listenedPort = BSS::HAL::PortOf(address);
        return error;
    }
    SocketT accept(SocketT socket, AddressT& peer, int& error) override
    {
        const SocketT accepted = m_system.accept(socket, peer, error);
        const int instead = accepted == BSS::HAL::NO_SOCKET ? 0 : nextAcceptError.exchange(0);
        if (instead == 0) return accepted;
        m_system.close(accepted);
        error = instead;
        return BSS::HAL::NO_SOCKET;
    }
    int takePendingError(SocketT socket, int& pending) override
    {
        return m_system.takePendingError(socket, pending);
    }
    BSS::HAL::TransferT send(SocketT socket, const void* bytes, std::size_t count) override
    {
        return m_system.send(socket, bytes, count);
    }
    BSS::HAL::TransferT receive(SocketT socket, void* bytes, std::size_t capacity) override
    {
        return m_system.receive(socket, bytes, capacity);
    }
    int shutdown(SocketT socket, BSS::HAL::ShutdownKind kind) override
    {
        return m_system.shutdown(socket, kind);
    }
    int poll(BSS::HAL::PollItemT* items, std::size_t count, int timeoutMs, std::size_t& nReady) override
    {
        ++nPolls;
        if (timeoutMs > 0) ++nLimitedPolls;
        if (onPoll) onPoll(timeoutMs);
        nReady = 0;
        return pollError != 0 ? pollError.load() : m_system.poll(items, count, timeoutMs, nReady);
    }

    std::atomic<int> optionError{0};
    std::atomic<int> nextAcceptError{0}; ///< takes the place of the next client that is there
    std::atomic<int> pollError{0};
    std::function<void(int timeoutMs)> onPoll;  ///< to be set before the sockets are used
    std::function<void()> onClose;              ///< likewise
    std::function<void()> onCleanUp;            ///< likewise
    std::atomic<std::uint16_t> listenedPort{0}; ///< the last one
    std::atomic<int> nPolls{0};
    std::atomic<int> nLimitedPolls{0}; ///< those that wait, but not for ever

private:
    BSS::NET::SocketApiI& m_system = BSS::NET::SystemSockets();
};

} // namespace NetTests
