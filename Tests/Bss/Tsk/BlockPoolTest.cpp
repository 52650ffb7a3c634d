// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory of messages: whose it is, and that it comes back.
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

using namespace BSS::TSK;

namespace {

constexpr std::size_t IN_A_SLAB = 63;

class BlockPoolTest : public testing::TestWithParam<std::size_t>
{
protected:
    std::vector<void*> Allocate(std::size_t count) const
    {
        std::vector<void*> blocks;
        for (std::size_t i = 0; i < count; ++i)
            blocks.push_back(BlockPool::Allocate(GetParam()));
        return blocks;
    }
    void Free(const std::vector<void*>& blocks) const
    {
        for (void* const block : blocks)
            BlockPool::Free(block, GetParam());
    }
    void FreeElsewhere(const std::vector<void*>& blocks) const
    {
        std::thread([&] { Free(blocks); }).join();
    }
};

INSTANTIATE_TEST_SUITE_P(Sizes, BlockPoolTest,
                         testing::Values(BlockPool::SMALL_BYTES, BlockPool::LARGE_BYTES));

TEST_P(BlockPoolTest, BlocksAreAlignedForAnything)
{
    for (void* const block : Allocate(1)) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
        BlockPool::Free(block, GetParam());
    }
}

TEST_P(BlockPoolTest, WhatIsFreedOnAnotherThreadIsUsedAgain)
{
    std::set<void*> seen;
    for (int round = 0; round < 200; ++round) {
        const std::vector<void*> blocks = Allocate(100);
        seen.insert(blocks.begin(), blocks.end());
        FreeElsewhere(blocks);
    }
    EXPECT_LE(seen.size(), 100 + 3 * IN_A_SLAB);
}

TEST_P(BlockPoolTest, WhatIsFreedOnTheSameThreadIsUsedAgain)
{
    std::set<void*> seen;
    for (int round = 0; round < 200; ++round) {
        const std::vector<void*> blocks = Allocate(10);
        seen.insert(blocks.begin(), blocks.end());
        Free(blocks);
    }
    EXPECT_LE(seen.size(), 10 + 3 * IN_A_SLAB);
}

TEST_P(BlockPoolTest, ABlockThatIsKeptDoesNotKeepItsNeighboursFromBeingUsed)
{
    constexpr std::size_t COUNT = 40 * IN_A_SLAB;
    const std::vector<void*> first = Allocate(COUNT);
    std::vector<void*> kept;
    std::vector<void*> given;
    for (std::size_t i = 0; i < COUNT; ++i)
        (i % 4 == 0 ? kept : given).push_back(first[i]);
    FreeElsewhere(given);
    const std::vector<void*> second = Allocate(given.size());
    const std::set<void*> known(given.begin(), given.end());
    const auto nNew = std::count_if(second.begin(), second.end(),
                                    [&](void* block) { return known.find(block) == known.end(); });
    EXPECT_LE(nNew, static_cast<std::ptrdiff_t>(3 * IN_A_SLAB));
    Free(kept);
    Free(second);
}

TEST_P(BlockPoolTest, ThreadsThatEndLeaveWhatTheyHadToOthers)
{
    constexpr std::size_t MOST_SLABS = 40;
    std::set<void*> seen;
    for (std::size_t round = 0; round < 10 * MOST_SLABS; ++round) {
        std::thread([&] {
            const std::vector<void*> blocks = Allocate(IN_A_SLAB / 2);
            seen.insert(blocks.begin(), blocks.end());
            Free(blocks);
        }).join();
    }
    EXPECT_LE(seen.size(), MOST_SLABS * IN_A_SLAB);
}

// Each thread writes its mark into every byte of its blocks, hands them to any other and looks at what it is
// handed: a block that two had at once would hold the wrong one. There are more threads than the pool lets
// allocate side by side.
TEST_P(BlockPoolTest, NoBlockIsEverGivenToTwoAtOnce)
{
    constexpr int THREADS = 40;
    constexpr int ROUNDS = 20000;
    std::array<std::atomic<unsigned char*>, 256> places{};
    std::atomic<int> nWrong{0};
    const std::size_t size = GetParam();
    const auto look = [&](unsigned char* block) {
        if (block == nullptr) return;
        if (std::any_of(block, block + size, [&](unsigned char byte) { return byte != block[0]; })) ++nWrong;
        BlockPool::Free(block, size);
    };
    std::vector<std::thread> threads;
    for (int n = 0; n < THREADS; ++n) {
        threads.emplace_back([&, n] {
            std::uint32_t random = static_cast<std::uint32_t>(n) + 1;
            for (int round = 0; round < ROUNDS; ++round) {
                random = random * 1664525u + 1013904223u;
                auto* const block = static_cast<unsigned char*>(BlockPool::Allocate(size));
                std::fill_n(block, size, static_cast<unsigned char>(random >> 8));
                look(places[random >> 24].exchange(block));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (std::atomic<unsigned char*>& place : places)
        look(place.load());
    EXPECT_EQ(nWrong.load(), 0);
}

} // namespace
