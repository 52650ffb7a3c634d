// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// GPS time, leap seconds and clocks.
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Tim/BSS_TIM_GpsClock.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"
#include "Support/ManualTicks.h"

#include <chrono>
#include <gtest/gtest.h>

using namespace BSS::TIM;

namespace {

TEST(GpsTime, BeginsOnTheSixthOfJanuary1980)
{
    EXPECT_EQ(GpsTimeOfUtc(315964800000, 0), (GpsTimeT{0, 0}));
    EXPECT_EQ(UtcOfGpsTime({0, 0}, 0), 315964800000);
}

TEST(GpsTime, IsAheadOfUtcByTheLeapSeconds)
{
    // The beginning of 2017 in UTC is 18 seconds into Sunday's GPS day.
    EXPECT_EQ(GpsTimeOfUtc(1483228800000, 18), (GpsTimeT{1930, 18000}));
    EXPECT_EQ(UtcOfGpsTime({1930, 18000}, 18), 1483228800000);
}

TEST(GpsTime, WeeksRollOverAfter604800000Milliseconds)
{
    EXPECT_EQ(GpsTimeOf(604799999), (GpsTimeT{0, 604799999}));
    EXPECT_EQ(GpsTimeOf(604800000), (GpsTimeT{1, 0}));
    EXPECT_EQ(GpsMilliseconds({1, 5}), 604800005);
    EXPECT_EQ(GpsTimeOf(-1), (GpsTimeT{0, 0}));
    EXPECT_LT((GpsTimeT{1, 604799999}), (GpsTimeT{2, 0}));
}

TEST(LeapSeconds, TheDefaultCountsUntilASourceHasTold)
{
    LeapSecondsC leap;
    EXPECT_EQ(leap.get(), 18);
    EXPECT_EQ(leap.getSource(), LeapSource::Default);
    EXPECT_EQ(leap.set(LeapSource::Site, 17), BSS::RC_OK);
    EXPECT_EQ(leap.get(), 17);
    EXPECT_EQ(leap.set(LeapSource::Glonass, 18), BSS::RC_OK);
    EXPECT_EQ(leap.getSource(), LeapSource::Glonass);
    EXPECT_EQ(leap.set(LeapSource::Forced, 30), BSS::RC_OK);
    EXPECT_EQ(leap.get(), 30);
    EXPECT_EQ(leap.clear(LeapSource::Forced), BSS::RC_OK);
    EXPECT_EQ(leap.get(), 18);
    EXPECT_EQ(leap.clear(LeapSource::Default), BSS::RC_INVALID_ARGUMENT);
}

TEST(LeapSeconds, WhatCannotBeIsRejected)
{
    LeapSecondsC leap;
    EXPECT_EQ(leap.set(LeapSource::Forced, -1), BSS::RC_VALUE_REJECTED);
    EXPECT_EQ(leap.set(LeapSource::Site, 100), BSS::RC_VALUE_REJECTED);
    EXPECT_EQ(leap.set(LeapSource::Galileo, 20), BSS::RC_VALUE_REJECTED) << "they come singly";
    EXPECT_EQ(leap.set(LeapSource::Galileo, 19), BSS::RC_OK);
    EXPECT_EQ(leap.get(), 19);
}

TEST(LeapSeconds, AChangeOfWhatCountsIsToldAndNoOther)
{
    struct ToldC final : BSS::UTI::ObserverC
    {
        ~ToldC() override { detachAll(); }
        void update(BSS::UTI::SubjectC&, std::uint32_t code,
                    const BSS::UTI::RefPtrT<BSS::UTI::SharedObjectC>&) override
        {
            codes.push_back(code);
        }
        std::vector<std::uint32_t> codes;
    } told;
    LeapSecondsC leap;
    leap.getSubject().attach(told);
    leap.set(LeapSource::Site, 18);
    EXPECT_TRUE(told.codes.empty());
    leap.set(LeapSource::Beidou, 19);
    EXPECT_EQ(told.codes, std::vector<std::uint32_t>{19});
}

TEST(GpsClock, TheSystemsFollowsTheWallClockAndTheLeapSeconds)
{
    SystemGpsClockC clock;
    const auto unixMs = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::system_clock::now().time_since_epoch())
            .count();
    };
    const std::int64_t before = unixMs();
    const std::int64_t now = UtcOfGpsTime(clock.now(), 18);
    EXPECT_GE(now, before);
    EXPECT_LE(now, unixMs());
    clock.getLeapSeconds().set(LeapSource::Forced, 28);
    EXPECT_GE(UtcOfGpsTime(clock.now(), 18), before + 10000);
}

