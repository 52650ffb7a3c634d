// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The main of a benchmark program: runs the cases that its arguments name, all of them without arguments.
#pragma once

#include "Bench_Harness.h"

#include <functional>
#include <span>

namespace Bench {

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    void (*run)(const OptionsT& options);
};

/// What a program understands beside the cases, --rounds and --help.
struct ArgumentT
{
    const char* pszName;
    const char* pszValue; ///< what the word after it is called; null when there is none
    std::function<void(OptionsT& options, const char* pszValue)> take;
};

/// The exit code.
int RunCases(int argc, char** argv, std::span<const CaseT> cases, std::span<const ArgumentT> arguments);

} // namespace Bench
