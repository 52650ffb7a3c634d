// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a call costs that logs nothing. The consumer is one that the compiler knows nothing of, and its level
// changes while the loop runs.
#include "Bench_Bss.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

namespace Bench {

namespace {

constexpr unsigned s_uiCalls = 100000000;

void EmptyLoop(unsigned uiCount)
{
    for (unsigned i = 0; i < uiCount; ++i) {
        if (i % 1000000 == 0) Use(i);
        asm volatile("" ::: "memory");
    }
}

void OwnDisabled(unsigned uiCount)
{
    static BSS::DBG::DbgLogFileConsumerC s_consumer("disabled", L"bench_disabled.log", 0);
    BSS::DBG::DbgLogConsumerC* pConsumer = &s_consumer;
    asm volatile("" : "+r"(pConsumer)); // nobody knows which one it is
    for (unsigned i = 0; i < uiCount; ++i) {
        if (i % 1000000 == 0)
            pConsumer->setLevel(i % 2000000 == 0 ? BSS::DBG::LEVEL_WARN : BSS::DBG::LEVEL_ERROR);
        pConsumer->Log(BSS::DBG::LEVEL_INFO, "block %u of %u", i, uiCount);
        asm volatile("" ::: "memory");
    }
}

} // namespace

void RunLogDisabled(const OptionsT& options)
{
    std::vector<CandidateT> candidates = {{"empty loop", [] { EmptyLoop(s_uiCalls); }},
                                          {"ours, disabled", [] { OwnDisabled(s_uiCalls); }},
                                          {"spdlog, disabled", [] { SpdlogDisabled(s_uiCalls); }}};
    RunInterleaved(candidates, options.nRounds);
    PrintTimes(candidates);
}

} // namespace Bench
