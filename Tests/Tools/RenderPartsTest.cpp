// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The parts of a picture: its size, its pixels, what the survey concludes, the tones.
#include "Tools/Qsb/Render_Picture.h"
#include "Tools/Qsb/Render_Survey.h"
#include "Tools/Qsb/Render_Tone.h"
#include "Tools/Qsb/Render_View.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

using namespace Tool;

constexpr double s_dNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr double s_dDegree = std::numbers::pi / 180.0;

ScanPointC At(double x, double y, double z, double row = 0.0, double column = 0.0)
{
    ScanPointC point;
    point.x = x;
    point.y = y;
    point.z = z;
    point.adGrid[0] = row;
    point.adGrid[1] = column;
    return point;
}

/// In a direction, 5 away, in degrees.
ScanPointC Toward(double azimuth, double elevation, double row = 0.0, double column = 0.0)
{
    const double across = 5.0 * std::cos(elevation * s_dDegree);
    return At(across * std::cos(azimuth * s_dDegree), across * std::sin(azimuth * s_dDegree),
              5.0 * std::sin(elevation * s_dDegree), row, column);
}

SurveyC Surveyed(const std::vector<ScanPointC>& points, std::uint64_t rows = 0, std::uint64_t columns = 0)
{
    SurveyC survey(rows, columns);
    survey.Take(points);
    return survey;
}

TEST(FittingSize, WhatFitsStaysAsItIs)
{
    const PictureSizeC size = FittingSize(2000, 1000, 2000000);
    EXPECT_EQ(size.uiWidth, 2000u);
    EXPECT_EQ(size.uiHeight, 1000u);
}

TEST(FittingSize, WhateverIsAskedForTheMemoryIsBounded)
{
    constexpr double huge = 4294967296.0;
    for (const double width : {1.0, 7.0, 30000.0, 1e6, huge, 1e15}) {
        for (const double height : {1.0, 3.0, 30000.0, 1e6, huge, 1e15}) {
            const PictureSizeC size = FittingSize(width, height, 1000000000);
            EXPECT_TRUE(size.uiWidth >= 1 && size.uiWidth <= s_uiLongestSide);
            EXPECT_TRUE(size.uiHeight >= 1 && size.uiHeight <= s_uiLongestSide);
            EXPECT_LE(std::uint64_t{size.uiWidth} * size.uiHeight, s_ullMostPixels) << width << " " << height;
        }
    }
}

TEST(FittingSize, AFewPointsGetNoHugePictureWhateverTheHeaderClaims)
{
    const PictureSizeC size = FittingSize(4294967296.0, 4294967296.0, 4);
    EXPECT_LE(std::uint64_t{size.uiWidth} * size.uiHeight, 1000000u);
}

TEST(FittingSize, TheProportionsStay)
{
    const PictureSizeC size = FittingSize(100000, 50000, 1000000000);
    EXPECT_NEAR(static_cast<double>(size.uiWidth) / size.uiHeight, 2.0, 0.001);
}

TEST(Picture, TheNearestPointIsShownInWhateverOrderTheyCome)
{
    PictureC picture({2, 1});
    picture.Offer(0, 0, 5.0f, 50);
    picture.Offer(0, 0, 3.0f, 30);
    picture.Offer(0, 0, 4.0f, 40);
    EXPECT_EQ(picture.GetValue(0), 30u);
    EXPECT_TRUE(picture.IsEmpty(1));
    EXPECT_EQ(picture.CountFilled(), 1u);
}

TEST(Picture, OfEquallyNearPointsTheFirstStays)
{
    PictureC picture({1, 1});
    picture.Offer(0, 0, 5.0f, 1);
    picture.Offer(0, 0, 5.0f, 2);
    EXPECT_EQ(picture.GetValue(0), 1u);
}

TEST(Survey, UnusablePositionsAreCountedAndChangeNothing)
{
    const SurveyC survey = Surveyed({At(s_dNaN, 1, 1), At(1, s_dInfinity, 1), At(1, 1, 1e200), At(1, 2, 3)});
    EXPECT_EQ(survey.GetInvalid(), 3u);
    EXPECT_EQ(survey.GetPoints(), 1u);
    EXPECT_EQ(survey.GetMax()[2], 3.0);
}

