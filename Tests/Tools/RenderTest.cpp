// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb render: known scans give known pixels, and odd ones give a clear answer.
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/PngPicture.h"
#include "Tools/RunQsb.h"
#include "Tools/TinyScan.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace {

using Support::PngPicture;
using Support::RgbaT;
using Support::RunQsb;
using Support::s_aTransparent;
using Tool::ScanPointC;

constexpr RgbaT s_aRed{255, 0, 0, 255}, s_aGreen{0, 255, 0, 255}, s_aBlue{0, 0, 255, 255};
constexpr RgbaT s_aYellow{255, 255, 0, 255};
constexpr double s_dNaN = std::numeric_limits<double>::quiet_NaN();

/// A point at a place of the grid, in a colour.
ScanPointC Point(double x, double y, double z, const RgbaT& color, double row = 0.0, double column = 0.0)
{
    ScanPointC point;
    point.x = x;
    point.y = y;
    point.z = z;
    for (std::size_t i = 0; i < 3; ++i)
        point.adColor[i] = color[i];
    point.adGrid[0] = row;
    point.adGrid[1] = column;
    return point;
}

/// Four points ahead of a scanner at the origin, which looks along x: above left, above right, below left,
/// below right.
constexpr double s_adAhead[4][3] = {{5, 1, 1}, {5, -1, 1}, {5, 1, -1}, {5, -1, -1}};

class Render : public testing::Test
{
protected:
    Support::QsbRunT Run(const std::vector<std::string>& more) const
    {
        std::vector<std::string> arguments{"render", m_strScan, m_strPicture};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunQsb(arguments);
    }

    /// Draws and expects that to work.
    PngPicture Picture(const std::vector<std::string>& more) const
    {
        const Support::QsbRunT run = Run(more);
        EXPECT_EQ(run.iExitCode, 0) << run.err;
        return PngPicture(m_strPicture);
    }

    nlohmann::json Json(const std::vector<std::string>& more) const
    {
        std::vector<std::string> arguments{"--json", "--overwrite"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return nlohmann::json::parse(Run(arguments).out);
    }

    /// The four points ahead, red, green, blue, yellow, with the grid turned as told.
    void WriteAhead(bool bRowsRise, bool bColumnsGoRight) const
    {
        const RgbaT aColors[4] = {s_aRed, s_aGreen, s_aBlue, s_aYellow};
        std::vector<ScanPointC> points;
        for (int i = 0; i < 4; ++i) {
            const bool bTop = i < 2, bLeft = i % 2 == 0;
            points.push_back(Point(s_adAhead[i][0], s_adAhead[i][1], s_adAhead[i][2], aColors[i],
                                   bTop == bRowsRise ? 1 : 0, bLeft == bColumnsGoRight ? 0 : 1));
        }
        Support::WriteScan(m_strScan, points, 1, 1);
    }

    void ExpectAhead(const PngPicture& picture) const
    {
        ASSERT_EQ(picture.Width(), 2u);
        ASSERT_EQ(picture.Height(), 2u);
        EXPECT_EQ(picture.At(0, 0), s_aRed);
        EXPECT_EQ(picture.At(1, 0), s_aGreen);
        EXPECT_EQ(picture.At(0, 1), s_aBlue);
        EXPECT_EQ(picture.At(1, 1), s_aYellow);
    }

    const Support::TemporaryDirectory m_directory;
    const std::string m_strScan = m_directory.Narrow("scan.qsb");
    const std::string m_strPicture = m_directory.Narrow("picture.png");
};

TEST_F(Render, UpIsUpAndLeftIsLeftHoweverTheGridIsTurned)
{
    for (const bool bRowsRise : {false, true}) {
        for (const bool bColumnsGoRight : {false, true}) {
            WriteAhead(bRowsRise, bColumnsGoRight);
            ExpectAhead(Picture({"--by", "color", "--overwrite"}));
        }
    }
}

TEST_F(Render, ItSaysWhichWayTheGridIsTurned)
{
    WriteAhead(true, true);
    EXPECT_EQ(Json({})["orientation"], "by grid, row 0 is the lowest, column 0 is at the left");
    WriteAhead(false, false);
    EXPECT_EQ(Json({})["orientation"], "by grid, row 0 is the highest, column 0 is at the right");
}

TEST_F(Render, APlaceOfTheGridWithoutAPointIsTransparent)
{
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed, 1, 0), Point(5, -1, -1, s_aBlue, 0, 1)}, 1, 1);
    const PngPicture picture = Picture({"--by", "color"});
    EXPECT_EQ(picture.At(0, 0), s_aRed);
    EXPECT_EQ(picture.At(1, 0), s_aTransparent);
    EXPECT_EQ(picture.At(0, 1), s_aTransparent);
    EXPECT_EQ(picture.At(1, 1), s_aBlue);
}

