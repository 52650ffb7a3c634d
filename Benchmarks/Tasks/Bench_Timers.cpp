// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Timers: what setting and killing costs among few and among many, and how late they fire.
#include "Bench_TaskCases.h"

#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerEngine.h"

#include <algorithm>
#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

namespace Bench {

namespace {

using namespace BSS::TSK::Timer;

void Nothing(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}

// An engine with that many timers, none of which is due during the measurement.
class CrowdC
{
public:
    explicit CrowdC(unsigned nTimers)
    {
        m_engine.start(1);
        for (unsigned i = 0; i < nTimers; ++i)
            m_ids.push_back(Set());
    }
    ~CrowdC()
    {
        for (const std::uint32_t uiId : m_ids)
            static_cast<void>(m_engine.killTimer(uiId));
        m_engine.stop();
    }
    CrowdC(const CrowdC&) = delete;
    CrowdC& operator=(const CrowdC&) = delete;

    /// Each time another of the crowd goes and a new one comes.
    void SetAndKill(unsigned uiCount)
    {
        for (unsigned i = 0; i < uiCount; ++i) {
            std::uint32_t& uiId = m_ids[m_random() % m_ids.size()];
            if (m_engine.killTimer(uiId) != BSS::RC_OK) std::abort();
            uiId = Set();
        }
    }

    /// Each time the oldest goes and a new one comes.
    void SetAndKillOldest(unsigned uiCount)
    {
        for (unsigned i = 0; i < uiCount; ++i) {
            std::uint32_t& uiId = m_ids[m_uiOldest++ % m_ids.size()];
            if (m_engine.killTimer(uiId) != BSS::RC_OK) std::abort();
            uiId = Set();
        }
    }

private:
    std::uint32_t Set()
    {
        const std::uint32_t uiDelay = 600000 + static_cast<std::uint32_t>(m_random() % 6000000);
        return m_engine.setTimer(uiDelay, 55, &Nothing, 0, TIMER_ONE_SHOT, TIMER_FIRST_AFTER_PERIOD);
    }

    TimerEngineC m_engine;
    std::mt19937 m_random{1};
    std::vector<std::uint32_t> m_ids;
    std::size_t m_uiOldest = 0;
};

constexpr unsigned s_nTimers = 300;
constexpr unsigned s_uiSpacingMs = 2;

std::int64_t NowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::vector<std::int64_t> s_dueNs;
std::vector<std::int64_t> s_lateNs;
std::atomic<unsigned> s_nFired;

void Fired(std::uint32_t uiIndex)
{
    s_lateNs[uiIndex] = NowNs() - s_dueNs[uiIndex];
    s_nFired.fetch_add(1);
}

void OnTimer(std::uint32_t, std::uint32_t, std::uint32_t uiIndex, std::uint32_t, std::uint32_t)
{
    Fired(uiIndex);
}

// Both are asked for the same instants: the beginnings of ticks.
double LateP99(const std::function<void(unsigned index, std::uint64_t dueTick)>& set)
{
    s_dueNs.assign(s_nTimers, 0);
    s_lateNs.assign(s_nTimers, 0);
    s_nFired = 0;
    const std::uint64_t ullBegin = BSS::HAL::TickCount64() + 100;
    for (unsigned i = 0; i < s_nTimers; ++i) {
        const std::uint64_t ullDue = ullBegin + std::uint64_t{i} * s_uiSpacingMs;
        s_dueNs[i] = static_cast<std::int64_t>(ullDue) * 1000000;
        set(i, ullDue);
    }
    while (s_nFired.load() != s_nTimers)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::sort(s_lateNs.begin(), s_lateNs.end());
    return static_cast<double>(s_lateNs[s_nTimers * 99 / 100]) * 1e-9;
}

// The tick may pass on between the engine's look at it and ours, so the due time is what the engine has made
// of it.
double OursLate(TimerEngineC& engine)
{
    return LateP99([&](unsigned uiIndex, std::uint64_t ullDue) {
        for (;;) {
            const std::uint64_t ullBefore = BSS::HAL::TickCount64();
            const auto uiDelay = static_cast<std::uint32_t>(ullDue - ullBefore);
            const std::uint32_t uiId =
                engine.setTimer(uiDelay, 1, &OnTimer, uiIndex, TIMER_ONE_SHOT, uiDelay);
            if (BSS::HAL::TickCount64() == ullBefore) return;
            static_cast<void>(engine.killTimer(uiId));
        }
    });
}

double AsioLate(boost::asio::io_context& context)
{
    std::vector<std::unique_ptr<boost::asio::steady_timer>> timers;
    return LateP99([&](unsigned uiIndex, std::uint64_t ullDue) {
        const std::chrono::steady_clock::time_point due{std::chrono::milliseconds(ullDue)};
        timers.push_back(std::make_unique<boost::asio::steady_timer>(context, due));
        timers.back()->async_wait([uiIndex](const boost::system::error_code& error) {
            if (!error) Fired(uiIndex);
        });
    });
}

} // namespace

void RunTimerSet(const OptionsT& options)
{
    constexpr unsigned PAIRS = 20000;
    const auto run = [&](const char* pszWhich, void (CrowdC::*setAndKill)(unsigned)) {
        CrowdC few(100);
        CrowdC many(100000);
        std::vector<CandidateT> candidates = {{"among 100", [&] { (few.*setAndKill)(PAIRS); }},
                                              {"among 100000", [&] { (many.*setAndKill)(PAIRS); }}};
        RunInterleaved(candidates, options.nRounds);
        PrintTimes(candidates);
        const auto median = [&](std::size_t n) { return MedianOf(candidates[n].vecClockSeconds); };
        std::printf("  one pair: %.0f ns among 100, %.0f ns among 100000\n", median(0) / PAIRS * 1e9,
                    median(1) / PAIRS * 1e9);
        PrintRatio(std::string("set and kill ") + pszWhich + ", 100000 / 100 active timers",
                   median(1) / median(0), "at most 3");
    };
    run("the oldest", &CrowdC::SetAndKillOldest);
    run("any", &CrowdC::SetAndKill);
}

void RunTimerLate(const OptionsT& options)
{
    TimerEngineC engine;
    engine.start(1);
    boost::asio::io_context context{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work(context.get_executor());
    std::thread runner([&] { context.run(); });
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int iRound = -1; iRound < options.nRounds; ++iRound) {
        const double dTheirs = AsioLate(context);
        const double dOurs = OursLate(engine);
        if (iRound < 0) continue;
        theirs.push_back(dTheirs);
        ours.push_back(dOurs);
    }
    work.reset();
    runner.join();
    engine.stop();
    std::printf(
        "  99 %% of %u timers are at most this late, median of %d rounds: asio %.1f us, ours %.1f us\n",
        s_nTimers, options.nRounds, MedianOf(theirs) * 1e6, MedianOf(ours) * 1e6);
    PrintRatio("lateness, ours / steady_timer", MedianOf(ours) / MedianOf(theirs), "at most 1.2");
}

} // namespace Bench