TEST(Survey, APointAtTheOriginIsInNoDirection)
{
    const SurveyC survey = Surveyed({At(0, 0, 0), Toward(10, 20)});
    EXPECT_EQ(survey.GetAtOrigin(), 1u);
    EXPECT_NEAR(survey.GetLowestElevation(), 20 * s_dDegree, 1e-12);
}

TEST(Survey, AWideGapWithoutPointsIsLeftOutOfThePanorama)
{
    std::vector<ScanPointC> points;
    for (int azimuth = 150; azimuth <= 210; ++azimuth)
        points.push_back(Toward(azimuth, 0));
    const AzimuthsC azimuths = Surveyed(points).GetAzimuths();
    EXPECT_NEAR(azimuths.dSpan / s_dDegree, 60.0, 0.3);
    EXPECT_NEAR(azimuths.dFrom / s_dDegree, 150.0, 0.2);
}

TEST(Survey, PointsAllRoundGiveAWholePanorama)
{
    std::vector<ScanPointC> points;
    for (int azimuth = 0; azimuth < 360; azimuth += 4)
        points.push_back(Toward(azimuth, 0));
    EXPECT_NEAR(Surveyed(points).GetAzimuths().dSpan / s_dDegree, 360.0, 1e-9);
}

TEST(Survey, TheOriginIsAStationWhenThePointsAreAroundOrNearIt)
{
    EXPECT_TRUE(Surveyed({At(-5, -5, 0), At(5, 5, 0)}).OriginIsStation());
    EXPECT_TRUE(Surveyed({At(20, 20, 0), At(25, 25, 0)}).OriginIsStation());
    EXPECT_FALSE(Surveyed({At(636000, 848000, 400), At(637000, 849000, 500)}).OriginIsStation());
}

TEST(Survey, RowsRiseWhenHigherRowsLookHigher)
{
    EXPECT_TRUE(Surveyed({Toward(0, -30, 0, 0), Toward(9, 0, 1, 1), Toward(0, 30, 2, 0)}, 3, 2).RowsRise());
    EXPECT_FALSE(Surveyed({Toward(0, 30, 0, 0), Toward(9, 0, 1, 1), Toward(0, -30, 2, 0)}, 3, 2).RowsRise());
}

TEST(Survey, ColumnsGoRightWhenTheAzimuthFallsInWhateverOrderPointsCome)
{
    std::vector<ScanPointC> points;
    for (int i = 0; i < 360; ++i) {
        const int column = i * 7 % 360; // not in the order of the columns
        points.push_back(Toward(100.0 - column, 0, i % 5, column));
    }
    EXPECT_TRUE(Surveyed(points, 5, 360).ColumnsGoRight());
    for (ScanPointC& point : points)
        point.y = -point.y;
    EXPECT_FALSE(Surveyed(points, 5, 360).ColumnsGoRight());
}

TEST(Survey, FarFromTheOriginRowsRiseToTheNorthAndColumnsGoRightToTheEast)
{
    const auto far = [](double east, double north, double row, double column) {
        return At(600000 + east, 800000 + north, 100, row, column);
    };
    const SurveyC survey =
        Surveyed({far(0, 9, 0, 0), far(5, 9, 0, 1), far(0, 0, 1, 0), far(5, 0, 1, 1)}, 2, 2);
    EXPECT_FALSE(survey.RowsRise());
    EXPECT_TRUE(survey.ColumnsGoRight());
}

TEST(Survey, AGridFitsOnlyWhenMostIndicesAreWithinItAndOnSeveralLines)
{
    EXPECT_TRUE(Surveyed({Toward(0, 0, 0, 0), Toward(0, 9, 1, 1), Toward(0, 0, 9, 9)}, 2, 2).GridFits());
    EXPECT_FALSE(Surveyed({Toward(0, 0, 0, 0), Toward(0, 9, 9, 1), Toward(0, 0, 9, 9)}, 2, 2).GridFits());
    EXPECT_FALSE(Surveyed({Toward(0, 0, 0, 0), Toward(0, 9, 0, 0)}, 2, 2).GridFits())
        << "indices never filled in";
    EXPECT_FALSE(Surveyed({Toward(0, 0, 0, 0), Toward(0, 9, 1, 1)}).GridFits()) << "no grid";
}

