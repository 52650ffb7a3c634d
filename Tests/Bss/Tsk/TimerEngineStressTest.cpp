// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Callbacks that kill themselves and each other and set timers, while other threads set and kill them too: of
// each timer is counted what became of it.
#include "TimerFixture.h"

#include <array>
#include <atomic>
#include <random>
#include <thread>

using namespace BSS::TSK::Timer;
using TaskTests::OnTimer;
using TaskTests::s_inside;
using TaskTests::TimerTest;

namespace {

constexpr std::uint32_t THREADS = 4;
constexpr std::uint32_t EACH = 300;
constexpr std::uint32_t SET_BY_THREADS = THREADS * EACH;
constexpr std::uint32_t TIMERS = 2 * SET_BY_THREADS; // the other half is left to the callbacks

// What became of one timer, whose user value is its place in the list of these.
struct LedgerT
{
    std::atomic<std::uint32_t> id{0}; ///< 0 until it has been set
    std::atomic<std::uint32_t> calls{0};
    std::atomic<std::uint32_t> kills{0};
    std::atomic<std::uint32_t> callsAfterKill{0};
};

class TimerStress : public TimerTest
{
protected:
    static bool IsPeriodic(std::uint32_t number) { return number % 3 == 0; }

    void SetOne(std::uint32_t number)
    {
        ledgers[number].id =
            Set(1 + number % 7, number, IsPeriodic(number) ? TIMER_PERIODIC : TIMER_ONE_SHOT, number % 5);
        EXPECT_NE(ledgers[number].id.load(), 0u);
    }
    void Kill(std::uint32_t number, std::uint32_t id)
    {
        if (engine.killTimer(id) == BSS::RC_OK) ++ledgers[number].kills;
    }
    void KillOne(std::uint32_t number)
    {
        const std::uint32_t id = ledgers[number].id.load();
        if (id != 0) Kill(number, id);
    }
    // On the engine's thread.
    void Call(std::uint32_t id, std::uint32_t number)
    {
        LedgerT& ledger = ledgers[number];
        if (ledger.kills.load() != 0) ++ledger.callsAfterKill;
        ++ledger.calls;
        const std::uint32_t nSet = nSetByCallbacks.load();
        switch (random() % 4) {
        case 0:
            Kill(number, id);
            break;
        case 1:
            KillOne(static_cast<std::uint32_t>(random() % TIMERS));
            break;
        case 2:
            if (nSet == SET_BY_THREADS) break;
            SetOne(SET_BY_THREADS + nSet);
            ++nSetByCallbacks;
            break;
        default:
            break;
        }
    }

    std::vector<LedgerT> ledgers{TIMERS};
    std::atomic<std::uint32_t> nSetByCallbacks{0};
    std::mt19937 random{7}; // the engine's thread's
};

TEST_F(TimerStress, ATimerIsKilledOnceAndNeverCalledAfterwardsWhoeverKillsIt)
{
    s_inside = [this](std::uint32_t id, std::uint32_t number) { Call(id, number); };
    Start();
    std::vector<std::thread> threads;
    std::atomic<std::uint32_t> nRunning{THREADS};
    for (std::uint32_t n = 0; n < THREADS; ++n) {
        threads.emplace_back([&, n] {
            std::mt19937 own(n);
            for (std::uint32_t i = 0; i < EACH; ++i) {
                SetOne(n * EACH + i);
                if (i % 4 == 0) KillOne(static_cast<std::uint32_t>(own() % TIMERS));
            }
            --nRunning;
        });
    }
    do {
        EXPECT_TRUE(ticks.turn(1));
    } while (nRunning.load() != 0);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(ticks.turnStepwise(20)); // all one-shots are over, but for those that callbacks have just set
    for (std::uint32_t number = 0; number < TIMERS; ++number)
        KillOne(number);
    EXPECT_EQ(engine.stop(), 1);
    EXPECT_EQ(engine.getActiveCount(), 0u);
    EXPECT_TRUE(reports.Reports().empty());
    EXPECT_GT(nSetByCallbacks.load(), 0u);
    for (std::uint32_t number = 0; number < SET_BY_THREADS + nSetByCallbacks.load(); ++number) {
        const LedgerT& ledger = ledgers[number];
        EXPECT_EQ(ledger.callsAfterKill.load(), 0u) << number;
        if (IsPeriodic(number)) {
            EXPECT_EQ(ledger.kills.load(), 1u) << number;
        } else {
            EXPECT_LE(ledger.kills.load(), 1u) << number;
            EXPECT_LE(ledger.calls.load(), 1u) << number;
            EXPECT_GE(ledger.kills.load() + ledger.calls.load(), 1u) << number;
        }
    }
}

} // namespace
