// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The list whose items never move.
#include "Sio/Sio_StableList.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace {

using SIO::StableListT;

/// Counts how many of its kind there are.
struct CountedT
{
    CountedT(int& iAlive, int iValue) : rAlive(iAlive), iNumber(iValue) { ++rAlive; }
    ~CountedT() { --rAlive; }
    CountedT(const CountedT&) = delete;
    CountedT& operator=(const CountedT&) = delete;

    int& rAlive;
    int iNumber;
};

constexpr int s_iMany = 300000; // several large pieces

StableListT<int> ListOf(int iCount)
{
    StableListT<int> list;
    for (int i = 0; i < iCount; ++i)
        list.emplace_back(i);
    return list;
}

TEST(StableList, HoldsItsItemsInOrder)
{
    const StableListT<int> list = ListOf(s_iMany);
    ASSERT_EQ(list.size(), static_cast<std::size_t>(s_iMany));
    int iExpected = 0;
    for (const int i : list)
        ASSERT_EQ(i, iExpected++);
    EXPECT_EQ(iExpected, s_iMany);
    EXPECT_EQ(list[123456], 123456);
    EXPECT_EQ(list.back(), s_iMany - 1);
}

TEST(StableList, NeverMovesAnItem)
{
    StableListT<int> list;
    std::vector<const int*> places;
    for (int i = 0; i < s_iMany; ++i)
        places.push_back(&list.emplace_back(i));
    for (int i = 0; i < s_iMany; ++i)
        ASSERT_EQ(&list[static_cast<std::size_t>(i)], places[static_cast<std::size_t>(i)]);
}

TEST(StableList, ShrinksAndGrowsAgainAtEverySize)
{
    StableListT<int> list = ListOf(1100000); // two large pieces of ints and a rest
    for (int i = 1100000; i-- > 0;) {
        ASSERT_EQ(list.back(), i);
        list.pop_back();
    }
    EXPECT_TRUE(list.empty());
    for (int i = 0; i < 1100000; ++i)
        ASSERT_EQ(list.emplace_back(-i), -i);
    EXPECT_EQ(list[600000], -600000);
    EXPECT_EQ(list[4095], -4095);
    EXPECT_EQ(list[4096], -4096);
}

TEST(StableList, AppendsManyAtOnceAcrossItsPieces)
{
    StableListT<int> list;
    std::vector<int> numbers(1100000);
    std::iota(numbers.begin(), numbers.end(), 0);
    list.append(numbers.data(), 0);
    EXPECT_TRUE(list.empty());
    for (std::size_t nDone = 0, nPart = 1; nDone < numbers.size(); nDone += nPart, nPart = 3 * nPart) {
        nPart = std::min(nPart, numbers.size() - nDone);
        list.append(numbers.data() + nDone, nPart);
        ASSERT_EQ(list.size(), nDone + nPart);
        ASSERT_EQ(list.back(), numbers[nDone + nPart - 1]);
    }
    EXPECT_TRUE(std::equal(list.begin(), list.end(), numbers.begin()));
    EXPECT_EQ(list.emplace_back(-1), -1);
    list.pop_back();
    EXPECT_EQ(list.back(), 1099999);
}

TEST(StableList, DestroysEachItemOnce)
{
    int iAlive = 0;
    {
        StableListT<CountedT> list;
        for (int i = 0; i < 3000; ++i)
            list.emplace_back(iAlive, i);
        EXPECT_EQ(iAlive, 3000);
        list.pop_back();
        EXPECT_EQ(iAlive, 2999);
        list.clear();
        EXPECT_EQ(iAlive, 0);
        list.emplace_back(iAlive, 1);
        EXPECT_EQ(list.back().iNumber, 1);
    }
    EXPECT_EQ(iAlive, 0);
}

TEST(StableList, MovingLeavesTheOtherEmptyAndItemsInPlace)
{
    StableListT<int> list = ListOf(1000);
    const int* const pItem = &list[999];
    StableListT<int> other = std::move(list);
    EXPECT_EQ(&other[999], pItem);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.emplace_back(7), 7);
    other = std::move(list);
    EXPECT_EQ(other.size(), 1u);
    EXPECT_EQ(other.back(), 7);
}

} // namespace