PictureC Filled(const std::vector<double>& values)
{
    PictureC picture({static_cast<std::uint32_t>(values.size()), 1});
    for (std::uint32_t x = 0; x < values.size(); ++x)
        picture.Offer(x, 0, 1.0f, ScalarPixel(values[x]));
    return picture;
}

TEST(Tone, OneInAHundredAtEitherEndDoesNotSpoilTheContrast)
{
    std::vector<double> values;
    for (int i = 0; i < 1000; ++i)
        values.push_back(i);
    values[0] = -1e9;
    values[999] = 1e9;
    const ToneC tone(ToneKindT::Grey, Filled(values));
    EXPECT_NEAR(tone.GetLow(), 10.0, 1.0);
    EXPECT_NEAR(tone.GetHigh(), 989.0, 1.0);
}

TEST(Tone, GreyRunsFromBlackToWhite)
{
    const PictureC picture = Filled({0.0, 50.0, 100.0});
    const ToneC tone(ToneKindT::Grey, picture);
    EXPECT_EQ(tone.Show(picture, 0), (RgbaT{0, 0, 0, 255}));
    EXPECT_EQ(tone.Show(picture, 1), (RgbaT{128, 128, 128, 255}));
    EXPECT_EQ(tone.Show(picture, 2), (RgbaT{255, 255, 255, 255}));
}

TEST(Tone, ValuesThatAreAllAlikeAreShownInTheMiddle)
{
    const PictureC picture = Filled({7.0, 7.0});
    EXPECT_EQ(ToneC(ToneKindT::Grey, picture).Show(picture, 0), (RgbaT{128, 128, 128, 255}));
}

TEST(Tone, AFewThatDifferAmongManyAlikeAreSeen)
{
    std::vector<double> values(500, 7.0);
    values[3] = 9.0;
    const PictureC picture = Filled(values);
    const ToneC tone(ToneKindT::Grey, picture);
    EXPECT_EQ(tone.Show(picture, 0)[0], 0);
    EXPECT_EQ(tone.Show(picture, 3)[0], 255);
}

TEST(Tone, TheRampGetsBrighterAllTheWay)
{
    std::vector<double> values;
    for (int i = 0; i <= 60; ++i)
        values.push_back(i);
    const PictureC picture = Filled(values);
    const ToneC tone(ToneKindT::Ramp, picture);
    double before = -1.0;
    for (std::size_t i = 1; i < 60; ++i) {
        const RgbaT rgba = tone.Show(picture, i);
        const double brightness = 0.299 * rgba[0] + 0.587 * rgba[1] + 0.114 * rgba[2];
        EXPECT_GT(brightness, before);
        before = brightness;
    }
}

TEST(Tone, ColoursAreShownAsTheyAre)
{
    PictureC picture({1, 1});
    picture.Offer(0, 0, 1.0f, ColorPixel({1.0, 128.0, 255.0}));
    EXPECT_EQ(ToneC(ToneKindT::Color, picture).Show(picture, 0), (RgbaT{1, 128, 255, 255}));
}

TEST(Tone, EmptyPixelsAreTransparent)
{
    const PictureC picture({1, 1});
    for (const ToneKindT eKind : {ToneKindT::Grey, ToneKindT::Ramp, ToneKindT::Color}) {
        EXPECT_EQ(ToneC(eKind, picture).Show(picture, 0), (RgbaT{0, 0, 0, 0}));
    }
}

TEST(View, EveryPointOfEveryViewFallsIntoThePicture)
{
    std::vector<ScanPointC> points;
    for (int i = 0; i < 500; ++i)
        points.push_back(Toward(i * 37 % 360, i * 11 % 181 - 90, i % 20, i / 20));
    points.push_back(At(-0.0, -0.0, 1e-300));
    points.push_back(At(-1e30 / 2, 0.0, 0.0));
    const SurveyC survey = Surveyed(points, 20, 25);
    for (const ViewKindT eKind : {ViewKindT::Grid, ViewKindT::Direction, ViewKindT::Top}) {
        const auto view = MakeView(eKind, survey, 20, 25, 100);
        PixelC pixel;
        for (const ScanPointC& point : points) {
            if (!view->Find(point, pixel)) continue;
            EXPECT_LT(pixel.x, view->GetSize().uiWidth);
            EXPECT_LT(pixel.y, view->GetSize().uiHeight);
            EXPECT_GE(pixel.dDistance, 0.0);
        }
    }
}

} // namespace
