// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How everything here is measured: the candidates of one comparison run in turn, again and again, so that a machine
// whose speed drifts treats them alike; what is told is the median, the spread, and the ratio of medians.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Bench {

struct CandidateT
{
    std::string name;
    std::function<void()> run;
    std::vector<double> seconds = {};

    double Median() const
    {
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
    double Min() const { return *std::min_element(seconds.begin(), seconds.end()); }
    double Max() const { return *std::max_element(seconds.begin(), seconds.end()); }
};

/// Runs every candidate once to warm up and then `nRounds` times, interleaved.
inline void RunInterleaved(std::vector<CandidateT>& candidates, int nRounds)
{
    for (CandidateT& candidate : candidates) candidate.run();
    for (int i = 0; i < nRounds; ++i) {
        for (CandidateT& candidate : candidates) {
            const auto begin = std::chrono::steady_clock::now();
            candidate.run();
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
            candidate.seconds.push_back(elapsed.count());
        }
    }
}

} // namespace Bench
