// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the state machine of the TCP/IP client needs of its surroundings: the client, who does what there is
// to do with the socket, and a timer. All of it is called on the machine's thread, but for shutdownSocket.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_PortEvents.h"
#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Socket.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfg.h"

#include <cstdint>

namespace BSS::NET {

/// The last result of a machine that was closed by close(). A directory search has the same number.
inline constexpr ResultCodeT RC_CLOSE_CALLED = 0x02000008;

/// The answer of an attempt that a request has ended before its time; never a last result.
inline constexpr ResultCodeT RC_ATTEMPT_CANCELLED = 0xFFFFFFFF;

class TcpIpClientI
{
public:
    virtual bool isSocketValid() const = 0;
    virtual AutoConnect getAutoConnect() const = 0;

    /// Opens a socket and connects it. RC_OK when the connection stands; no socket is open otherwise.
    /// RC_ATTEMPT_CANCELLED when something else is wanted meanwhile.
    [[nodiscard]] virtual ResultCodeT setupConnection() = 0;

    /// Waits for the connection of a socket that is open; answers as setupConnection.
    [[nodiscard]] virtual ResultCodeT waitForConnection() = 0;

    /// Ends the connection; the socket stays open.
    virtual void shutdownConnection() = 0;

    /// Waits until nobody uses the socket any more and closes it. Nothing when there is none.
    virtual void closeSocket() = 0;

    /// Asks for executeClose() and then ends the connection, on behalf of close(), from any thread: the
    /// number of the socket and the system's error. NO_SOCKET when there is none.
    virtual HAL::SocketT shutdownSocket(int& error) = 0;

    /// Tells the reader and the writer.
    virtual void forwardPortEvent(BIO::PortEvent event, BIO::PortReason reason) = 0;

protected:
    ~TcpIpClientI() = default;
};

class ReconnectTimerI
{
public:
    virtual bool isRunning() const = 0;

    /// Runs out once, after that many milliseconds; the machine's onTimer() is called then.
    virtual void start(std::uint32_t delayMs) = 0;
    virtual void stop() = 0;

    /// The clock that it runs on, which only counts up.
    virtual std::uint64_t nowMs() const = 0;

protected:
    ~ReconnectTimerI() = default;
};

} // namespace BSS::NET
