// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a deep check finds in the points, and that a check that is not deep leaves them alone.
#include "Tools/CheckTest.h"

#include <limits>

namespace {

using namespace CheckTest;
using Support::Bytes;

/// CleanScan whose second point has other bytes at `offset` in its record.
BytesT WithPointBytes(std::size_t offset, const BytesT& replacement)
{
    BytesT points = CleanPoints(3);
    std::copy(replacement.begin(), replacement.end(),
              points.begin() + static_cast<std::ptrdiff_t>(s_nCleanPointBytes + offset));
    return CleanHeader().Data(points).Get();
}

TEST(CheckPoints, PositionsThatAreNotFiniteAreAWarningAtTheFirstOfThem)
{
    for (const float value :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        const auto check = Check(WithPointBytes(4, Bytes(value)));
        EXPECT_TRUE(FindsOnly(check, "warning QSB-401"));
        EXPECT_EQ(Find(check, "QSB-401")->strFound, "1 of 3 points, the first one being point 1");
        EXPECT_EQ(Find(check, "QSB-401")->oOffset, CleanHeader().Get().size() + s_nCleanPointBytes);
    }
}

TEST(CheckPoints, WithoutDeepThePointsAreNotLookedAt)
{
    EXPECT_TRUE(
        FindsOnly(Check(WithPointBytes(4, Bytes(std::numeric_limits<float>::quiet_NaN())), false), ""));
}

TEST(CheckPoints, APoseThatDividesByZeroIsAWarning)
{
    BytesT bytes = CleanScan().Get();
    const BytesT zero = Bytes(0.0);
    std::copy(zero.begin(), zero.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(EntryOffset(CleanScan(), 23) + 8));
    const auto check = Check(bytes);
    EXPECT_TRUE(FindsOnly(check, "warning QSB-302 warning QSB-402"));
    EXPECT_EQ(Find(check, "QSB-402")->strFound, "3 of 3 points, the first one being point 0");
}

TEST(CheckPoints, GridIndicesOutsideTheGridAreAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithPointBytes(15, Bytes(std::uint16_t{2}))), "warning QSB-403"));
    EXPECT_TRUE(FindsOnly(Check(WithPointBytes(17, Bytes(std::uint16_t{16}))), "warning QSB-403"));
    EXPECT_TRUE(FindsOnly(Check(WithPointBytes(17, Bytes(std::uint16_t{15}))), ""));
}

TEST(CheckPoints, PointsOutsideTheBoxAreAWarning)
{
    EXPECT_TRUE(FindsOnly(Check(WithPointBytes(0, Bytes(15.5f))), "warning QSB-404"));
    EXPECT_TRUE(FindsOnly(Check(WithPointBytes(8, Bytes(-0.5f))), "warning QSB-404"));
}

TEST(CheckPoints, ABoxOfPositionsBeforeTheyWereRoundedToFloatsIsInOrder)
{
    QsbBytes file;
    file.Block(1);
    for (std::uint32_t tag = 2; tag <= 7; ++tag)
        file.DoubleEntry(tag, 0.1);
    file.Entry(40, 100, 12).Entry(5, 101, 2).Data(Bytes(0.1f, 0.1f, 0.1f, std::uint16_t{1}));
    EXPECT_TRUE(FindsOnly(Check(file), ""));
}

TEST(CheckPoints, IntensitiesThatReadersGetChangedAreANoteAndThoseNotFiniteAWarning)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12).Entry(8, 101, 4);
    const auto with = [&](float intensity) {
        return Check(QsbBytes(file).Data(Bytes(1.0f, 1.0f, 1.0f, intensity)));
    };
    EXPECT_TRUE(FindsOnly(with(65535.0f), "note QSB-307"));
    EXPECT_TRUE(FindsOnly(with(0.75f), "note QSB-307 note QSB-406"));
    EXPECT_TRUE(FindsOnly(with(65536.0f), "note QSB-307 note QSB-406"));
    EXPECT_NE(Find(with(std::numeric_limits<float>::quiet_NaN()), "QSB-405"), nullptr);
}

TEST(CheckPoints, NegativeIntensitiesAreANote)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12).Entry(4, 101, 2).Data(Bytes(1.0f, 1.0f, 1.0f, std::int16_t{-1}));
    EXPECT_TRUE(FindsOnly(Check(file), "note QSB-307 note QSB-406"));
}

TEST(CheckPoints, DataThatEndInADiskBlockOfZerosAreAWarning)
{
    QsbBytes file;
    file.Block(1)
        .Entry(40, 100, 12)
        .Entry(5, 101, 2)
        .Data(Support::SmallPoints(100, 1))
        .Data(BytesT(14 * 293, 0));
    const auto check = Check(file);
    EXPECT_TRUE(FindsOnly(check, "warning QSB-407 note QSB-307"));
    EXPECT_EQ(Find(check, "QSB-407")->strFound, "293 of 393 points, the first one being point 100");
}

TEST(CheckPoints, ASinglePointOfZerosIsInOrderAndAScanOfThemIsNot)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12).Entry(5, 101, 2);
    EXPECT_TRUE(FindsOnly(Check(QsbBytes(file).Data(BytesT(14, 0))), "note QSB-307"));
    EXPECT_TRUE(FindsOnly(Check(QsbBytes(file).Data(BytesT(28, 0))), "warning QSB-407 note QSB-307"));
}

TEST(CheckPoints, AStatedNumberOfPointsEndsTheLook)
{
    BytesT points = CleanPoints(3);
    points[2 * s_nCleanPointBytes + 3] = 0x7F; // The third point lies far away.
    const auto check = Check(CleanHeader(3).Entry(7, 1, 2).Data(points));
    EXPECT_TRUE(FindsOnly(check, "note QSB-215"));
    EXPECT_EQ(check.pStatistics->ullPoints, 2u);
}

TEST(CheckPoints, BatchesOfAnySizeSeeEveryPointOnce)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(25001));
    const auto check = Check(file);
    EXPECT_EQ(check.pStatistics->ullPoints, 25001u);
    EXPECT_EQ(check.pStatistics->aStored[0].dMax, 25000.0);
}

} // namespace
