// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Every line that the TCP/IP client and its state machine log. The texts are known to those who read the logs
// and stay as they are; (err %s) is the system's number and words.
#pragma once

#include "Bss/Bss_Net/BSS_NET_LogLine.h"

// clang-format off
namespace BSS::NET::MachineLines {

using DBG::LEVEL_ERROR;
using DBG::LEVEL_FINE;
using DBG::LEVEL_INFO;
using DBG::LEVEL_WARN;

// Each operation by its name.
inline constexpr LogLineT START{LEVEL_FINE, "TcpIpClientStateMachineC::start\n"};
inline constexpr LogLineT STOP{LEVEL_FINE, "TcpIpClientStateMachineC::stop\n"};
inline constexpr LogLineT CLEANUP{LEVEL_FINE, "TcpIpClientStateMachineC::cleanup\n"};
inline constexpr LogLineT CONNECT{LEVEL_FINE, "TcpIpClientStateMachineC::connectTcpIp\n"};
inline constexpr LogLineT DISCONNECT{LEVEL_FINE, "TcpIpClientStateMachineC::disconnectTcpIp\n"};
inline constexpr LogLineT CLOSE{LEVEL_FINE, "TcpIpClientStateMachineC::close\n"};
inline constexpr LogLineT GO_TO_STATE{LEVEL_FINE, "TcpIpClientStateMachineC::goToState\n"};
inline constexpr LogLineT ENTER_IDLE{LEVEL_FINE, "TcpIpClientStateMachineC::enterIdleState\n"};
inline constexpr LogLineT LEAVE_IDLE{LEVEL_FINE, "TcpIpClientStateMachineC::leaveIdleState\n"};
inline constexpr LogLineT ENTER_SETTING_UP{LEVEL_FINE, "TcpIpClientStateMachineC::enterSettingUpState\n"};
inline constexpr LogLineT EXEC_SETTING_UP{LEVEL_FINE, "TcpIpClientStateMachineC::execSettingUpState\n"};
inline constexpr LogLineT LEAVE_SETTING_UP{LEVEL_FINE, "TcpIpClientStateMachineC::leaveSettingUpState\n"};
inline constexpr LogLineT ENTER_ONLINE{LEVEL_FINE, "TcpIpClientStateMachineC::enterOnlineState\n"};
inline constexpr LogLineT EXEC_ONLINE{LEVEL_FINE, "TcpIpClientStateMachineC::execOnlineState\n"};
inline constexpr LogLineT LEAVE_ONLINE{LEVEL_FINE, "TcpIpClientStateMachineC::leaveOnlineState\n"};

// What happens in them.
inline constexpr LogLineT ALREADY_IN_STATE{LEVEL_FINE, "%s - Already in state %d\n"};
inline constexpr LogLineT STATE_CHANGE{LEVEL_INFO, "TcpIpClientStateMachineC::goToState - state-change: %d -> %d\n"};
inline constexpr LogLineT NOTIFY_IDLE{LEVEL_FINE, "TcpIpClientStateMachineC::enterIdleState - notify BSS::BIO::OFFLINE\n"};
inline constexpr LogLineT START_TIMER{LEVEL_FINE, "TcpIpClientStateMachineC::enterSettingUpState - start timer for reconnect\n"};
inline constexpr LogLineT AT_ONCE{LEVEL_FINE, "TcpIpClientStateMachineC::enterSettingUpState - immediately reconnect\n"};
inline constexpr LogLineT AT_ONCE_SPACED{LEVEL_FINE, "TcpIpClientStateMachineC::enterSettingUpState - the last attempt was just now, next one in %u ms\n"};
inline constexpr LogLineT ALREADY_OPEN{LEVEL_FINE, "TcpIpClientStateMachineC::execSettingUpState - socket already open, waiting for connection\n"};
inline constexpr LogLineT NOTIFY_FAILURE{LEVEL_FINE, "TcpIpClientStateMachineC::leaveSettingUpState - notify GOING_ONLINE failure\n"};
inline constexpr LogLineT ONLINE_CLOSED{LEVEL_FINE, "TcpIpClientStateMachineC::execOnlineState - close() has been called, goto IDLE state\n"};
inline constexpr LogLineT ONLINE_AUTO{LEVEL_FINE, "TcpIpClientStateMachineC::execOnlineState - auto-connect enabled, goto to SETTING_UP state\n"};
inline constexpr LogLineT ONLINE_NO_AUTO{LEVEL_FINE, "TcpIpClientStateMachineC::execOnlineState - auto-connect disabled, goto to IDLE state\n"};
inline constexpr LogLineT OFFLINE_TIMEOUT{LEVEL_INFO, "TcpIpClientStateMachineC::leaveOnlineState - notify OFFLINE because of receive timeout, closed by peer : %d\n"};
inline constexpr LogLineT OFFLINE{LEVEL_INFO, "TcpIpClientStateMachineC::leaveOnlineState - notify OFFLINE, closed by peer : %d\n"};
inline constexpr LogLineT CLOSING_ON{LEVEL_FINE, "%s - Closing on %d\n"};
inline constexpr LogLineT SHUTDOWN_FAILED{LEVEL_WARN, "TcpIpClientStateMachineC::close - shutdown failed (err %s)\n"};
inline constexpr LogLineT ALREADY_CLOSED{LEVEL_FINE, "TcpIpClientStateMachineC::close - socket already closed (err %s)\n"};
inline constexpr LogLineT OBSERVER_THREW{LEVEL_ERROR, "TcpIpClientStateMachineC - exception in an observer: %s\n"};

} // namespace BSS::NET::MachineLines

