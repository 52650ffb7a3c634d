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

/// `uiCount` calls below the level, which changes now and then but never enables them.
void SpdlogDisabled(unsigned uiCount);

} // namespace Bench