TEST_F(Render, OfTwoPointsInOnePlaceTheNearerIsShown)
{
    Support::WriteScan(m_strScan,
                       {Point(9, 2, 2, s_aRed, 1, 0), Point(5, 1, 1, s_aGreen, 1, 0),
                        Point(7, 1, 1, s_aRed, 1, 0), Point(5, -1, -1, s_aBlue, 0, 1)},
                       1, 1);
    EXPECT_EQ(Picture({"--by", "color"}).At(0, 0), s_aGreen);
}

TEST_F(Render, IntensityIsStretchedFromBlackToWhite)
{
    std::vector<ScanPointC> points{Point(5, 1, -1, s_aRed, 0, 0), Point(5, -1, -1, s_aRed, 0, 1),
                                   Point(5, -1, 1, s_aRed, 1, 1)};
    points[0].dIntensity = -20.5;
    points[1].dIntensity = 0.0;
    points[2].dIntensity = 20.5;
    Support::WriteScan(m_strScan, points, 1, 1);
    const PngPicture picture = Picture({});
    EXPECT_EQ(picture.At(0, 1), (RgbaT{0, 0, 0, 255}));
    EXPECT_EQ(picture.At(1, 1), (RgbaT{128, 128, 128, 255}));
    EXPECT_EQ(picture.At(1, 0), (RgbaT{255, 255, 255, 255}));
}

TEST_F(Render, RangeAndNoiseRunFromDarkToBright)
{
    std::vector<ScanPointC> points{Point(5, 1, -1, s_aRed, 0, 0), Point(9, -1, 1, s_aRed, 1, 1)};
    points[0].dNoise = 3.5;
    points[1].dNoise = 1.5;
    Support::WriteScan(m_strScan, points, 1, 1);
    const PngPicture range = Picture({"--by", "range"});
    EXPECT_LT(range.At(0, 1)[1], range.At(1, 0)[1]);
    const PngPicture noise = Picture({"--by", "noise", "--overwrite"});
    EXPECT_GT(noise.At(0, 1)[1], noise.At(1, 0)[1]);
    EXPECT_EQ(Json({"--by", "noise"})["shown_from"], 1.5);
    EXPECT_EQ(Json({"--by", "noise"})["shown_to"], 3.5);
}

TEST_F(Render, ANarrowerPictureShowsTheNearestOfThePlacesItJoins)
{
    std::vector<ScanPointC> points;
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            const bool bNearest = column == 2 && row == 3;
            points.push_back(
                Point(bNearest ? 4 : 5, 2 - column, row - 2, bNearest ? s_aGreen : s_aRed, row, column));
        }
    }
    Support::WriteScan(m_strScan, points, 3, 3);
    const PngPicture picture = Picture({"--by", "color", "--width", "2"});
    ASSERT_EQ(picture.Width(), 2u);
    ASSERT_EQ(picture.Height(), 2u);
    EXPECT_EQ(picture.At(1, 0), s_aGreen);
    EXPECT_EQ(picture.At(0, 0), s_aRed);
}

