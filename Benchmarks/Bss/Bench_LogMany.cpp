// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Eight threads log a million lines each to one file. Each line bears its thread, its number and a sum over
// both; the file is read back and every line of every thread must be there, whole, once and in its order.
#include "Bench_Bss.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned s_uiThreads = 8;
constexpr unsigned s_uiLines = 1000000;

unsigned SumOf(unsigned uiWho, unsigned uiLine)
{
    return (uiLine * 2654435761u) ^ (uiWho * 40503u) ^ (uiLine >> 7);
}

void LogLines(BSS::DBG::DbgLogConsumerC& consumer, unsigned uiWho)
{
    for (unsigned i = 0; i < s_uiLines; ++i)
        consumer.Log(BSS::DBG::LEVEL_INFO, "thread %u line %u sum %08x", uiWho, i, SumOf(uiWho, i));
}

[[noreturn]] void Fail(const std::string& strLine)
{
    std::fprintf(stderr, "not as it was logged: %s\n", strLine.c_str());
    std::exit(1);
}

// The sum over all lines' sums.
unsigned long long CheckLines(const std::string& strPath)
{
    std::ifstream file(strPath);
    std::array<unsigned, s_uiThreads> next = {};
    unsigned long long ullSum = 0;
    for (std::string line; std::getline(file, line);) {
        line.resize(line.find_last_not_of(' ') + 1); // what the last line of a page is filled up with
        const std::size_t nBegin = line.find(" INFO thread ");
        unsigned uiWho = 0;
        unsigned uiLine = 0;
        unsigned uiSum = 0;
        int nEnd = 0;
        if (nBegin == std::string::npos ||
            std::sscanf(line.c_str() + nBegin, " INFO thread %u line %u sum %x%n", &uiWho, &uiLine, &uiSum,
                        &nEnd) != 3)
            Fail(line);
        const bool bWhole = nBegin + static_cast<std::size_t>(nEnd) == line.size() && line.front() == '[';
        if (!bWhole || uiWho >= s_uiThreads || uiLine != next[uiWho]++ || uiSum != SumOf(uiWho, uiLine))
            Fail(line);
        ullSum += uiSum;
    }
    for (const unsigned uiFound : next)
        if (uiFound != s_uiLines) Fail(std::to_string(uiFound) + " lines of a thread");
    return ullSum;
}

} // namespace

void RunLogMany(const OptionsT& options)
{
    BSS::OS::SetLogDirectory(BSS::HAL::WidePath(options.strDirectory));
    const std::string strPath = options.strDirectory + "/bench_many.log";
    std::remove(strPath.c_str());
    const double dBegin = ClockSeconds();
    {
        BSS::DBG::DbgLogFileConsumerC consumer("many", L"bench_many.log", 0);
        std::array<std::thread, s_uiThreads> threads;
        for (unsigned uiWho = 0; uiWho < s_uiThreads; ++uiWho)
            threads[uiWho] = std::thread([&consumer, uiWho] { LogLines(consumer, uiWho); });
        for (std::thread& thread : threads)
            thread.join();
    } // what still waits is handed over here
    const double dSeconds = ClockSeconds() - dBegin;
    unsigned long long ullExpected = 0;
    for (unsigned uiWho = 0; uiWho < s_uiThreads; ++uiWho)
        for (unsigned i = 0; i < s_uiLines; ++i)
            ullExpected += SumOf(uiWho, i);
    const unsigned long long ullFound = CheckLines(strPath);
    if (ullFound != ullExpected) Fail("the sum of sums");
    std::printf("  %u lines in %.2f s, %.2f million a second; found all, sum %llx of %llx\n",
                s_uiThreads * s_uiLines, dSeconds, s_uiThreads * s_uiLines / dSeconds / 1e6, ullFound,
                ullExpected);
    std::remove(strPath.c_str());
    BSS::OS::SetLogDirectory(L"");
}

} // namespace Bench
