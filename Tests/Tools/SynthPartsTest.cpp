// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the simulated scan is made of: angles, random numbers, solids, the sensor.
#include "Sio/Sio_QsbFileFormat.h"
#include "Tools/Qsb/Synth_Random.h"
#include "Tools/Qsb/Synth_Room.h"
#include "Tools/Qsb/Synth_Sensor.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

using namespace Tool;
using namespace SIO::QsbFormat;

constexpr double s_dFar = 1e9;

ShapeC Shape(ShapeKindT eKind, const Vec3C& size)
{
    return {eKind, UprightFrame({10.0, 20.0, 30.0}, 0.125), size, 0};
}

/// Sends a ray from a place of the shape's own frame along a direction of it.
bool Send(const ShapeC& shape, const Vec3C& from, const Vec3C& along, EntryC& entry)
{
    const RayC ray{shape.oFrame.PointToWorld(from), shape.oFrame.DirectionToWorld(Normalised(along))};
    return Enter(shape, ray, 0.0, s_dFar, entry);
}

void ExpectNear(const Vec3C& a, const Vec3C& b)
{
    EXPECT_NEAR(Length(a - b), 0.0, 1e-12);
}

TEST(SynthAngles, SineAndCosineAgreeWithTheLibraryToTheLastBits)
{
    for (int i = -2000; i <= 2000; ++i) {
        const double turns = i * 0.00137;
        const SinCosC result = SinCosOfTurns(turns);
        EXPECT_NEAR(result.dSin, std::sin(turns * 2.0 * std::numbers::pi), 5e-15) << turns;
        EXPECT_NEAR(result.dCos, std::cos(turns * 2.0 * std::numbers::pi), 5e-15) << turns;
    }
}

TEST(SynthAngles, QuarterTurnsAreExact)
{
    const double adSin[4] = {0.0, 1.0, 0.0, -1.0};
    for (int quarter = -8; quarter < 8; ++quarter) {
        const SinCosC result = SinCosOfTurns(0.25 * quarter);
        EXPECT_EQ(result.dSin, adSin[quarter & 3]) << quarter;
        EXPECT_EQ(result.dCos, adSin[(quarter + 1) & 3]) << quarter;
    }
}

TEST(SynthRandom, AStreamIsTheSameEverywhere)
{
    RandomC random(1, 2);
    const std::uint64_t aullFirst[3] = {random.Next(), random.Next(), random.Next()};
    EXPECT_EQ(aullFirst[0], 0x828FA3E0AFC3E80Bu);
    EXPECT_EQ(aullFirst[1], 0x2C2735727CF6A7D5u);
    EXPECT_EQ(aullFirst[2], 0x858B9A4A2B6ACF94u);
}

TEST(SynthRandom, NeighbouringSeedsAndStreamsHaveNothingInCommon)
{
    EXPECT_NE(RandomC(1, 2).Next(), RandomC(2, 2).Next());
    EXPECT_NE(RandomC(1, 2).Next(), RandomC(1, 3).Next());
    EXPECT_NE(RandomC(1, 2).Next(), RandomC(2, 1).Next());
}

TEST(SynthRandom, NormalNumbersHaveMean0AndDeviation1)
{
    RandomC random(7);
    double sum = 0.0, squares = 0.0;
    constexpr int count = 100000;
    for (int i = 0; i < count; ++i) {
        const double value = random.Normal();
        sum += value;
        squares += value * value;
    }
    EXPECT_NEAR(sum / count, 0.0, 0.01);
    EXPECT_NEAR(squares / count, 1.0, 0.02);
}

TEST(SynthRandom, UniformNumbersStayInTheirRange)
{
    RandomC random(7);
    for (int i = 0; i < 10000; ++i) {
        const double value = random.Uniform(-2.0, 3.0);
        EXPECT_TRUE(value >= -2.0 && value < 3.0);
    }
}

TEST(SynthShape, ARayEntersABoxAtTheFaceItComesFrom)
{
    EntryC entry;
    ASSERT_TRUE(Send(Shape(ShapeKindT::Box, {1, 2, 3}), {-5.0, 0.5, 0.25}, {1, 0, 0}, entry));
    EXPECT_NEAR(entry.dDistance, 4.0, 1e-12);
    ExpectNear(entry.oPoint, {-1.0, 0.5, 0.25});
    ExpectNear(entry.oNormal, {-1.0, 0.0, 0.0});
}