TEST_F(Render, AWiderPictureEnlargesAGridInWholeSteps)
{
    WriteAhead(true, true);
    const PngPicture picture = Picture({"--by", "color", "--width", "7"});
    EXPECT_EQ(picture.Width(), 6u);
    EXPECT_EQ(picture.Height(), 6u);
    EXPECT_EQ(picture.At(2, 2), s_aRed);
    EXPECT_EQ(picture.At(3, 2), s_aGreen);
    EXPECT_EQ(picture.At(2, 3), s_aBlue);
}

TEST_F(Render, WithoutAGridDirectionsMakeAPanoramaClockwise)
{
    std::vector<ScanPointC> points;
    for (int degrees = 0; degrees < 360; ++degrees) {
        const double angle = degrees * std::acos(-1.0) / 180.0;
        const RgbaT color = degrees < 90    ? s_aRed
                            : degrees < 180 ? s_aGreen
                            : degrees < 270 ? s_aBlue
                                            : s_aYellow;
        points.push_back(Point(5 * std::cos(angle + 0.001), 5 * std::sin(angle + 0.001), 0, color));
        points.push_back(Point(5 * std::cos(angle + 0.001), 5 * std::sin(angle + 0.001), 8, s_aRed));
    }
    Support::WriteScan(m_strScan, points);
    const PngPicture picture = Picture({"--by", "color", "--width", "40"});
    ASSERT_EQ(picture.Width(), 40u);
    const std::uint32_t uiLow = picture.Height() - 1;
    EXPECT_EQ(picture.At(0, uiLow), s_aGreen) << "left is behind to the left";
    EXPECT_EQ(picture.At(19, uiLow), s_aRed);
    EXPECT_EQ(picture.At(20, uiLow), s_aYellow) << "the middle is along x";
    EXPECT_EQ(picture.At(39, uiLow), s_aBlue);
    EXPECT_EQ(picture.At(39, 0), s_aRed) << "above is above";
}

TEST_F(Render, PointsFarFromTheOriginAreSeenFromAboveNorthUpHighestFirst)
{
    Support::WriteScan(m_strScan, {Point(600000, 800000, 10, s_aBlue), Point(600100, 800000, 10, s_aYellow),
                                   Point(600000, 800100, 10, s_aRed), Point(600100, 800100, 10, s_aBlue),
                                   Point(600100, 800100, 90, s_aGreen), Point(600100, 800100, 20, s_aBlue)});
    const PngPicture picture = Picture({"--by", "color", "--width", "2"});
    ExpectAhead(picture);
    EXPECT_EQ(Json({})["view"], "top");
}

TEST_F(Render, FromAboveRangeIsTheHeightOverTheLowestPoint)
{
    Support::WriteScan(m_strScan, {Point(0, 0, 10, s_aBlue), Point(10, 10, 35, s_aBlue)});
    const nlohmann::json json = Json({"--view", "top", "--by", "range", "--width", "2"});
    EXPECT_EQ(json["shown_from"], 0.0);
    EXPECT_EQ(json["shown_to"], 25.0);
}

TEST_F(Render, PointsWithoutAPositionOrAValueAreLeftOutAndCounted)
{
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<ScanPointC> points{Point(5, 1, 1, s_aRed, 1, 0),      Point(5, -1, -1, s_aRed, 0, 1),
                                   Point(s_dNaN, 1, 1, s_aRed, 0, 0), Point(5, infinity, 1, s_aRed, 1, 1),
                                   Point(0, 0, 0, s_aRed, 1, 1),      Point(5, 1, -1, s_aRed, 0, 0)};
    points[5].dIntensity = s_dNaN;
    Support::WriteScan(m_strScan, points, 1, 1);
    const nlohmann::json json = Json({});
    EXPECT_EQ(json["points"], 2);
    EXPECT_EQ(json["pixels_filled"], 2);
    EXPECT_EQ(json["left_out"]["invalid_position"], 2);
    EXPECT_EQ(json["left_out"]["no_place"], 1);
    EXPECT_EQ(json["left_out"]["no_value"], 1);
    EXPECT_EQ(PngPicture(m_strPicture).CountOpaque(), 2u);
}

