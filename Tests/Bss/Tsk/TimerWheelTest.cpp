// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The order of the wheel against a sorted list, and the map of ids against the standard library's.
#include "Bss/Bss_Tsk/BSS_TSK_TimerIdMap.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimerWheel.h"

#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <unordered_map>

using namespace BSS::TSK::Timer;

namespace {

TEST(TimerWheel, AgreesWithASortedListOverManyRandomSteps)
{
    std::mt19937 random(42);
    const auto wheel = std::make_unique<TimerWheelC>();
    std::multimap<std::uint64_t, TimerRecordT*> sorted; // equal keys keep their order
    std::deque<TimerRecordT> records(300);
    std::vector<TimerRecordT*> idle;
    for (TimerRecordT& record : records)
        idle.push_back(&record);
    std::uint64_t now = 0xFFFFFE00; // close below a boundary of four levels
    wheel->reset(now);
    const std::uint32_t reaches[] = {1, 10, 300, 70000, 7200000};
    for (int step = 0; step < 30000; ++step) {
        const auto choice = random() % 4;
        if (choice <= 1 && !idle.empty()) {
            TimerRecordT* const record = idle.back();
            idle.pop_back();
            record->dueTime = now + random() % (reaches[random() % 5] + 1);
            wheel->insert(*record);
            sorted.emplace(record->dueTime, record);
        } else if (choice == 2 && !sorted.empty()) {
            const auto victim = std::next(sorted.begin(), static_cast<long>(random() % sorted.size()));
            wheel->remove(*victim->second);
            idle.push_back(victim->second);
            sorted.erase(victim);
        } else {
            now += random() % (reaches[random() % 5] + 1);
            while (TimerRecordT* const head = wheel->head(now)) {
                ASSERT_FALSE(sorted.empty());
                ASSERT_EQ(head, sorted.begin()->second);
                ASSERT_LE(head->dueTime, now);
                wheel->remove(*head);
                idle.push_back(head);
                sorted.erase(sorted.begin());
            }
            ASSERT_TRUE(sorted.empty() || sorted.begin()->first > now);
        }
        ASSERT_EQ(wheel->isEmpty(), sorted.empty());
        if (!sorted.empty()) {
            ASSERT_LE(wheel->nextTime(), sorted.begin()->first);
        } else {
            ASSERT_EQ(wheel->nextTime(), TimerWheelC::NEVER);
        }
    }
}

TEST(TimerWheel, WhatIsDueInThePastIsDueNow)
{
    const auto wheel = std::make_unique<TimerWheelC>();
    wheel->reset(1000);
    TimerRecordT past;
    past.dueTime = 10;
    wheel->insert(past);
    EXPECT_EQ(wheel->head(1000), &past);
}

TEST(TimerIdMap, AgreesWithAnotherMapOverManyRandomSteps)
{
    std::mt19937 random(7);
    TimerIdMapC map;
    std::unordered_map<std::uint32_t, TimerRecordT*> other;
    std::deque<TimerRecordT> records(1000);
    // Few different ids, close together and far apart, so that they collide.
    const auto anyId = [&] { return static_cast<std::uint32_t>(1 + random() % 500 + (random() % 4 << 20)); };
    for (int step = 0; step < 100000; ++step) {
        const std::uint32_t id = anyId();
        if (random() % 2 == 0) {
            if (!other.contains(id)) {
                TimerRecordT& record = records[random() % records.size()];
                map.insert(id, record);
                other.emplace(id, &record);
            }
        } else {
            ASSERT_EQ(map.erase(id), other.erase(id) == 1);
        }
        const std::uint32_t asked = anyId();
        const auto found = other.find(asked);
        ASSERT_EQ(map.find(asked), found != other.end() ? found->second : nullptr);
        ASSERT_EQ(map.empty(), other.empty());
    }
    EXPECT_EQ(map.find(0), nullptr);
    EXPECT_FALSE(map.erase(0));
}

// Timers that are killed in the order in which they were set.
TEST(TimerIdMap, NoLongRunsFormHoweverManyIdsAreCountedUp)
{
    constexpr std::uint32_t LIVING = 100000;
    constexpr std::size_t LONG_RUN = 64;
    TimerIdMapC map;
    TimerRecordT record;
    for (std::uint32_t id = 1; id <= LIVING; ++id)
        map.insert(id, record);
    EXPECT_LT(map.getLongestRun(), LONG_RUN);
    for (std::uint32_t id = 1; id <= LIVING; ++id) {
        ASSERT_TRUE(map.erase(id));
        map.insert(LIVING + id, record);
        if (id % 10000 == 0) {
            ASSERT_LT(map.getLongestRun(), LONG_RUN) << id;
        }
    }
}

TEST(TimerIdMap, NoLongRunsFormOfIdsOfWhichMostHaveGone)
{
    for (const std::uint32_t step : {2u, 3u, 16u, 256u, 1000u, 4096u}) {
        TimerIdMapC map;
        TimerRecordT record;
        for (std::uint32_t n = 1; n <= 20000; ++n)
            map.insert(n * step, record);
        EXPECT_LT(map.getLongestRun(), 64u) << step;
    }
}

} // namespace