TEST(SynthShape, ARayPastABoxMissesIt)
{
    EntryC entry;
    EXPECT_FALSE(Send(Shape(ShapeKindT::Box, {1, 2, 3}), {-5.0, 2.01, 0.0}, {1, 0, 0}, entry));
    EXPECT_FALSE(Send(Shape(ShapeKindT::Box, {1, 2, 3}), {-5.0, 0.0, 0.0}, {-1, 0, 0}, entry));
}

TEST(SynthShape, ARayEntersAnEllipsoidAtItsVertex)
{
    EntryC entry;
    ASSERT_TRUE(Send(Shape(ShapeKindT::Ellipsoid, {1, 2, 3}), {0, 0, 9}, {0, 0, -1}, entry));
    EXPECT_NEAR(entry.dDistance, 6.0, 1e-12);
    ExpectNear(entry.oNormal, {0, 0, 1});
}

TEST(SynthShape, ARayEntersAConeThroughItsSideAndThroughItsLid)
{
    const ShapeC cone =
        Shape(ShapeKindT::Frustum, {2.0, 1.0, 1.0}); // radius 1.5 in the middle, 45 degrees / 2
    EntryC entry;
    ASSERT_TRUE(Send(cone, {-9, 0, 0}, {1, 0, 0}, entry));
    EXPECT_NEAR(entry.dDistance, 7.5, 1e-12);
    EXPECT_GT(entry.oNormal.z, 0.0);
    ASSERT_TRUE(Send(cone, {0.5, 0, 9}, {0, 0, -1}, entry));
    EXPECT_NEAR(entry.dDistance, 8.0, 1e-12);
    ExpectNear(entry.oNormal, {0, 0, 1});
    EXPECT_FALSE(Send(cone, {1.5, 0, 9}, {-0.3, 0, -0.01}, entry));
}

TEST(SynthShape, ARayEntersARodThroughItsSideAndThroughItsRoundEnd)
{
    const ShapeC rod = Shape(ShapeKindT::Capsule, {0.5, 0.5, 2.0});
    EntryC entry;
    ASSERT_TRUE(Send(rod, {-9, 0, 1}, {1, 0, 0}, entry));
    EXPECT_NEAR(entry.dDistance, 8.5, 1e-12);
    ASSERT_TRUE(Send(rod, {0, 0, 9}, {0, 0, -1}, entry));
    EXPECT_NEAR(entry.dDistance, 6.5, 1e-12);
    ExpectNear(entry.oNormal, {0, 0, 1});
}

TEST(SynthShape, ItsExtentContainsEveryPlaceWhereARayEnters)
{
    RandomC random(3);
    for (const ShapeKindT eKind :
         {ShapeKindT::Box, ShapeKindT::Ellipsoid, ShapeKindT::Frustum, ShapeKindT::Capsule}) {
        const ShapeC shape{eKind, FrameAlong({1, 2, 3}, {0.3, -0.5, 0.8}), {0.4, 0.7, 1.1}, 0};
        const ExtentC extent = ExtentOf(shape);
        for (int i = 0; i < 2000; ++i) {
            const Vec3C aim{random.Normal() * 0.5, random.Normal() * 0.5, random.Normal() * 0.5};
            const Vec3C from = 9.0 * Normalised({random.Normal(), random.Normal(), random.Normal()});
            EntryC entry;
            if (!Send(shape, from, aim - from, entry)) continue;
            const Vec3C hit = shape.oFrame.PointToWorld(entry.oPoint);
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_TRUE(hit[axis] >= extent.oMin[axis] && hit[axis] <= extent.oMax[axis]);
            }
        }
    }
}

RayC AnyRay(RandomC& random)
{
    return {{random.Uniform(0.5, 6.5), random.Uniform(1.2, 5.0), random.Uniform(1.9, 2.2)},
            Normalised({random.Normal(), random.Normal(), random.Normal()})};
}