TEST_F(Render, APointOutsideTheGridIsLeftOutAndCounted)
{
    Support::WriteScan(m_strScan,
                       {Point(5, 1, 1, s_aRed, 1, 0), Point(5, -1, -1, s_aRed, 0, 1),
                        Point(5, 0, 0, s_aRed, 4294967295.0, 0)},
                       1, 1);
    EXPECT_EQ(Json({})["left_out"]["no_place"], 1);
    EXPECT_EQ(PngPicture(m_strPicture).CountOpaque(), 2u);
}

TEST_F(Render, AGridThatDoesNotFitTheIndicesIsNotUsed)
{
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed, 10, 0), Point(5, -1, -1, s_aRed, 20, 1)}, 1, 1);
    const Support::QsbRunT run = Run({});
    EXPECT_EQ(run.iExitCode, 0);
    EXPECT_NE(run.err.find("the grid of 2 x 2 does not fit the points' indices, 0 of 2 lie in it"),
              std::string::npos);
    EXPECT_EQ(Json({})["view"], "direction");
    EXPECT_EQ(Run({"--view", "grid", "--overwrite"}).iExitCode, 1);
}

TEST_F(Render, AGridViewOfAScanWithoutAGridIsRefused)
{
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed)});
    const Support::QsbRunT run = Run({"--view", "grid"});
    EXPECT_EQ(run.iExitCode, 1);
    EXPECT_NE(run.err.find("the scan has no grid"), std::string::npos);
    EXPECT_FALSE(boost::filesystem::exists(m_strPicture));
}

TEST_F(Render, AGridOfFourThousandMillionLinesTakesASmallPicture)
{
    Support::WriteScan(m_strScan,
                       {Point(5, 1, 1, s_aRed, 4294967295.0, 0), Point(5, -1, -1, s_aRed, 0, 4294967295.0)},
                       0xFFFFFFFF, 0xFFFFFFFF);
    const PngPicture picture = Picture({"--by", "color"});
    EXPECT_LE(std::uint64_t{picture.Width()} * picture.Height(), 1000000u);
    EXPECT_EQ(picture.At(0, 0), s_aRed);
    EXPECT_EQ(picture.At(picture.Width() - 1, picture.Height() - 1), s_aRed);
    EXPECT_EQ(picture.CountOpaque(), 2u);
}

TEST_F(Render, ASinglePointMakesAPictureInEveryView)
{
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed)});
    for (const char* view : {"direction", "top"}) {
        EXPECT_EQ(Picture({"--by", "color", "--view", view, "--overwrite"}).CountOpaque(), 1u);
    }
}

TEST_F(Render, OfATornFileThePictureShowsWhatIsThereAndTheExitCodeIs3)
{
    WriteAhead(true, true);
    boost::filesystem::resize_file(m_strScan, boost::filesystem::file_size(m_strScan) - 1);
    const Support::QsbRunT run = Run({"--by", "color"});
    EXPECT_EQ(run.iExitCode, 3);
    EXPECT_NE(run.err.find("3 of 4 points are readable; the picture shows these"), std::string::npos);
    EXPECT_EQ(PngPicture(m_strPicture).CountOpaque(), 3u);
}

TEST_F(Render, AFileTornBeforeItsFirstPointGivesNoPicture)
{
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed)});
    boost::filesystem::resize_file(m_strScan, boost::filesystem::file_size(m_strScan) - 1);
    EXPECT_EQ(Run({}).iExitCode, 3);
    EXPECT_FALSE(boost::filesystem::exists(m_strPicture));
}

TEST_F(Render, AScanWithoutPointsIsRefused)
{
    Support::WriteScan(m_strScan, {});
    const Support::QsbRunT run = Run({});
    EXPECT_EQ(run.iExitCode, 1);
    EXPECT_NE(run.err.find("no point to draw"), std::string::npos);
}

TEST_F(Render, WhatThePointsDoNotHaveCannotBeShown)
{
    Tool::ScanFormatC format;
    Support::WriteScan(m_strScan, {Point(5, 1, 1, s_aRed)}, 0, 0, format);
    for (const char* by : {"color", "noise"}) {
        const Support::QsbRunT run = Run({"--by", by});
        EXPECT_EQ(run.iExitCode, 1);
        EXPECT_NE(run.err.find("choose another --by"), std::string::npos);
    }
}

