// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cases of the base services, and the lines that both loggers write.
#pragma once

#include "Bench_Harness.h"

#include <memory>
#include <string>

namespace Bench {

void RunLogFile(const OptionsT& options);
void RunLogFlushed(const OptionsT& options);
void RunLogMany(const OptionsT& options);
void RunLogDisabled(const OptionsT& options);
void RunStrings(const OptionsT& options);

/// One of the loggers that are compared. Both write the same words behind a prefix of the same shape.
class LoggerI
{
public:
    virtual ~LoggerI() = default;

    /// Logs lines numbered from `uiFirst` on.
    virtual void Log(unsigned uiFirst, unsigned uiCount) = 0;
    virtual void FlushEveryLine() = 0;
    virtual void Flush() = 0;
};

std::unique_ptr<LoggerI> MakeOwnLogger(const std::string& strDirectory);
std::unique_ptr<LoggerI> MakeSpdlogLogger(const std::string& strDirectory);

/// How many calls below the level are made before the level changes; it never enables them.
inline constexpr unsigned s_uiDisabledStretch = 1000000;
void SpdlogDisabled(unsigned uiStretches);

/// Tells how many times as long as the second the first takes, by the clock.
void PrintRatio(const char* pszWhat, const CandidateT& first, const CandidateT& second);

} // namespace Bench