TEST(SynthScene, TheTreeFindsWhatTryingEverySolidFinds)
{
    const SceneC scene = FurnishedRoom(5);
    RandomC random(11);
    for (int i = 0; i < 3000; ++i) {
        const RayC ray = AnyRay(random);
        double nearest = 40.0;
        EntryC entry;
        for (const ShapeC& shape : scene.GetShapes()) {
            if (Enter(shape, ray, 1e-6, nearest, entry)) nearest = entry.dDistance;
        }
        HitC hit;
        EXPECT_EQ(scene.Meet(ray, 40.0, hit), nearest < 40.0);
        if (nearest < 40.0) {
            EXPECT_EQ(hit.dDistance, nearest);
        }
    }
}

TEST(SynthScene, AWayIsBlockedExactlyWhenSomethingIsMetOnIt)
{
    const SceneC scene = FurnishedRoom(5);
    RandomC random(12);
    HitC hit;
    int nBlocked = 0;
    for (int i = 0; i < 3000; ++i) {
        const RayC ray = AnyRay(random);
        const bool bMet = scene.Meet(ray, 1.5, hit);
        EXPECT_EQ(scene.IsBlocked(ray, 1.5), bMet);
        nBlocked += bMet ? 1 : 0;
    }
    EXPECT_GT(nBlocked, 300);
    EXPECT_LT(nBlocked, 2700);
}

TEST(SynthScene, AnEmptySceneIsNeverMet)
{
    const SceneC scene({});
    HitC hit;
    EXPECT_FALSE(scene.Meet({{0, 0, 0}, {1, 0, 0}}, s_dFar, hit));
    EXPECT_FALSE(scene.IsBlocked({{0, 0, 0}, {1, 0, 0}}, s_dFar));
}

TEST(SynthSensor, TheAmplitudeFallsWithTheRange)
{
    for (double range = 0.5; range < 40.0; range += 0.5) {
        EXPECT_GT(AmplitudeOf(0.5, range, 0.8), AmplitudeOf(0.5, range + 0.5, 0.8));
    }
}

TEST(SynthSensor, TheAmplitudeFallsTheMoreTheBeamGrazes)
{
    for (double incidence = 0.1; incidence < 1.0; incidence += 0.1) {
        EXPECT_LT(AmplitudeOf(0.5, 3.0, incidence - 0.1), AmplitudeOf(0.5, 3.0, incidence));
    }
}

TEST(SynthSensor, FarAwayTheAmplitudeFallsWithTheSquareOfTheRange)
{
    EXPECT_NEAR(AmplitudeOf(0.5, 400.0, 1.0) / AmplitudeOf(0.5, 800.0, 1.0), 4.0, 0.01);
}

TEST(SynthSensor, WeakAnswersHaveUncertainRanges)
{
    EXPECT_DOUBLE_EQ(RangeDeviation(0.001, 0.25), 0.001);
    EXPECT_GT(RangeDeviation(0.001, 0.01), RangeDeviation(0.001, 0.1));
    EXPECT_EQ(RangeDeviation(0.0, 0.1), 0.0);
}

TEST(SynthSensor, IntensitiesUseTheRangeOfTheirEncoding)
{
    EXPECT_EQ(EncodedIntensity(s_uiTypeUInt16, 0.0), 0.0);
    EXPECT_EQ(EncodedIntensity(s_uiTypeUInt16, 1.2), 65535.0);
    EXPECT_EQ(EncodedIntensity(s_uiTypeInt16, 0.0), -2048.0);
    EXPECT_EQ(EncodedIntensity(s_uiTypeInt16, 1.0), 2047.0);
    EXPECT_EQ(EncodedIntensity(s_uiTypeFloat, 0.1), static_cast<double>(0.1f));
}

TEST(SynthSensor, NoiseLevelsAreInTheStepsOfTheirEncodingAndStayInIt)
{
    EXPECT_EQ(EncodedNoise(s_uiTypeUInt8, 0.001), 50.0);
    EXPECT_EQ(EncodedNoise(s_uiTypeUInt16, 0.001), 1000.0);
    EXPECT_EQ(EncodedNoise(s_uiTypeFloat, 0.001), 1.0);
    EXPECT_EQ(EncodedNoise(s_uiTypeUInt8, 1.0), 255.0);
    EXPECT_EQ(EncodedNoise(s_uiTypeUInt16, 1.0), 65535.0);
}

} // namespace
