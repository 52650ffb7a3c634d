// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Waiting for what other threads do, without sleeping and with an end.
#pragma once

#include <chrono>
#include <thread>

namespace Support {

/// Looks again and again until the condition holds; false when it still does not after ten seconds.
template<typename ConditionT>
bool Eventually(const ConditionT& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

} // namespace Support
