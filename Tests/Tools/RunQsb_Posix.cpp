// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Tools/RunQsb.h"

#include <cstdlib>
#include <sys/wait.h>

namespace Support {

namespace {

std::string ShellQuoted(const std::string& argument)
{
    std::string quoted = "'";
    for (const char c : argument)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

} // namespace

int RunProgram(const std::vector<std::string>& command, const std::array<std::string, 3>& streams)
{
    std::string line;
    for (const std::string& argument : command)
        line += ShellQuoted(argument) + " ";
    line += "<" + ShellQuoted(streams[0]) + " >" + ShellQuoted(streams[1]) + " 2>" + ShellQuoted(streams[2]);
    const int status = std::system(line.c_str());
    if (status == -1) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string LinesOf(const std::string& output)
{
    return output;
}

} // namespace Support
