// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Copying a string is one increment and one decrement, as copying a std::shared_ptr is. The standard library
// leaves out the atomic operations as long as a process has never had a second thread, which ours do not; so
// there is one first.
#include "Bench_Bss.h"

#include "Bss/Bss_Uti/BSS_UTI_String.h"
#include "Support/AllocationCount.h"

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

std::size_t AllocationsOf(const wchar_t* pszText)
{
    const Support::AllocationCount count;
    const BSS::UTI::StringC text(pszText);
    asm volatile("" : : "g"(&text) : "memory");
    return count.Count();
}

} // namespace

void RunStrings(const OptionsT& options)
{
    std::thread([] {}).join();
    const wchar_t* const pszShort = L"15 characters..";
    const wchar_t* const pszLong = L"16 characters...";
    const BSS::UTI::StringC shortText(pszShort);
    const BSS::UTI::StringC longText(pszLong);
    const auto pointer = std::make_shared<int>(1);
    std::vector<CandidateT> candidates = {{"std::shared_ptr", [&] { CopyAndDrop(pointer); }},
                                          {"StringC, 15 characters", [&] { CopyAndDrop(shortText); }},
                                          {"StringC, 16 characters", [&] { CopyAndDrop(longText); }}};
    RunInterleaved(candidates, options.nRounds);
    PrintTimes(candidates);
    std::printf("  allocations made by 15 characters: %zu, by 16: %zu\n", AllocationsOf(pszShort),
                AllocationsOf(pszLong));
}

} // namespace Bench
