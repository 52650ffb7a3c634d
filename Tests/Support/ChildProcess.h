// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Child processes of a test, started with fork and exec and never by a shell.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace Support {

class ChildProcess
{
public:
    /// Starts a program. What it prints can be read from Output().
    explicit ChildProcess(const std::vector<std::string>& command);

    /// Kills it if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line that it prints; empty at the end.
    std::string ReadLine();

    /// SIGKILL.
    void Kill();

    /// Waits for its end: its exit code, or minus the signal that ended it.
    int Wait();

private:
    pid_t m_pid = -1;
    int m_output = -1;
};

} // namespace Support
