// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bench_Chooser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace Bench {

namespace {

template<typename T>
const T* Named(std::span<const T> all, const char* pszName)
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const T& each) { return std::strcmp(each.pszName, pszName) == 0; });
    return found != all.end() ? &*found : nullptr;
}

int Help(int iExitCode, const char* pszProgram, std::span<const CaseT> cases,
         std::span<const ArgumentT> arguments)
{
    const char* const pszSlash = std::strrchr(pszProgram, '/');
    std::printf("usage: %s [--rounds N]", pszSlash != nullptr ? pszSlash + 1 : pszProgram);
    for (const ArgumentT& each : arguments)
        std::printf(each.pszValue != nullptr ? " [%s %s]" : " [%s]", each.pszName, each.pszValue);
    std::printf(" [CASE...]\n\ncases, all without saying:\n");
    for (const CaseT& each : cases)
        std::printf("  %-10s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

} // namespace

int RunCases(int argc, char** argv, std::span<const CaseT> cases, std::span<const ArgumentT> arguments)
{
    const auto help = [&](int iExitCode) { return Help(iExitCode, argv[0], cases, arguments); };
    OptionsT options;
    std::vector<CaseT> chosen;
    for (int i = 1; i < argc; ++i) {
        const bool bLast = i + 1 == argc;
        if (std::strcmp(argv[i], "--help") == 0) return help(0);
        if (std::strcmp(argv[i], "--rounds") == 0 && !bLast) {
            options.nRounds = std::atoi(argv[++i]);
        } else if (const CaseT* const found = Named(cases, argv[i])) {
            chosen.push_back(*found);
        } else {
            const ArgumentT* const own = Named(arguments, argv[i]);
            if (own == nullptr || (own->pszValue != nullptr && bLast)) return help(2);
            own->take(options, own->pszValue != nullptr ? argv[++i] : nullptr);
        }
    }
    if (options.nRounds < 1) return help(2);
    if (chosen.empty()) chosen.assign(cases.begin(), cases.end());
    for (const CaseT& each : chosen) {
        std::printf("== %s: %s\n", each.pszName, each.pszWhat);
        each.run(options);
        std::printf("\n");
    }
    return 0;
}

} // namespace Bench
