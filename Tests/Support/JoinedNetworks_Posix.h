// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two networks that are joined by a cable, as two machines are: each has one end with an address. A socket
// belongs to the network in which the thread is that makes it, and a thread begins in the network of the one
// that starts it; so both machines can be in one process. For one thread, but for what it starts.
#pragma once

#include <functional>

namespace Support {

class JoinedNetworks
{
public:
    static constexpr char NEAR_ADDRESS[] = "10.77.0.1";
    static constexpr char FAR_ADDRESS[] = "10.77.0.2";
    static constexpr char NOBODYS_ADDRESS[] = "10.77.0.3";

    /// The network in which this thread is becomes the near one.
    JoinedNetworks();
    ~JoinedNetworks();
    JoinedNetworks(const JoinedNetworks&) = delete;
    JoinedNetworks& operator=(const JoinedNetworks&) = delete;

    /// 0, or the system's number for why there is no cable.
    int getError() const noexcept { return m_error; }

    /// Does something in the far network.
    void far(const std::function<void()>& action) const;

    /// Switch the interface at one end; false when that is not possible.
    bool switchNear(bool bUp) const;
    bool switchFar(bool bUp) const;

    /// Takes the way from the near network to the far one away, or brings it back. The interface stays.
    bool removeRoute() const;
    bool addRoute() const;

private:
    int make();
    bool carries() const;

    int m_near = -1; // the networks, as open files
    int m_far = -1;
    int m_error = 0;
};

/// Runs a scenario as ExpectInOwnNetwork does, with two joined networks. What it expects and does not get is
/// a failure of the test.
void ExpectInJoinedNetworks(const std::function<void(JoinedNetworks&)>& scenario);

} // namespace Support
