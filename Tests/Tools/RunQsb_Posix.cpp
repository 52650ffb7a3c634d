// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Tools/RunQsb.h"

#include <sys/wait.h>

namespace Support {

std::string ShellQuoted(const std::string& argument)
{
    std::string quoted = "'";
    for (const char c : argument)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

int ExitCodeOfSystem(int iStatus)
{
    return WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : 128 + WTERMSIG(iStatus);
}

} // namespace Support