TEST_F(Render, AnExistingPictureStaysUnlessItIsToBeOverwritten)
{
    WriteAhead(true, true);
    Support::WriteAll(m_strPicture, "old");
    EXPECT_EQ(Run({}).iExitCode, 1);
    EXPECT_EQ(Support::ReadAll(m_strPicture), "old");
    EXPECT_EQ(Run({"--overwrite"}).iExitCode, 0);
}

TEST_F(Render, TheScanIsNeverOverwrittenByItsPicture)
{
    WriteAhead(true, true);
    const std::string before = Support::ReadAll(m_strScan);
    EXPECT_EQ(RunQsb({"render", m_strScan, m_strScan, "--overwrite"}).iExitCode, 1);
    EXPECT_EQ(Support::ReadAll(m_strScan), before);
}

TEST_F(Render, AMissingFileAndAForeignFileAreToldApart)
{
    EXPECT_EQ(Run({}).iExitCode, 1);
    Support::WriteAll(m_strScan, "not a scan, not at all");
    EXPECT_EQ(Run({}).iExitCode, 3);
}

TEST_F(Render, WrongOptionsAreMisuse)
{
    WriteAhead(true, true);
    EXPECT_EQ(Run({"--by", "height"}).iExitCode, 2);
    EXPECT_EQ(Run({"--view", "side"}).iExitCode, 2);
    EXPECT_EQ(Run({"--width", "0"}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"render", m_strScan}).iExitCode, 2);
}

TEST_F(Render, QuietSaysNothing)
{
    WriteAhead(true, true);
    const Support::QsbRunT run = Run({"--quiet"});
    EXPECT_EQ(run.out + run.err, "");
}

TEST_F(Render, ASimulatedScanFillsItsGridBothWaysUp)
{
    ASSERT_EQ(RunQsb({"synth", m_strScan, "--rows", "60", "--columns", "120", "--quiet"}).iExitCode, 0);
    const nlohmann::json json = Json({"--by", "color"});
    EXPECT_EQ(json["orientation"], "by grid, row 0 is the lowest, column 0 is at the left");
    EXPECT_EQ(json["points"], json["pixels_filled"]);
    EXPECT_EQ(PngPicture(m_strPicture).CountOpaque(), json["points"].get<std::size_t>());
}

TEST_F(Render, ARealIndoorScanIsSeenByItsGridTheRightWayUp)
{
    REAL_DATA(source, "tls_pump.json");
    ASSERT_EQ(RunQsb({"import", source, m_strScan, "--quiet"}).iExitCode, 0);
    const nlohmann::json json = Json({});
    EXPECT_EQ(json["orientation"], "by grid, row 0 is the lowest, column 0 is at the left");
    EXPECT_EQ(json["width"], 345);
    EXPECT_EQ(json["height"], 1074);
    EXPECT_EQ(PngPicture(m_strPicture).CountOpaque(), 155201u);
}

TEST_F(Render, ARealAirborneScanIsSeenFromAbove)
{
    REAL_DATA(source, "als_park.json");
    ASSERT_EQ(RunQsb({"import", source, m_strScan, "--quiet"}).iExitCode, 0);
    const nlohmann::json json = Json({"--by", "color"});
    EXPECT_EQ(json["view"], "top");
    EXPECT_EQ(json["points"], 110000);
}

TEST_F(Render, ARealVehicleScanWithoutAGridIsSeenAllRound)
{
    REAL_DATA(source, "road_c.json");
    ASSERT_EQ(RunQsb({"import", source, m_strScan, "--quiet"}).iExitCode, 0);
    const nlohmann::json json = Json({"--by", "range"});
    EXPECT_EQ(json["view"], "direction");
    EXPECT_EQ(json["points"], 78238);
    EXPECT_GT(json["width"], 3 * json["height"].get<int>());
}

} // namespace
