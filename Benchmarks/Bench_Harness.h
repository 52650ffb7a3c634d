// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How everything here is measured: the candidates of one comparison run in turn, again and again, so that a
// machine whose speed drifts treats them alike. What is told is the median, the spread, and ratios of
// medians. Next to the time on the clock stands the processor time of the thread, which other work on the
// machine disturbs less; for what one thread does with files in memory the two are the same on a machine that
// has nothing else to do.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Bench {

struct CandidateT
{
    std::string strName;
    std::function<void()> run;
    /// What must happen after each run and is not measured.
    std::function<void()> after = {};
    std::vector<double> vecClockSeconds = {};
    std::vector<double> vecThreadSeconds = {};
};

double MedianOf(std::vector<double> values);
double ClockSeconds();

/// Processor time of this thread and of the programs that it ran and waited for.
double ThreadSeconds();

/// Runs every candidate once to warm up and then `nRounds` times, interleaved.
void RunInterleaved(std::vector<CandidateT>& candidates, int nRounds);

/// Prints a table of the candidates: how much of `unit` each does in a second (amount / seconds / scale), and
/// how it compares with the candidates named by `references`.
void PrintRates(const std::vector<CandidateT>& candidates, double dAmount, const char* pszUnit,
                const std::vector<std::size_t>& references);

/// Prints a table of the candidates' times in milliseconds, and how many times as long as the first one each
/// takes.
void PrintTimes(const std::vector<CandidateT>& candidates);

/// How many times as fast as one candidate another one is, by medians.
struct RatioT
{
    double dClock;
    double dThread; ///< 0: does not apply
};

RatioT SpeedOf(const CandidateT& candidate, const CandidateT& reference);

/// Notes what a ratio came out as and what it should be, for the summary.
void ExpectAtLeast(const std::string& strWhat, const RatioT& ratio, double dWanted);
void ExpectAtMost(const std::string& strWhat, const RatioT& ratio, double dWanted);

/// Fewer rounds make medians that one disturbance can move.
inline constexpr int s_nFewestRounds = 5;

/// Prints all that was noted, and a warning when there were fewer rounds.
void PrintSummary(int nRounds);

/// Keeps a result from being optimised away.
void Use(double dValue);

/// What a case is given.
struct OptionsT
{
    int nRounds = 9;
    std::string strDirectory = "/tmp"; ///< for the files that are read and written
    std::string strProgram;            ///< this program, for children
};

} // namespace Bench
