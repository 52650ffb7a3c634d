// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Copying a string is one increment and one decrement, as copying a std::shared_ptr is. The standard library
// leaves out the atomic operations as long as a process has never had a second thread, which ours do not; so
// there is one first.
#include "Bench_Bss.h"

#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <memory>
#include <new>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned s_uiCopies = 20000000;

template<typename T>
void CopyAndDrop(const T& original)
{
    for (unsigned i = 0; i < s_uiCopies; ++i) {
        T copy(original);
        asm volatile("" : : "g"(&copy) : "memory");
    }
}

} // namespace

void RunStrings(const OptionsT& options)
{
    std::thread([] {}).join();
    const BSS::UTI::StringC shortText(L"15 characters..");
    const BSS::UTI::StringC longText(L"a text that does not fit into the block itself");
    const auto pointer = std::make_shared<int>(1);
    std::vector<CandidateT> candidates = {{"StringC, 15 characters", [&] { CopyAndDrop(shortText); }},
                                          {"StringC, 46 characters", [&] { CopyAndDrop(longText); }},
                                          {"std::shared_ptr", [&] { CopyAndDrop(pointer); }}};
    RunInterleaved(candidates, options.nRounds);
    PrintTimes(candidates);
}

} // namespace Bench
