// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What check finds in the headers of blocks, and in what they say of the scan.
#include "Tools/CheckTest.h"

#include <cmath>
#include <limits>

namespace {

using namespace CheckTest;
using Support::Bytes;

constexpr double s_dNaN = std::numeric_limits<double>::quiet_NaN();

/// CleanScan with another value in the entry with `tag`.
QsbBytes WithDouble(std::uint32_t tag, double value)
{
    const QsbBytes clean = CleanScan();
    BytesT bytes = clean.Get();
    const BytesT number = Bytes(value);
    std::copy(number.begin(), number.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(EntryOffset(clean, tag) + 8));
    return QsbBytes::Nothing().Raw(bytes);
}

/// CleanScan with another type in the entry with `tag`.
BytesT WithType(std::uint32_t tag, std::uint32_t type)
{
    const QsbBytes clean = CleanScan();
    return Support::With32(clean.Get(), EntryOffset(clean, tag), type);
}

BytesT WithTag(std::uint32_t tag, std::uint32_t other)
{
    const QsbBytes clean = CleanScan();
    return Support::With32(clean.Get(), EntryOffset(clean, tag) + 4, other);
}

BytesT WithValue(std::uint32_t tag, std::uint32_t value)
{
    const QsbBytes clean = CleanScan();
    return Support::With32(clean.Get(), EntryOffset(clean, tag) + 8, value);
}

BytesT WithVersion(std::uint32_t version)
{
    return Support::With32(CleanScan().Get(), 20, version);
}

TEST(CheckHeader, Versions1And2AreInOrderAndNewerOnesANote)
{
    EXPECT_TRUE(FindsOnly(Check(WithVersion(0x00010000)), ""));
    EXPECT_TRUE(FindsOnly(Check(WithVersion(0x00020000)), ""));
    EXPECT_TRUE(FindsOnly(Check(WithVersion(0x00020001)), "note QSB-103"));
}

TEST(CheckHeader, VersionsBetweenThemAndBelowAreErrors)
{
    for (const std::uint32_t version : {0u, 0xFFFFu, 0x00010001u, 0x00018000u, 0x0001FFFFu}) {
        const auto check = Check(WithVersion(version));
        EXPECT_TRUE(FindsOnly(check, "error QSB-102")) << version;
        EXPECT_EQ(Find(check, "QSB-102")->oOffset, 12u);
    }
}

TEST(CheckHeader, AFileHeaderWithoutVersionIsAnErrorAndAnUnfinishedOneIsNamed)
{
    EXPECT_TRUE(FindsOnly(Check(Support::With32(CleanScan().Get(), 16, 50)), "error QSB-101"));
    QsbBytes unfinished = QsbBytes::Nothing();
    unfinished.Block(Support::s_uiFileHeader);
    EXPECT_EQ(Find(Check(unfinished), "QSB-101")->strFound,
              "an empty header; the program that wrote the file did not finish it");
}

TEST(CheckHeader, MoreThanTheVersionInTheFileHeaderIsANote)
{
    QsbBytes file;
    file.Entry(7, 9, 0);
    EXPECT_NE(Find(Check(file), "QSB-104"), nullptr);
}

TEST(CheckHeader, AnotherTypeAndUnusedBytesOfTheVersionAreNotes)
{
    const BytesT bytes = Support::With32(CleanScan().Get(), 12, 6);
    EXPECT_TRUE(FindsOnly(Check(bytes), "note QSB-211"));
    EXPECT_TRUE(FindsOnly(Check(Support::With32(CleanScan().Get(), 24, 1)), "note QSB-212"));
}

TEST(CheckHeader, ASecondFileHeaderIsAWarning)
{
    QsbBytes file = CleanScan();
    file.Block(Support::s_uiFileHeader);
    EXPECT_TRUE(FindsOnly(Check(file), "warning QSB-105"));
}

TEST(CheckHeader, AFileWithoutPointCloudIsAnError)
{
    EXPECT_TRUE(FindsOnly(Check(QsbBytes()), "error QSB-201"));
}

TEST(CheckHeader, OfSeveralPointCloudsTheOneThatReadersTakeIsJudged)
{
    QsbBytes file = CleanScan(3, 3);
    file.Block(1).Entry(40, 100, 12).Entry(5, 101, 2);
    const auto check = Check(file);
    EXPECT_EQ(check.oReadBlock, 2u);
    EXPECT_TRUE(FindsOnly(check, "note QSB-202 note QSB-219 note QSB-307"));
}

TEST(CheckHeader, WhatIsWrongWithAPointCloudThatIsNotReadIsNoError)
{
    QsbBytes file = CleanScan();
    file.Block(3).Entry(40, 100, 12).Entry(9, 105, 0);
    EXPECT_TRUE(FindsOnly(Check(file), "warning QSB-207 warning QSB-203 note QSB-202 note QSB-219"));
}

TEST(CheckHeader, ATagAbove104IsAnErrorAtItsEntry)
{
    const QsbBytes clean = CleanScan();
    const auto check = Check(WithTag(26, 105));
    EXPECT_TRUE(FindsOnly(check, "error QSB-203"));
    EXPECT_EQ(Find(check, "QSB-203")->oOffset, EntryOffset(clean, 26));
}

TEST(CheckHeader, AnUnknownTagIsANote)
{
    for (const std::uint32_t tag : {0u, 27u, 99u})
        EXPECT_TRUE(FindsOnly(Check(WithTag(26, tag)), "note QSB-213")) << tag;
}

TEST(CheckHeader, AnUnknownPositionTypeIsAnErrorAndLeavesNoPointsToRead)
{
    const auto check = Check(WithType(100, 39));
    EXPECT_TRUE(FindsOnly(check, "error QSB-204"));
    EXPECT_FALSE(check.CanReadPoints());
}

TEST(CheckHeader, WithoutPositionEntryPositionsAreDoublesWhichIsANote)
{
    QsbBytes file;
    file.Block(1).Entry(5, 101, 2).Data(BytesT(26, 1));
    const auto check = Check(file, false);
    EXPECT_TRUE(FindsOnly(check, "note QSB-205 note QSB-307"));
    EXPECT_EQ(check.pHeader->ullRecordBytes, 26u);
}

TEST(CheckHeader, AnUnknownIntensityTypeIsAnErrorForWantOfIntensities)
{
    EXPECT_EQ(Found(Check(WithType(101, 6), false)), "error QSB-207 warning QSB-206 note QSB-218");
}

TEST(CheckHeader, AnUnknownTypeOfAnotherElementIsAWarning)
{
    for (const std::uint32_t tag : {102u, 103u, 104u})
        EXPECT_NE(Find(Check(WithType(tag, 99), false), "QSB-206"), nullptr) << tag;
    EXPECT_FALSE(Check(WithType(104, 99), false).oFindings.HasErrors());
}

TEST(CheckHeader, ASecondElementOfAKindIsAWarning)
{
    QsbBytes file = CleanHeader();
    file.Entry(5, 101, 2).Data(BytesT(3 * (s_nCleanPointBytes + 2), 0));
    EXPECT_TRUE(FindsOnly(Check(file, false), "warning QSB-208"));
    QsbBytes positions = CleanHeader();
    positions.Entry(41, 100, 24).Data(CleanPoints(3));
    EXPECT_EQ(Find(Check(positions), "QSB-208")->strFound, "a further one, which readers ignore");
}

TEST(CheckHeader, ASecondValueIsAWarning)
{
    QsbBytes file = CleanHeader();
    file.DoubleEntry(26, 2.0).Data(CleanPoints(3));
    const auto check = Check(file);
    EXPECT_TRUE(FindsOnly(check, "warning QSB-209"));
    EXPECT_EQ(check.pHeader->oInfo.dInstrumentHeight, 2.0);
}

TEST(CheckHeader, AnElementSizeOtherThanTheTrueOneIsANote)
{
    const auto check = Check(WithValue(104, 3));
    EXPECT_TRUE(FindsOnly(check, "note QSB-210"));
    EXPECT_EQ(Find(check, "QSB-210")->strExpected, "4 bytes");
}

TEST(CheckHeader, OtherTypesOfValuesAreNotes)
{
    EXPECT_TRUE(FindsOnly(Check(WithType(26, 8)), "note QSB-211"));
    EXPECT_TRUE(FindsOnly(Check(WithType(24, 6)), "note QSB-211"));
}

TEST(CheckHeader, UnusedBytesOfAnEntryAreANote)
{
    const QsbBytes clean = CleanScan();
    for (const std::uint32_t tag : {24u, 101u})
        EXPECT_TRUE(FindsOnly(Check(Support::WithByte(clean.Get(), EntryOffset(clean, tag) + 15, 1)),
                              "note QSB-212"));
}

/// CleanScan(3, 3) that states a number of points.
QsbBytes Counted(std::uint32_t type, std::uint64_t value, std::uint32_t id = 3)
{
    return CleanHeader(id).Entry(type, 1, value).Data(CleanPoints(3));
}

TEST(CheckHeader, TheNumberOfPointsCountsByItsType)
{
    for (const std::uint32_t type : {1u, 6u, 7u, 9u})
        EXPECT_TRUE(FindsOnly(Check(Counted(type, 3)), "")) << type;
    EXPECT_TRUE(FindsOnly(Check(Counted(1, 0x103)), "note QSB-212"));
    EXPECT_TRUE(FindsOnly(Check(Counted(7, 0x100000003)), "note QSB-212"));
    EXPECT_TRUE(FindsOnly(Check(Counted(9, 0x100000003)), "error QSB-214 warning QSB-306"));
    EXPECT_TRUE(FindsOnly(Check(Counted(2, 3)), "warning QSB-216 note QSB-219 note QSB-215"));
}

TEST(CheckHeader, MorePointsThanTheDataHoldAreAnErrorAndFewerANote)
{
    const auto check = Check(Counted(7, 4));
    EXPECT_TRUE(FindsOnly(check, "error QSB-214"));
    EXPECT_EQ(Find(check, "QSB-214")->strExpected, "at most 3 points, 69 bytes of 23 each");
    EXPECT_EQ(Find(check, "QSB-214")->strFound, "4 stated");
    EXPECT_EQ(check.GetReadable(), 3u);
    EXPECT_TRUE(FindsOnly(Check(Counted(7, 2)), "note QSB-215"));
}

TEST(CheckHeader, ANumberOfPointsInABlockThatDoesNotCountIsANote)
{
    EXPECT_TRUE(FindsOnly(Check(Counted(7, 99, 1)), "note QSB-217"));
}

TEST(CheckHeader, OfSeveralNumbersOfPointsTheFirstCounts)
{
    QsbBytes file = CleanHeader(3);
    file.Entry(7, 1, 3).Entry(7, 1, 99).Data(CleanPoints(3));
    EXPECT_TRUE(FindsOnly(Check(file), "warning QSB-209"));
}

TEST(CheckHeader, DataThatDoNotEndWithAWholePointAreANote)
{
    QsbBytes file = CleanScan();
    EXPECT_TRUE(FindsOnly(Check(file.Data({1, 2})), "note QSB-218"));
}

TEST(CheckHeader, AScanWithoutPointsIsANote)
{
    EXPECT_TRUE(FindsOnly(Check(CleanScan(0)), "note QSB-219"));
}

TEST(CheckHeader, APoseThatIsNotFiniteIsAWarning)
{
    for (const double value : {s_dNaN, HUGE_VAL})
        EXPECT_TRUE(FindsOnly(Check(WithDouble(11, value), false), "warning QSB-301"));
}

TEST(CheckHeader, AProjectivePoseIsAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithDouble(23, 2.0)), "warning QSB-302"));
    EXPECT_TRUE(FindsOnly(Check(WithDouble(20, 0.5)), "warning QSB-302"));
}

