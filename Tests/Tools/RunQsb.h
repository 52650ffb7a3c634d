// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The qsb command as a person runs it: arguments in, both outputs and the exit code back.
#pragma once

#include <array>
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

/// Runs a program with these arguments and waits for its end; one source per platform. Its standard streams are the
/// files named, of which the first exists. Returns the exit code as above, -1 when it cannot be started.
int RunProgram(const std::vector<std::string>& command, const std::array<std::string, 3>& streams);

/// What a program wrote, with lines that end in a newline alone.
std::string LinesOf(const std::string& output);

/// Path of a file of the real scans; empty when they are not there. Use REAL_DATA in tests.
std::string RealDataPath(const std::string& name);

} // namespace Support

/// Puts the path of a real-scan file into `path`, or ends the test: skipped on a developer's machine without
/// the data, failed on a build server, where they must be.
#define REAL_DATA(path, name)                                                                                \
    const std::string path = Support::RealDataPath(name);                                                    \
    if (path.empty() && Support::GetEnvironment("CI") == "true") FAIL() << name << " is missing";            \
    if (path.empty()) GTEST_SKIP() << name << " is missing; set SCANREADER_DATA"
