// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How a verb of the command ends: exit codes, and the exception that carries one with its message from
// anywhere beneath to main, which prints it to stderr.
#pragma once

#include <stdexcept>
#include <string>

namespace Tool {

enum ExitCodeT : int
{
    s_iDone = 0,
    s_iFailed = 1,  ///< a file could not be read or written, or loss was refused
    s_iUsage = 2,   ///< the command line makes no sense
    s_iDamaged = 3, ///< an input file is damaged
    s_iInterrupted = 130, ///< Ctrl-C or a termination signal, as shells report it
};

class ToolErrorC : public std::runtime_error
{
public:
    ToolErrorC(ExitCodeT eExitCode, const std::string& message)
        : std::runtime_error(message), m_eExitCode(eExitCode)
    {}

    ExitCodeT GetExitCode() const noexcept { return m_eExitCode; }

private:
    ExitCodeT m_eExitCode;
};

} // namespace Tool
