// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The point record, the modifier that writes it, the getters that read it, and the iterators over arrays of
// them.
#include "Sio/Sio_QsbPoint.h"

#include "ScanTest.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Sio/Sio_Truncate.h"
#include "Support/PlainDecoder.h"

#include <cstddef>
#include <limits>
#include <random>

namespace {

using SIO::QsbPointC;
using SIO::QsbPointModifierC;

QsbPointC NumberedPoint()
{
    QsbPointC point;
    point.x = 1;
    point.y = 2;
    point.z = 3;
    point.red = 4;
    point.green = 5;
    point.blue = 6;
    point.intensity = 7;
    point.levelOfNoise = 8;
    point.gridIndex0 = 9;
    point.gridIndex1 = 10;
    return point;
}

class PointModifier : public testing::Test
{
protected:
    PointModifier() { modifier.SetPoint(&point); }

    Support::ReportCapture reports;
    QsbPointC point;
    QsbPointModifierC modifier;
};

TEST(PointRecord, HasFortyBytesWithTheFieldsInOrder)
{
    EXPECT_EQ(sizeof(QsbPointC), 40u);
    EXPECT_EQ(offsetof(QsbPointC, x), 0u);
    EXPECT_EQ(offsetof(QsbPointC, y), 8u);
    EXPECT_EQ(offsetof(QsbPointC, z), 16u);
    EXPECT_EQ(offsetof(QsbPointC, red), 24u);
    EXPECT_EQ(offsetof(QsbPointC, green), 25u);
    EXPECT_EQ(offsetof(QsbPointC, blue), 26u);
    EXPECT_EQ(offsetof(QsbPointC, intensity), 28u);
    EXPECT_EQ(offsetof(QsbPointC, levelOfNoise), 30u);
    EXPECT_EQ(offsetof(QsbPointC, gridIndex0), 32u);
    EXPECT_EQ(offsetof(QsbPointC, gridIndex1), 36u);
}

TEST(PointRecord, ANewRecordIsZero)
{
    const QsbPointC point;
    EXPECT_EQ(point.x + point.y + point.z, 0.0);
    EXPECT_EQ(point.red + point.green + point.blue + point.intensity + point.levelOfNoise, 0);
    EXPECT_EQ(point.gridIndex0 + point.gridIndex1, 0u);
}

TEST_F(PointModifier, SetPositionCopiesTheDoublesUnchanged)
{
    modifier.SetPosition(1e300, -0.0, std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(Support::IsSame(point.x, 1e300));
    EXPECT_TRUE(Support::IsSame(point.y, -0.0));
    EXPECT_TRUE(Support::IsSame(point.z, std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(PointModifier, AColourOf255Point9IsStoredAs255And256AsZero)
{
    modifier.SetColor(255.9, 256.0, -1.0);
    EXPECT_EQ(point.red, 255);
    EXPECT_EQ(point.green, 0);
    EXPECT_EQ(point.blue, 255);
}

TEST_F(PointModifier, AnIntensityOfMinusOneIsStoredAs65535)
{
    modifier.SetIntensity(-1.0);
    EXPECT_EQ(point.intensity, 65535);
}

TEST_F(PointModifier, FractionsAreCutTowardsZero)
{
    modifier.SetIntensity(-0.9);
    modifier.SetLevelOfNoise(12.999);
    modifier.SetGridIndex(-1.5, 4294967295.5);
    EXPECT_EQ(point.intensity, 0);
    EXPECT_EQ(point.levelOfNoise, 12);
    EXPECT_EQ(point.gridIndex0, 4294967295u);
    EXPECT_EQ(point.gridIndex1, 4294967295u);
}

TEST_F(PointModifier, ValuesThatNoIntegerHoldsBecomeZero)
{
    modifier.SetIntensity(std::numeric_limits<double>::quiet_NaN());
    modifier.SetLevelOfNoise(std::numeric_limits<double>::infinity());
    modifier.SetColor(9223372036854775808.0, -1e300, 1e19);
    modifier.SetGridIndex(-std::numeric_limits<double>::infinity(), 1e30);
    EXPECT_EQ(point.intensity + point.levelOfNoise + point.red + point.green + point.blue, 0);
    EXPECT_EQ(point.gridIndex0 + point.gridIndex1, 0u);
}

TEST_F(PointModifier, EveryOddNumberKeepsTheLowBitsOfItsWholePart)
{
    std::mt19937 random(2);
    for (int run = 0; run < 20000; ++run) {
        const double a = Support::OddNumber(random), b = Support::OddNumber(random),
                     c = Support::OddNumber(random);
        modifier.SetColor(a, b, c);
        modifier.SetIntensity(a);
        modifier.SetLevelOfNoise(b);
        modifier.SetGridIndex(a, c);
        ASSERT_EQ(point.red, Support::LowBits(a, 8)) << a;
        ASSERT_EQ(point.green, Support::LowBits(b, 8)) << b;
        ASSERT_EQ(point.blue, Support::LowBits(c, 8)) << c;
        ASSERT_EQ(point.intensity, Support::LowBits(a, 16)) << a;
        ASSERT_EQ(point.levelOfNoise, Support::LowBits(b, 16)) << b;
        ASSERT_EQ(point.gridIndex0, Support::LowBits(a, 32)) << a;
        ASSERT_EQ(point.gridIndex1, Support::LowBits(c, 32)) << c;
    }
}

TEST_F(PointModifier, AnOperationWritesItsOwnFieldsOnly)
{
    point = NumberedPoint();
    modifier.SetColor(40, 50, 60);
    modifier.SetGridIndex(90, 100);
    EXPECT_EQ(point.x + point.y + point.z, 6);
    EXPECT_EQ(point.intensity, 7);
    EXPECT_EQ(point.levelOfNoise, 8);
    EXPECT_EQ(point.blue, 60);
    EXPECT_EQ(point.gridIndex0, 90u);
    EXPECT_EQ(point.gridIndex1, 100u);
}

TEST_F(PointModifier, WithoutAPointEveryOperationIsReportedAndWritesNothing)
{
    QsbPointModifierC unaimed;
    unaimed.SetPosition(1, 2, 3);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != m_poQsbPoint", SioTest::s_szPoint));
    unaimed.SetIntensity(1);
    unaimed.SetLevelOfNoise(1);
    unaimed.SetColor(1, 2, 3);
    unaimed.SetGridIndex(1, 2);
    EXPECT_EQ(reports.Count("0 != m_poQsbPoint"), 5u);
    EXPECT_EQ(reports.Reports().size(), 5u);
}

TEST_F(PointModifier, TheInterfacesOwnOperationsDoNothing)
{
    SIO::QsbPointModifierI nothing;
    nothing.SetPosition(1, 2, 3);
    nothing.SetIntensity(1);
    nothing.SetLevelOfNoise(1);
    nothing.SetColor(1, 2, 3);
    nothing.SetGridIndex(1, 2);
    EXPECT_EQ(reports.Reports().size(), 0u);
}

TEST(PointArrayIterator, CurrentAimsAtTheCursorAndAdvanceMovesIt)
{
    QsbPointC points[3];
    SIO::QsbPointArrayIteratorC iterator(points);
    iterator.Current().SetIntensity(1);
    iterator.Current().SetLevelOfNoise(2);
    iterator.Advance();
    iterator.Current().SetIntensity(3);
    EXPECT_EQ(points[0].intensity, 1);
    EXPECT_EQ(points[0].levelOfNoise, 2);
    EXPECT_EQ(points[1].intensity, 3);
    EXPECT_EQ(points[2].intensity, 0);
}

TEST(PointArrayIterator, ResetGoesBackToTheFirstRecordAndSkipGoesOn)
{
    QsbPointC points[3];
    SIO::QsbPointArrayIteratorC iterator(points);
    iterator.Skip(2);
    EXPECT_EQ(iterator.GetCursor(), points + 2);
    iterator.Reset();
    EXPECT_EQ(iterator.GetCursor(), points);
}

TEST(PointArrayIterator, ItsEndLeavesTheArrayAlone)
{
    QsbPointC points[1] = {NumberedPoint()};
    {
        const SIO::QsbPointArrayIteratorC iterator(points);
    }
    EXPECT_EQ(points[0].intensity, 7);
}

TEST(PointGetters, ReadEveryFieldOfTheRecord)
{
    const QsbPointC point = NumberedPoint();
    SIO::QsbPointGetterC getter;
    getter.SetPoint(&point);
    double x, y, z, red, green, blue, fourth, row, column;
    getter.GetPosition(x, y, z);
    getter.GetColor(red, green, blue, fourth);
    getter.GetGridIndex(row, column);
    EXPECT_EQ((std::vector<double>{x, y, z, red, green, blue, getter.GetIntensity(), getter.GetLevelOfNoise(),
                                   row, column, fourth}),
              (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255}));
}

TEST(PointGetters, AnElementThatAPointLacksIsNeutral)
{
    struct Bare final : SIO::QsbPointGetterI
    {
        void GetPosition(double& x, double& y, double& z) const override { x = y = z = 1; }
    } const bare;
    double red, green, blue, fourth, row, column;
    bare.GetColor(red, green, blue, fourth);
    bare.GetGridIndex(row, column);
    EXPECT_EQ(bare.GetIntensity() + bare.GetLevelOfNoise() + red + green + blue + row + column, 0.0);
    EXPECT_EQ(fourth, 255.0);
}

TEST(PointSource, WalksTheArray)
{
    QsbPointC points[3];
    points[1].intensity = 11;
    points[2].intensity = 22;
    SIO::ArrayBasedPointSourceC source(points);
    source.Advance();
    EXPECT_EQ(source.Current().GetIntensity(), 11);
    source.Skip(1);
    EXPECT_EQ(source.Current().GetIntensity(), 22);
    EXPECT_EQ(source.GetCursor(), points + 2);
}

TEST(Truncate, ThroughThirtyTwoBitsLeavesTheSmallestValueForWhatDoesNotFit)
{
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(SIO::TruncateToInt32(2147483647.9), 2147483647);
    EXPECT_EQ(SIO::TruncateToInt32(2147483648.0), least);
    EXPECT_EQ(SIO::TruncateToInt32(-2147483648.9), least);
    EXPECT_EQ(SIO::TruncateToInt32(-2147483649.0), least);
    EXPECT_EQ(SIO::TruncateToInt32(std::numeric_limits<double>::quiet_NaN()), least);
    EXPECT_EQ(SIO::TruncateToInt32(-1.9), -1);
}

TEST(Truncate, ThroughSixtyFourBitsLeavesTheSmallestValueForWhatDoesNotFit)
{
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(SIO::TruncateToInt64(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(SIO::TruncateToInt64(9223372036854775808.0), least);
    EXPECT_EQ(SIO::TruncateToInt64(-9223372036854775808.0), least);
    EXPECT_EQ(SIO::TruncateToInt64(-1e300), least);
    EXPECT_EQ(SIO::TruncateToInt64(std::numeric_limits<double>::infinity()), least);
    EXPECT_EQ(SIO::TruncateToInt64(1.9), 1);
}

} // namespace
