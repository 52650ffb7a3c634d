// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a command needs to know of the terminal it was started from. For programs only: a library never
// installs signal handlers.
#pragma once

#include <string>
#include <vector>

namespace BSS::HAL {

/// The program's arguments, its name first, as narrow paths and texts: what main was given on Linux, on Windows UTF-8
/// whatever the code page.
std::vector<std::string> ProgramArguments(int count, char** arguments);

/// True when standard error is a terminal, so that progress may be drawn on it.
bool StderrIsTerminal() noexcept;

/// From now on the first request to stop (Ctrl-C, a termination signal) only sets a flag; a second one ends
/// the process as usual. Requests that the process was started to ignore stay ignored.
void InstallInterruptFlag() noexcept;

/// True once a request to stop has come. Safe from any thread.
bool InterruptRequested() noexcept;

} // namespace BSS::HAL
