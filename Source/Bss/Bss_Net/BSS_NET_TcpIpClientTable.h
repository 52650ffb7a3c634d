// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The transitions of the TCP/IP client, each in one row. What is not in the table is ignored. Knows no
// socket, no clock and no log.
#pragma once

#include <array>
#include <cstdint>

namespace BSS::NET {

enum ClientState : std::uint32_t
{
    IDLE = 0,
    SETTING_UP = 1,
    ONLINE = 2
};

enum class ClientEvent
{
    Connect,      ///< somebody wants the connection
    Disconnect,   ///< nobody does any more
    Close,        ///< close() was called
    TimerExpired, ///< the time between two attempts is over
    Established,  ///< an attempt has succeeded
    Failed,       ///< an attempt has failed
    LinkLost      ///< the connection is gone, or the server has been silent for too long
};

inline constexpr std::array ALL_CLIENT_EVENTS = {
    ClientEvent::Connect,     ClientEvent::Disconnect, ClientEvent::Close,   ClientEvent::TimerExpired,
    ClientEvent::Established, ClientEvent::Failed,     ClientEvent::LinkLost};

enum class ClientGuard
{
    Always,
    AutoConnectOn,
    AutoConnectOff
};

enum class ClientAction
{
    None,
    Attempt,       ///< try to connect, now
    ScheduleRetry, ///< see to the next attempt, if there is to be one
    RememberClose  ///< the result is that of an explicit close
};

struct ClientTransitionT
{
    std::uint32_t state;
    ClientEvent event;
    ClientGuard guard;
    ClientAction action;
    std::uint32_t next;
};

// clang-format off
inline constexpr std::array CLIENT_TRANSITIONS = {
    //                state       event                       guard                        action                       next
    ClientTransitionT{IDLE,       ClientEvent::Connect,       ClientGuard::Always,         ClientAction::None,          SETTING_UP},
    ClientTransitionT{SETTING_UP, ClientEvent::Connect,       ClientGuard::Always,         ClientAction::Attempt,       SETTING_UP},
    ClientTransitionT{SETTING_UP, ClientEvent::TimerExpired,  ClientGuard::Always,         ClientAction::Attempt,       SETTING_UP},
    ClientTransitionT{SETTING_UP, ClientEvent::Established,   ClientGuard::Always,         ClientAction::None,          ONLINE},
    ClientTransitionT{SETTING_UP, ClientEvent::Failed,        ClientGuard::Always,         ClientAction::ScheduleRetry, SETTING_UP},
    ClientTransitionT{SETTING_UP, ClientEvent::Disconnect,    ClientGuard::Always,         ClientAction::None,          IDLE},
    ClientTransitionT{SETTING_UP, ClientEvent::Close,         ClientGuard::Always,         ClientAction::RememberClose, IDLE},
    ClientTransitionT{ONLINE,     ClientEvent::LinkLost,      ClientGuard::AutoConnectOn,  ClientAction::None,          SETTING_UP},
    ClientTransitionT{ONLINE,     ClientEvent::LinkLost,      ClientGuard::AutoConnectOff, ClientAction::None,          IDLE},
    ClientTransitionT{ONLINE,     ClientEvent::Close,         ClientGuard::Always,         ClientAction::RememberClose, IDLE},
    ClientTransitionT{ONLINE,     ClientEvent::Disconnect,    ClientGuard::Always,         ClientAction::None,          IDLE},
};
// clang-format on

/// The row for an event in a state; null when the event means nothing there.
constexpr const ClientTransitionT* FindTransition(std::uint32_t state, ClientEvent event, bool bAutoConnect)
{
    for (const ClientTransitionT& row : CLIENT_TRANSITIONS) {
        if (row.state != state || row.event != event) continue;
        if (row.guard == ClientGuard::Always || (row.guard == ClientGuard::AutoConnectOn) == bAutoConnect)
            return &row;
    }
    return nullptr;
}

} // namespace BSS::NET
