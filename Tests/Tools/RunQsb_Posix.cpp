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
    std::string quoted(1, '\'');
    for (const char c : argument) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted.push_back(c);
    }
    quoted.push_back('\'');
    return quoted;
}

} // namespace

int RunProgram(const std::vector<std::string>& command, const std::array<std::string, 3>& streams)
{
    std::string line;
    for (const std::string& argument : command)
        line.append(ShellQuoted(argument)).append(" ");
    line.append("<").append(ShellQuoted(streams[0]));
    line.append(" >").append(ShellQuoted(streams[1]));
    line.append(" 2>").append(ShellQuoted(streams[2]));
    const int status = std::system(line.c_str());
    if (status == -1) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string LinesOf(const std::string& output)
{
    return output;
}

} // namespace Support