TEST(LeapSeconds, TheSourcesCountInTheirOrder)
{
    LeapSecondsC leap;
    int seconds = 18;
    for (const LeapSource source : {LeapSource::Site, LeapSource::Qzss, LeapSource::Sbas, LeapSource::Beidou,
                                    LeapSource::Galileo, LeapSource::Glonass, LeapSource::Forced}) {
        EXPECT_EQ(leap.set(source, ++seconds), BSS::RC_OK);
        EXPECT_EQ(leap.getSource(), source);
        EXPECT_EQ(leap.get(), seconds);
    }
    for (const LeapSource source :
         {LeapSource::Forced, LeapSource::Glonass, LeapSource::Galileo, LeapSource::Beidou, LeapSource::Sbas,
          LeapSource::Qzss, LeapSource::Site}) {
        EXPECT_EQ(leap.getSource(), source);
        EXPECT_EQ(leap.clear(source), BSS::RC_OK);
        EXPECT_EQ(leap.get(), --seconds);
    }
    EXPECT_EQ(leap.getSource(), LeapSource::Default);
}

TEST(GpsClock, TheSystemsTellsItsObserversThatSomebodyHasSetIt)
{
    struct ToldC final : BSS::UTI::ObserverC
    {
        ~ToldC() override { detachAll(); }
        void update(BSS::UTI::SubjectC&, std::uint32_t,
                    const BSS::UTI::RefPtrT<BSS::UTI::SharedObjectC>&) override
        {
            ++times;
        }
        int times = 0;
    } told;
    SystemGpsClockC clock;
    clock.getSubject().attach(told);
    clock.notifyTimeSet();
    EXPECT_EQ(told.times, 1);
    clock.getLeapSeconds().set(LeapSource::Forced, 20);
    EXPECT_EQ(told.times, 2);
}

TEST(GpsClock, ASimulatedOneStandsUntilItIsSet)
{
    SimulatedGpsClockC clock({5, 10});
    EXPECT_EQ(clock.now(), (GpsTimeT{5, 10}));
    clock.pass(604800000);
    EXPECT_EQ(clock.now(), (GpsTimeT{6, 10}));
    clock.set({7, 0});
    EXPECT_EQ(clock.now(), (GpsTimeT{7, 0}));
}

TEST(TickClock, GoesOnWhereTheCounterWraps)
{
    Support::ManualTicks ticks(0xFFFFFFFEu);
    TickClockC clock(ticks);
    EXPECT_EQ(clock.now(), 0xFFFFFFFEu);
    std::uint64_t expected = 0xFFFFFFFEu;
    for (int wraps = 0; wraps < 3; ++wraps) {
        for (const std::uint32_t step : {1u, 1u, 0x80000000u, 0x7FFFFFFEu}) {
            ticks.add(step);
            expected += step;
            EXPECT_EQ(clock.now(), expected);
        }
    }
}

TEST(Tick, IsExtendedAcrossTheWrapOfACounter)
{
    EXPECT_EQ(BSS::HAL::ExtendTick(0, 7), 7u);
    EXPECT_EQ(BSS::HAL::ExtendTick(0xFFFFFFF0u, 0xFFFFFFF0u), 0xFFFFFFF0u);
    EXPECT_EQ(BSS::HAL::ExtendTick(0xFFFFFFF0u, 5), 0x100000005u);
    EXPECT_EQ(BSS::HAL::ExtendTick(0x3FFFFFFFFu, 0), 0x400000000u);
}

} // namespace
