// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Priorities of the Windows scale as nice values of Linux. As on Windows they are relative to what the
// process was given: a program that is run with `nice` has its normal priority there, and does not have to
// ask for what it was denied.
#pragma once

#include <algorithm>
#include <sys/resource.h>
#include <unistd.h>

namespace BSS::HAL {

/// The nice value of the process: that of its first thread.
inline int ProcessNice() noexcept
{
    return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
}

/// The nice value of a priority from -15 to 2 in a process of that one. Priorities that differ have nice
/// values that differ, as long as there are any left.
inline bool NiceOfPriority(int priority, int processNice, int& nice) noexcept
{
    constexpr int LEAST = -20;
    constexpr int MOST = 19;
    switch (priority) {
    case 2:
        nice = std::max(processNice - 10, LEAST);
        return true;
    case 1:
        nice = std::max(processNice - 5, LEAST);
        return true;
    case 0:
        nice = processNice;
        return true;
    case -1:
        nice = std::max(processNice, std::min(processNice + 5, MOST - 2));
        return true;
    case -2:
        nice = std::max(processNice, std::min(processNice + 10, MOST - 1));
        return true;
    case -15:
        nice = MOST;
        return true;
    default:
        return false;
    }
}

/// The priority of a nice value, which somebody else may have chosen.
inline int PriorityOfNice(int nice, int processNice) noexcept
{
    if (nice == processNice) return 0;
    if (nice < processNice) return nice <= processNice - 10 ? 2 : 1;
    int veryLow = 0;
    static_cast<void>(NiceOfPriority(-2, processNice, veryLow));
    if (nice <= veryLow) return nice == veryLow ? -2 : -1;
    return nice == 19 ? -15 : -2;
}

} // namespace BSS::HAL
