// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cases of the network's benchmark and what they share.
#pragma once

#include <cstddef>
#include <functional>

namespace BenchNet {

inline constexpr std::size_t BUFFER_BYTES = std::size_t{1} << 16;
inline constexpr int LONG_MS = 60000;
inline constexpr double NO_LIMIT = 1e9;

/// Ends the program with a word when it is false: what did not work has no figure.
void Check(bool bOk, const char* what);

/// How long the work takes by the clock.
double Seconds(const std::function<void()>& work);

struct UnitT
{
    const char* name; ///< of what is compared
    const char* unit;
    double perRound; ///< so many units are done in a round
    bool bPerSecond; ///< units by second; otherwise seconds by unit

    /// Between these the ratio by the clock is to be.
    double least;
    double most = NO_LIMIT;
};

using SideT = double (*)(); ///< the seconds of one round

/// Rounds of both sides take turns, and the turns who begins. Prints the medians, and the median of the
/// rounds' ratios with their spread: by the clock, and by the processor time of the process, both sides' ends
/// of the connection included, which other work on the machine disturbs less. True when the ratio by the
/// clock is as it is to be.
[[nodiscard]] bool Compare(const UnitT& unit, int nRounds, SideT plain, SideT ours);

[[nodiscard]] bool RunReceiving(int nRounds);
[[nodiscard]] bool RunSending(int nRounds);
[[nodiscard]] bool RunRoundTrips(int nRounds);
[[nodiscard]] bool RunLogClients(int nRounds);

} // namespace BenchNet
