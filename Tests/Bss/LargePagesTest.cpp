// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory straight from the system.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>

namespace Hal = BSS::HAL;

namespace {

TEST(LargePages, APageIsZeroAndCanBeWrittenFromEndToEnd)
{
    auto* const pBytes = static_cast<unsigned char*>(Hal::TakeLargePage());
    ASSERT_NE(pBytes, nullptr);
    EXPECT_TRUE(std::all_of(pBytes, pBytes + Hal::s_nLargePageBytes, [](unsigned char c) { return c == 0; }));
    std::memset(pBytes, 0xA5, Hal::s_nLargePageBytes);
    EXPECT_EQ(pBytes[Hal::s_nLargePageBytes - 1], 0xA5);
    Hal::GiveLargePageBack(pBytes);
}

TEST(LargePages, GivingOneBackLeavesTheOthersWhole)
{
    std::array<unsigned char*, 8> apPages{};
    for (unsigned char*& pPage : apPages) {
        pPage = static_cast<unsigned char*>(Hal::TakeLargePage());
        ASSERT_NE(pPage, nullptr);
        std::memset(pPage, 0x5A, Hal::s_nLargePageBytes);
    }
    for (std::size_t i = 0; i < apPages.size(); i += 2)
        Hal::GiveLargePageBack(apPages[i]);
    for (std::size_t i = 1; i < apPages.size(); i += 2) {
        EXPECT_TRUE(std::all_of(apPages[i], apPages[i] + Hal::s_nLargePageBytes,
                                [](unsigned char c) { return c == 0x5A; }));
        Hal::GiveLargePageBack(apPages[i]);
    }
}

TEST(LargePages, OneThatWasGivenBackIsZeroWhenItIsTakenAgain)
{
    for (int i = 0; i < 4; ++i) {
        auto* const pBytes = static_cast<unsigned char*>(Hal::TakeLargePage());
        ASSERT_NE(pBytes, nullptr);
        EXPECT_EQ(pBytes[0], 0);
        EXPECT_EQ(pBytes[Hal::s_nLargePageBytes - 1], 0);
        std::memset(pBytes, 0xFF, Hal::s_nLargePageBytes);
        Hal::GiveLargePageBack(pBytes);
    }
}

TEST(LargePages, GivingNothingBackDoesNothing)
{
    Hal::GiveLargePageBack(nullptr);
}

} // namespace
