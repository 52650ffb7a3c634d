// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Sockets on the loopback address for tests: a server that waits for clients, and connected pairs.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Socket.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketError.h"
#include "Bss/Bss_Hal/BSS_HAL_SocketPoll.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace NetTests {

inline constexpr int LONG_MS = 20000;

/// Sockets are started while it lives.
class SocketsStartedC
{
public:
    SocketsStartedC() { EXPECT_EQ(BSS::HAL::StartSockets(), 0); }
    ~SocketsStartedC() { EXPECT_EQ(BSS::HAL::StopSockets(), 0); }
    SocketsStartedC(const SocketsStartedC&) = delete;
    SocketsStartedC& operator=(const SocketsStartedC&) = delete;
};

/// Owns a socket.
class HeldSocketC
{
public:
    explicit HeldSocketC(BSS::HAL::SocketT socket = BSS::HAL::NO_SOCKET) : m_socket(socket) {}
    HeldSocketC(HeldSocketC&& other) noexcept : m_socket(std::exchange(other.m_socket, BSS::HAL::NO_SOCKET))
    {}
    HeldSocketC& operator=(HeldSocketC&& other) noexcept
    {
        std::swap(m_socket, other.m_socket);
        return *this;
    }
    ~HeldSocketC() { close(); }

    operator BSS::HAL::SocketT() const { return m_socket; }
    void close()
    {
        if (m_socket != BSS::HAL::NO_SOCKET) {
            EXPECT_EQ(BSS::HAL::CloseSocket(m_socket), 0);
        }
        m_socket = BSS::HAL::NO_SOCKET;
    }
    /// Ends the connection without a proper end.
    void reset()
    {
        EXPECT_EQ(BSS::HAL::SetResetOnClose(m_socket), 0);
        close();
    }

private:
    BSS::HAL::SocketT m_socket;
};

inline HeldSocketC Open(BSS::HAL::AddressKind kind = BSS::HAL::AddressKind::IPv4)
{
    int error = 0;
    HeldSocketC socket(BSS::HAL::OpenSocket(kind, error));
    EXPECT_EQ(error, 0);
    return socket;
}

inline BSS::HAL::SocketAddressT Address(const std::string& text, std::uint16_t port)
{
    BSS::HAL::SocketAddressT address;
    EXPECT_TRUE(BSS::HAL::ParseAddress(text, port, address)) << text;
    return address;
}

inline bool CanRead(BSS::HAL::SocketT socket, int timeoutMs = LONG_MS)
{
    BSS::HAL::PollItemT item{socket, true};
    std::size_t nReady = 0;
    EXPECT_EQ(BSS::HAL::PollSockets(&item, 1, timeoutMs, nReady), 0);
    return item.canRead;
}

/// A server that listens.
class ListenerC
{
public:
    explicit ListenerC(const std::string& text = "127.0.0.1", std::uint16_t port = 0, int backlog = 64)
        : m_socket(Open(BSS::HAL::KindOf(Address(text, port))))
    {
        EXPECT_EQ(BSS::HAL::BindSocket(m_socket, Address(text, port)), 0);
        EXPECT_EQ(BSS::HAL::ListenSocket(m_socket, backlog), 0);
        EXPECT_EQ(BSS::HAL::LocalAddressOf(m_socket, m_address), 0);
    }

    const BSS::HAL::SocketAddressT& address() const { return m_address; }
    std::uint16_t port() const { return BSS::HAL::PortOf(m_address); }
    BSS::HAL::SocketT socket() const { return m_socket; }
    void close() { m_socket.close(); }

    /// The next client; waits for it.
    HeldSocketC accept()
    {
        if (!CanRead(m_socket)) {
            ADD_FAILURE() << "nobody came";
            return HeldSocketC();
        }
        BSS::HAL::SocketAddressT peer;
        int error = 0;
        HeldSocketC client(BSS::HAL::AcceptSocket(m_socket, peer, error));
        EXPECT_EQ(error, 0);
        return client;
    }

private:
    HeldSocketC m_socket;
    BSS::HAL::SocketAddressT m_address;
};

/// Two ends of one connection, blocking.
struct PairT
{
    HeldSocketC client;
    HeldSocketC server;
};

inline PairT Pair(const std::string& text = "127.0.0.1")
{
    ListenerC listener(text);
    PairT pair{Open(BSS::HAL::KindOf(listener.address())), HeldSocketC()};
    EXPECT_EQ(BSS::HAL::ConnectSocket(pair.client, listener.address()), 0);
    pair.server = listener.accept();
    return pair;
}

/// A port where nobody listens, and that the system gives to nobody else while this lives.
class DeadPortC
{
public:
    explicit DeadPortC(const std::string& text = "127.0.0.1") : m_text(text), m_socket(Open())
    {
        BSS::HAL::SocketAddressT address;
        EXPECT_EQ(BSS::HAL::BindSocket(m_socket, Address(m_text, 0)), 0);
        EXPECT_EQ(BSS::HAL::LocalAddressOf(m_socket, address), 0);
        m_port = BSS::HAL::PortOf(address);
    }

    std::uint16_t port() const { return m_port; }

    /// Listens there; dead again when that has ended. Where the system lets nobody in beside the socket that
    /// keeps the port, it is kept no longer.
    ListenerC listen()
    {
        if (BSS::HAL::BindSocket(Open(), Address(m_text, m_port)) != 0) m_socket.close();
        return ListenerC(m_text, m_port);
    }

private:
    const std::string m_text;
    HeldSocketC m_socket;
    std::uint16_t m_port = 0;
};

/// "127.0.0.1", and "::1" where this network has it: containers often have not.
inline std::vector<const char*> LoopbackAddresses()
{
    std::vector<const char*> addresses = {"127.0.0.1"};
    BSS::HAL::StartSockets();
    BSS::HAL::SocketAddressT address;
    int error = 0;
    const BSS::HAL::SocketT socket = BSS::HAL::OpenSocket(BSS::HAL::AddressKind::IPv6, error);
    if (socket != BSS::HAL::NO_SOCKET) {
        if (BSS::HAL::ParseAddress("::1", 0, address) && BSS::HAL::BindSocket(socket, address) == 0)
            addresses.push_back("::1");
        BSS::HAL::CloseSocket(socket);
    }
    BSS::HAL::StopSockets();
    return addresses;
}

} // namespace NetTests