namespace BSS::NET::ClientLines {

using DBG::LEVEL_ERROR;
using DBG::LEVEL_FINE;
using DBG::LEVEL_FINEST;
using DBG::LEVEL_INFO;
using DBG::LEVEL_WARN;

inline constexpr LogLineT START_UP_FAILED{LEVEL_ERROR, "NetTcpIpClientC::NetTcpIpClientC: Error at WSAStartup(err %i)\r\n"};
inline constexpr LogLineT SET_PORT_CONFIG{LEVEL_FINE, "[NetTcpIpClientC]- setPortConfig %s:%d\n"};
inline constexpr LogLineT DISCARD_RD{LEVEL_FINE, "[NetTcpIpClientC] -NetTcpIpClientC::discardRd\n"};
inline constexpr LogLineT DISCARD_WR{LEVEL_FINE, "[NetTcpIpClientC] -NetTcpIpClientC::discardWr\n"};

inline constexpr LogLineT WAIT_FAILED{LEVEL_ERROR, "NetTcpIpClientC::waitForRequest - waiting failed (err %s)\n"};

inline constexpr LogLineT GET_ADDRESS{LEVEL_FINE, "NetTcpIpClientC::getServerAddress\n"};
inline constexpr LogLineT ADDRESS_AS_IS{LEVEL_FINE, "NetTcpIpClientC::getServerAddress - DomainAddress: %s\n"};
inline constexpr LogLineT RESOLVING{LEVEL_FINE, "NetTcpIpClientC::getServerAddress - calling gethostbyname\n"};
inline constexpr LogLineT RESOLVED{LEVEL_FINE, "NetTcpIpClientC::getServerAddress - DomainName resolved: %s\n"};
inline constexpr LogLineT RESOLVE_FAILED{LEVEL_WARN, "NetTcpIpClientC::getServerAddress - Resolving %s failed: (err %s)\n"};

inline constexpr LogLineT NEW_SOCKET{LEVEL_FINE, "NetTcpIpClientC::setupConnection - new socket descriptor: %d\n"};
inline constexpr LogLineT SOCKET_FAILED{LEVEL_ERROR, "NetTcpIpClientC::setupConnection - socket failed (err %s)\n"};
inline constexpr LogLineT IOCTL_FAILED{LEVEL_ERROR, "%4d ioctl failed on %d (err %s)\n"};
inline constexpr LogLineT NO_DELAY_FAILED{LEVEL_WARN, "%s setsockopt TCP_NODELAY failed on %d (err %s)\n"};
inline constexpr LogLineT KEEP_ALIVE_FAILED{LEVEL_WARN, "%s setsockopt SO_KEEPALIVE failed on %d (err %s)\n"};
inline constexpr LogLineT CONNECTED_AT_ONCE{LEVEL_FINE, "NetTcpIpClientC::setupConnection - connect on %d completed immediately\n"};
inline constexpr LogLineT CONNECT_STARTED{LEVEL_FINE, "NetTcpIpClientC::setupConnection - connect started on %d (err %s)...\n"};
inline constexpr LogLineT CONNECT_ERROR{LEVEL_WARN, "NetTcpIpClientC::setupConnection - connect error on %d (err %s)\n"};

inline constexpr LogLineT WAIT_TIMEOUT{LEVEL_FINE, "%s - timeout: %lu\n"};
inline constexpr LogLineT CONNECT_TIMED_OUT{LEVEL_WARN, "NetTcpIpClientC::waitForConnection - connect timeout on %d\n"};
inline constexpr LogLineT CONNECT_FAILED{LEVEL_WARN, "NetTcpIpClientC::waitForConnection - connect failed or exception in select on %d (err %s)\n"};
inline constexpr LogLineT ERROR_REPORTED{LEVEL_WARN, "NetTcpIpClientC::waitForConnection - error reported after connect on %d: 0x%X (err %s)\n"};
inline constexpr LogLineT ESTABLISHED{LEVEL_INFO, "NetTcpIpClientC::onConnectionEstablished - connection established %s:%d\n"};

inline constexpr LogLineT RECV_STARTS{LEVEL_FINEST, "NetTcpIpClientC::recvData starts\n"};
inline constexpr LogLineT RECV_SELECTED{LEVEL_FINEST, "NetTcpIpClientC::recvData - select for readability return %d\n"};
inline constexpr LogLineT RECV_WAITED{LEVEL_FINEST, "NetTcpIpClientC::recvData - select timed out on %d\ntotal timeout: %lu ms\nmax timeout: %lu ms\n"};
inline constexpr LogLineT RECV_TIMED_OUT{LEVEL_WARN, "NetTcpIpClientC::recvData - data receive time out on %d\n"};
inline constexpr LogLineT RECV_UNANSWERED{LEVEL_WARN, "NetTcpIpClientC::recvData - nothing that was sent on %d has been answered for %lu ms\n"};
inline constexpr LogLineT RECV_NO_LIMIT{LEVEL_FINEST, "NetTcpIpClientC::recvData - select timed out on %d, no max timeout set.\n"};
inline constexpr LogLineT RECEIVED{LEVEL_FINEST, "%s: Received %d bytes on %d.\n"};
inline constexpr LogLineT SERVER_SHUTDOWN{LEVEL_INFO, "NetTcpIpClientC::recvData - recv detected server-shutdown on %d\n"};
inline constexpr LogLineT RECV_FAILED{LEVEL_WARN, "NetTcpIpClientC::recvData - recv failed on %d (err %s)\n"};
inline constexpr LogLineT RECV_RETURNED{LEVEL_FINE, "NetTcpIpClientC::recvData - recv return %d, LastError: %s\n"};
inline constexpr LogLineT READER_THREW{LEVEL_ERROR, "NetTcpIpClientC::recvData - exception in the reader: %s\n"};

inline constexpr LogLineT WRITE_TIMED_OUT{LEVEL_WARN, "NetTcpIpClientC::writeData timeout(500ms) exceeded\r\n"};
inline constexpr LogLineT WRITE_SELECT_FAILED{LEVEL_ERROR, "NetTcpIpClientC::writeData: select returned SOCKET_ERROR, (err %s).\n"};
inline constexpr LogLineT WRITE_EXCEPTION{LEVEL_WARN, "NetTcpIpClientC::writeData: select returns with except FDS set!\n"};
inline constexpr LogLineT SENT{LEVEL_FINEST, "%s: Sent %d bytes on %d.\n"};
inline constexpr LogLineT SEND_FAILED{LEVEL_WARN, "NetTcpIpClientC::writeData send returned SOCKET_ERROR, (err %s).\n"};

inline constexpr LogLineT SHUTDOWN{LEVEL_FINE, "NetTcpIpClientC::shutdownConnection\n"};
inline constexpr LogLineT SHUTDOWN_ALREADY{LEVEL_FINE, "NetTcpIpClientC::shutdownConnection - Socket already closed\n"};
inline constexpr LogLineT SHUTDOWN_DONE{LEVEL_FINE, "NetTcpIpClientC::shutdownConnection - shutdown succeeded\n"};
inline constexpr LogLineT SHUTDOWN_FAILED{LEVEL_FINE, "NetTcpIpClientC::shutdownConnection - shutdown failed (err %s)\n"};

} // namespace BSS::NET::ClientLines
// clang-format on
