// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a call costs that logs nothing. The consumer is one that the compiler knows nothing of, and its level
// changes while the calls run: between stretches of a million.
#include "Bench_Bss.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

namespace Bench {

namespace {

constexpr unsigned s_uiStretches = 100;

void EmptyLoop(unsigned uiStretches)
{
    for (unsigned n = 0; n < uiStretches; ++n) {
        Use(n);
        for (unsigned i = 0; i < s_uiDisabledStretch; ++i)
            asm volatile("" ::: "memory");
    }
}

void OwnDisabled(unsigned uiStretches)
{
    static BSS::DBG::DbgLogFileConsumerC s_consumer("disabled", L"bench_disabled.log", 0);
    BSS::DBG::DbgLogConsumerC* pConsumer = &s_consumer;
    asm volatile("" : "+r"(pConsumer)); // nobody knows which one it is
    for (unsigned n = 0; n < uiStretches; ++n) {
        pConsumer->setLevel(n % 2 == 0 ? BSS::DBG::LEVEL_WARN : BSS::DBG::LEVEL_ERROR);
        for (unsigned i = 0; i < s_uiDisabledStretch; ++i) {
            pConsumer->Log(BSS::DBG::LEVEL_INFO, "block %u of %u", i, uiStretches);
            asm volatile("" ::: "memory");
        }
    }
}

} // namespace

void RunLogDisabled(const OptionsT& options)
{
    std::vector<CandidateT> candidates = {{"empty loop", [] { EmptyLoop(s_uiStretches); }},
                                          {"ours, disabled", [] { OwnDisabled(s_uiStretches); }},
                                          {"spdlog, disabled", [] { SpdlogDisabled(s_uiStretches); }}};
    RunInterleaved(candidates, options.nRounds);
    PrintTimes(candidates);
    PrintRatio("ours takes as long as empty iterations", candidates[1], candidates[0]);
    PrintRatio("spdlog takes as long as calls of ours", candidates[2], candidates[1]);
}

} // namespace Bench
