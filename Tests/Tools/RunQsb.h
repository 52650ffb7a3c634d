// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The qsb command as a person runs it: arguments in, both outputs and the exit code back.
#pragma once

#include <string>
#include <vector>

namespace Support {

struct QsbRunT
{
    int iExitCode = -1; ///< 128 + the signal's number when a signal ended the command
    std::string out;    ///< what it wrote to stdout
    std::string err;    ///< what it wrote to stderr
};

/// Runs qsb with these arguments, stdin closed, and waits for its end.
QsbRunT RunQsb(const std::vector<std::string>& arguments);

/// An argument as the shell must be given it, and the exit code in what std::system returns: one source per
/// platform.
std::string ShellQuoted(const std::string& argument);
int ExitCodeOfSystem(int iStatus);

/// Path of a file of the real scans; empty when they are not there. Use REAL_DATA in tests.
std::string RealDataPath(const std::string& name);

} // namespace Support

/// Puts the path of a real-scan file into `path`, or ends the test: skipped on a developer's machine without
/// the data, failed on a build server, where they must be.
#define REAL_DATA(path, name)                                                                                \
    const std::string path = Support::RealDataPath(name);                                                    \
    if (path.empty() && Support::GetEnvironment("CI") == "true") FAIL() << name << " is missing";            \
    if (path.empty()) GTEST_SKIP() << name << " is missing; set SCANREADER_DATA"
