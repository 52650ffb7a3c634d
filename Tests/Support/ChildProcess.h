// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Child processes of a test, started without a shell between.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Support {

class ChildProcess
{
public:
    /// What Wait() gives for a child that was killed.
    static constexpr int KILLED = -9;

    /// Starts a program. What it prints can be read with ReadLine().
    explicit ChildProcess(const std::vector<std::string>& command);

    /// Kills it if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line that it prints; empty at the end.
    std::string ReadLine();

    /// Ends it where it is.
    void Kill();

    /// Waits for its end: its exit code; on Linux minus the signal that ended it, if one did.
    int Wait();

private:
    static constexpr std::intptr_t NONE = -1;

    std::intptr_t m_process = NONE;
    std::intptr_t m_output = NONE;
};

} // namespace Support
