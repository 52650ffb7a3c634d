// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Every line of the TCP/IP client and its state machine with its level, word for word: those who read the
// logs know them so.
#include "Bss/Bss_Net/BSS_NET_TcpIpClientLines.h"

#include <gtest/gtest.h>
#include <string>

using namespace BSS::NET;

namespace {

struct KnownLineT
{
    LogLineT line;
    int level;
    const char* text;
};

// clang-format off
const KnownLineT KNOWN_LINES[] = {
    {MachineLines::START, 3, "TcpIpClientStateMachineC::start\n"},
    {MachineLines::STOP, 3, "TcpIpClientStateMachineC::stop\n"},
    {MachineLines::CLEANUP, 3, "TcpIpClientStateMachineC::cleanup\n"},
    {MachineLines::CONNECT, 3, "TcpIpClientStateMachineC::connectTcpIp\n"},
    {MachineLines::DISCONNECT, 3, "TcpIpClientStateMachineC::disconnectTcpIp\n"},
    {MachineLines::CLOSE, 3, "TcpIpClientStateMachineC::close\n"},
    {MachineLines::GO_TO_STATE, 3, "TcpIpClientStateMachineC::goToState\n"},
    {MachineLines::ENTER_IDLE, 3, "TcpIpClientStateMachineC::enterIdleState\n"},
    {MachineLines::LEAVE_IDLE, 3, "TcpIpClientStateMachineC::leaveIdleState\n"},
    {MachineLines::ENTER_SETTING_UP, 3, "TcpIpClientStateMachineC::enterSettingUpState\n"},
    {MachineLines::EXEC_SETTING_UP, 3, "TcpIpClientStateMachineC::execSettingUpState\n"},
    {MachineLines::LEAVE_SETTING_UP, 3, "TcpIpClientStateMachineC::leaveSettingUpState\n"},
    {MachineLines::ENTER_ONLINE, 3, "TcpIpClientStateMachineC::enterOnlineState\n"},
    {MachineLines::EXEC_ONLINE, 3, "TcpIpClientStateMachineC::execOnlineState\n"},
    {MachineLines::LEAVE_ONLINE, 3, "TcpIpClientStateMachineC::leaveOnlineState\n"},
    {MachineLines::ALREADY_IN_STATE, 3, "%s - Already in state %d\n"},
    {MachineLines::STATE_CHANGE, 4, "TcpIpClientStateMachineC::goToState - state-change: %d -> %d\n"},
    {MachineLines::NOTIFY_IDLE, 3, "TcpIpClientStateMachineC::enterIdleState - notify BSS::BIO::OFFLINE\n"},
    {MachineLines::START_TIMER, 3, "TcpIpClientStateMachineC::enterSettingUpState - start timer for reconnect\n"},
    {MachineLines::AT_ONCE, 3, "TcpIpClientStateMachineC::enterSettingUpState - immediately reconnect\n"},
    {MachineLines::AT_ONCE_SPACED, 3, "TcpIpClientStateMachineC::enterSettingUpState - the last attempt was just now, next one in %u ms\n"},
    {MachineLines::ALREADY_OPEN, 3, "TcpIpClientStateMachineC::execSettingUpState - socket already open, waiting for connection\n"},
    {MachineLines::NOTIFY_FAILURE, 3, "TcpIpClientStateMachineC::leaveSettingUpState - notify GOING_ONLINE failure\n"},
    {MachineLines::ONLINE_CLOSED, 3, "TcpIpClientStateMachineC::execOnlineState - close() has been called, goto IDLE state\n"},
    {MachineLines::ONLINE_AUTO, 3, "TcpIpClientStateMachineC::execOnlineState - auto-connect enabled, goto to SETTING_UP state\n"},
    {MachineLines::ONLINE_NO_AUTO, 3, "TcpIpClientStateMachineC::execOnlineState - auto-connect disabled, goto to IDLE state\n"},
    {MachineLines::OFFLINE_TIMEOUT, 4, "TcpIpClientStateMachineC::leaveOnlineState - notify OFFLINE because of receive timeout, closed by peer : %d\n"},
    {MachineLines::OFFLINE, 4, "TcpIpClientStateMachineC::leaveOnlineState - notify OFFLINE, closed by peer : %d\n"},
    {MachineLines::CLOSING_ON, 3, "%s - Closing on %d\n"},
    {MachineLines::SHUTDOWN_FAILED, 5, "TcpIpClientStateMachineC::close - shutdown failed (err %s)\n"},
    {MachineLines::ALREADY_CLOSED, 3, "TcpIpClientStateMachineC::close - socket already closed (err %s)\n"},
    {MachineLines::OBSERVER_THREW, 6, "TcpIpClientStateMachineC - exception in an observer: %s\n"},
    {ClientLines::START_UP_FAILED, 6, "NetTcpIpClientC::NetTcpIpClientC: Error at WSAStartup(err %i)\r\n"},
    {ClientLines::SET_PORT_CONFIG, 3, "[NetTcpIpClientC]- setPortConfig %s:%d\n"},
    {ClientLines::DISCARD_RD, 3, "[NetTcpIpClientC] -NetTcpIpClientC::discardRd\n"},
    {ClientLines::DISCARD_WR, 3, "[NetTcpIpClientC] -NetTcpIpClientC::discardWr\n"},
    {ClientLines::WAIT_FAILED, 6, "NetTcpIpClientC::waitForRequest - waiting failed (err %s)\n"},
    {ClientLines::GET_ADDRESS, 3, "NetTcpIpClientC::getServerAddress\n"},
    {ClientLines::ADDRESS_AS_IS, 3, "NetTcpIpClientC::getServerAddress - DomainAddress: %s\n"},
    {ClientLines::RESOLVING, 3, "NetTcpIpClientC::getServerAddress - calling gethostbyname\n"},
    {ClientLines::RESOLVED, 3, "NetTcpIpClientC::getServerAddress - DomainName resolved: %s\n"},
    {ClientLines::RESOLVE_FAILED, 5, "NetTcpIpClientC::getServerAddress - Resolving %s failed: (err %s)\n"},
    {ClientLines::NEW_SOCKET, 3, "NetTcpIpClientC::setupConnection - new socket descriptor: %d\n"},
    {ClientLines::SOCKET_FAILED, 6, "NetTcpIpClientC::setupConnection - socket failed (err %s)\n"},
    {ClientLines::IOCTL_FAILED, 6, "%4d ioctl failed on %d (err %s)\n"},
    {ClientLines::NO_DELAY_FAILED, 5, "%s setsockopt TCP_NODELAY failed on %d (err %s)\n"},
    {ClientLines::KEEP_ALIVE_FAILED, 5, "%s setsockopt SO_KEEPALIVE failed on %d (err %s)\n"},
    {ClientLines::CONNECTED_AT_ONCE, 3, "NetTcpIpClientC::setupConnection - connect on %d completed immediately\n"},
    {ClientLines::CONNECT_STARTED, 3, "NetTcpIpClientC::setupConnection - connect started on %d (err %s)...\n"},
    {ClientLines::CONNECT_ERROR, 5, "NetTcpIpClientC::setupConnection - connect error on %d (err %s)\n"},
    {ClientLines::WAIT_TIMEOUT, 3, "%s - timeout: %lu\n"},
    {ClientLines::CONNECT_TIMED_OUT, 5, "NetTcpIpClientC::waitForConnection - connect timeout on %d\n"},
    {ClientLines::CONNECT_FAILED, 5, "NetTcpIpClientC::waitForConnection - connect failed or exception in select on %d (err %s)\n"},
    {ClientLines::ERROR_REPORTED, 5, "NetTcpIpClientC::waitForConnection - error reported after connect on %d: 0x%X (err %s)\n"},
    {ClientLines::ESTABLISHED, 4, "NetTcpIpClientC::onConnectionEstablished - connection established %s:%d\n"},
    {ClientLines::RECV_STARTS, 1, "NetTcpIpClientC::recvData starts\n"},
    {ClientLines::RECV_SELECTED, 1, "NetTcpIpClientC::recvData - select for readability return %d\n"},
    {ClientLines::RECV_WAITED, 1, "NetTcpIpClientC::recvData - select timed out on %d\ntotal timeout: %lu ms\nmax timeout: %lu ms\n"},
    {ClientLines::RECV_TIMED_OUT, 5, "NetTcpIpClientC::recvData - data receive time out on %d\n"},
    {ClientLines::RECV_UNANSWERED, 5, "NetTcpIpClientC::recvData - nothing that was sent on %d has been answered for %lu ms\n"},
    {ClientLines::RECV_NO_LIMIT, 1, "NetTcpIpClientC::recvData - select timed out on %d, no max timeout set.\n"},
    {ClientLines::RECEIVED, 1, "%s: Received %d bytes on %d.\n"},
    {ClientLines::SERVER_SHUTDOWN, 4, "NetTcpIpClientC::recvData - recv detected server-shutdown on %d\n"},
    {ClientLines::RECV_FAILED, 5, "NetTcpIpClientC::recvData - recv failed on %d (err %s)\n"},
    {ClientLines::RECV_RETURNED, 3, "NetTcpIpClientC::recvData - recv return %d, LastError: %s\n"},
    {ClientLines::READER_THREW, 6, "NetTcpIpClientC::recvData - exception in the reader: %s\n"},
    {ClientLines::WRITE_TIMED_OUT, 5, "NetTcpIpClientC::writeData timeout(500ms) exceeded\r\n"},
    {ClientLines::WRITE_SELECT_FAILED, 6, "NetTcpIpClientC::writeData: select returned SOCKET_ERROR, (err %s).\n"},
    {ClientLines::WRITE_EXCEPTION, 5, "NetTcpIpClientC::writeData: select returns with except FDS set!\n"},
    {ClientLines::SENT, 1, "%s: Sent %d bytes on %d.\n"},
    {ClientLines::SEND_FAILED, 5, "NetTcpIpClientC::writeData send returned SOCKET_ERROR, (err %s).\n"},
    {ClientLines::SHUTDOWN, 3, "NetTcpIpClientC::shutdownConnection\n"},
    {ClientLines::SHUTDOWN_ALREADY, 3, "NetTcpIpClientC::shutdownConnection - Socket already closed\n"},
    {ClientLines::SHUTDOWN_DONE, 3, "NetTcpIpClientC::shutdownConnection - shutdown succeeded\n"},
    {ClientLines::SHUTDOWN_FAILED, 3, "NetTcpIpClientC::shutdownConnection - shutdown failed (err %s)\n"},
};
// clang-format on

TEST(TcpIpClientLinesTest, LinesAreAsTheyAreKnown)
{
    for (const KnownLineT& known : KNOWN_LINES) {
        EXPECT_STREQ(known.line.format, known.text);
        EXPECT_EQ(known.line.level, known.level) << known.text;
    }
}

} // namespace