TEST(CheckHeader, APoseThatScalesOrReflectsIsANote)
{
    EXPECT_TRUE(FindsOnly(Check(WithDouble(18, 1.001)), "note QSB-303"));
    const auto reflected = Check(WithDouble(18, -1.0));
    EXPECT_TRUE(FindsOnly(reflected, "note QSB-303"));
    EXPECT_EQ(Find(reflected, "QSB-303")->strFound, "a reflection");
}

TEST(CheckHeader, AHugePoseIsFoundInSpiteOfItsOverflow)
{
    EXPECT_NE(Find(Check(WithDouble(8, 1e300), false), "QSB-303"), nullptr);
}

TEST(CheckHeader, OneGridSizeWithoutTheOtherIsAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithValue(24, 0)), "warning QSB-304"));
}

TEST(CheckHeader, GridSizesThatIndicesCannotReachAreAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithValue(25, 0x10000)), "warning QSB-304"));
    EXPECT_TRUE(FindsOnly(Check(WithValue(25, 0xFFFF)), ""));
}

TEST(CheckHeader, GridIndicesWithoutGridSizeAreANote)
{
    EXPECT_TRUE(FindsOnly(Check(Support::With32(WithValue(24, 0), EntryOffset(CleanScan(), 25) + 8, 0)),
                          "note QSB-305"));
}

TEST(CheckHeader, MorePointsThanCellsAreAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(CleanHeader().Data(CleanPoints(33)), false), "warning QSB-306"));
}

TEST(CheckHeader, ABoxThatIsNoneIsAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithDouble(2, 16.0)), "warning QSB-308"));
    EXPECT_TRUE(FindsOnly(Check(WithDouble(2, s_dNaN)), "warning QSB-308"));
}

TEST(CheckHeader, ABoxWithoutPointsIsMissingUnlessThereAreNone)
{
    BytesT bytes = CleanScan(3).Get();
    const double dMax = std::numeric_limits<double>::max();
    for (std::uint32_t tag = 2; tag <= 7; ++tag) {
        const BytesT number = Bytes(tag < 5 ? dMax : -dMax);
        std::copy(number.begin(), number.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(EntryOffset(CleanScan(), tag) + 8));
    }
    EXPECT_TRUE(FindsOnly(Check(bytes), "note QSB-307"));
}

TEST(CheckHeader, AHeightThatIsNotFiniteIsAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithDouble(26, s_dNaN)), "warning QSB-309"));
}

} // namespace
