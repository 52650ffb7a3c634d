// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What import makes of fields: which value each one is, how it is encoded, and what is told of it.
#include "Tools/ConvertTest.h"

#include "Sio/Sio_QsbFileFormat.h"

namespace {

namespace Format = SIO::QsbFormat;
using Support::Import;
using Support::ImportedT;
using Support::SourceInMemory;
using Tool::ImportChoicesC;
using Tool::NumberTypeT;
using Tool::OutcomeT;

/// An ascii PLY of points with float positions 1 2 3 and these properties ("uchar red").
SourceInMemory Points(const std::vector<std::string>& properties, const std::vector<std::string>& values,
                      const std::string& comments = "")
{
    std::string text = "ply\nformat ascii 1.0\n" + comments + "element vertex " +
                       std::to_string(values.size()) +
                       "\nproperty float x\nproperty float y\nproperty float z\n";
    for (const std::string& property : properties)
        text.append("property ").append(property).append("\n");
    text += "end_header\n";
    for (const std::string& value : values)
        text.append("1 2 3 ").append(value).append("\n");
    return SourceInMemory::Ply(text);
}

TEST(ScanImport, PositionsKeepThePrecisionOfTheirType)
{
    EXPECT_EQ(Import(Points({}, {""})).oFormat.uiPosition, Format::s_uiTypeFloatTriple);
    const auto source = [](const std::string& type) {
        return SourceInMemory::Ply("ply\nformat ascii 1.0\nelement vertex 1\nproperty " + type +
                                   " X\nproperty short Y\nproperty uchar Z\nend_header\n1 2 3\n");
    };
    EXPECT_EQ(Import(source("short")).oFormat.uiPosition, Format::s_uiTypeFloatTriple);
    EXPECT_EQ(Import(source("double")).oFormat.uiPosition, Format::s_uiTypeDoubleTriple);
    EXPECT_EQ(Import(source("int")).oFormat.uiPosition, Format::s_uiTypeDoubleTriple);
}

TEST(ScanImport, FieldsInAnyOrderReachTheirPlaces)
{
    const auto source = SourceInMemory::Ply(
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty uchar blue\nproperty uchar col\nproperty float z\n"
        "property uchar noise\nproperty uchar red\nproperty float y\nproperty ushort intensity\nproperty "
        "uchar row\n"
        "property float x\nproperty uchar green\nend_header\n1 2 3 4 5 6 7 8 9 10\n");
    const Tool::ScanPointC point = Import(source).vecPoints.at(0);
    EXPECT_EQ(point.x, 9);
    EXPECT_EQ(point.y, 6);
    EXPECT_EQ(point.z, 3);
    EXPECT_EQ(point.dIntensity, 7);
    EXPECT_EQ(point.dNoise, 4);
    EXPECT_EQ(point.adColor[0], 5);
    EXPECT_EQ(point.adColor[1], 10);
    EXPECT_EQ(point.adColor[2], 1);
    EXPECT_EQ(point.adGrid[0], 8);
    EXPECT_EQ(point.adGrid[1], 2);
}

struct NameT
{
    std::string strProperty;
    Tool::ScanValueT eValue;
};

void PrintTo(const NameT& row, std::ostream* stream)
{
    Support::PrintAsName(row.strProperty, stream);
}

class KnownName : public testing::TestWithParam<NameT>
{};

TEST_P(KnownName, IsUnderstood)
{
    EXPECT_EQ(Tool::ValueNamed(GetParam().strProperty), GetParam().eValue);
}

INSTANTIATE_TEST_SUITE_P(ScanImport, KnownName,
                         testing::Values(NameT{"intensity", Tool::ScanValueT::Intensity},
                                         NameT{"scalar_Intensity", Tool::ScanValueT::Intensity},
                                         NameT{"scalar_intensity", Tool::ScanValueT::Intensity},
                                         NameT{"Reflectance", Tool::ScanValueT::Intensity},
                                         NameT{"quality", Tool::ScanValueT::Intensity},
                                         NameT{"diffuse_red", Tool::ScanValueT::Red},
                                         NameT{"g", Tool::ScanValueT::Green},
                                         NameT{"B", Tool::ScanValueT::Blue},
                                         NameT{"scalar_row", Tool::ScanValueT::Row},
                                         NameT{"columnIndex", Tool::ScanValueT::Column},
                                         NameT{"scalar_noise", Tool::ScanValueT::Noise}));

TEST(ScanImport, TheMoreTellingNameWinsAndTheOtherFieldIsDropped)
{
    const ImportedT imported = Import(Points({"uchar quality", "uchar scalar_Intensity"}, {"7 8"}));
    EXPECT_EQ(imported.vecPoints.at(0).dIntensity, 8);
    EXPECT_EQ(imported.Row("scalar_Intensity").strNote, "as intensity");
    EXPECT_EQ(imported.Row("quality").eOutcome, OutcomeT::Dropped);
    EXPECT_EQ(imported.Row("quality").strNote, "intensity is taken from scalar_Intensity");
    EXPECT_FALSE(imported.oReport.IsLossless());
}

struct IntensityT
{
    std::string strProperty;
    std::vector<std::string> values;
    std::uint32_t uiType;
    std::uint64_t ullChanged;
};

void PrintTo(const IntensityT& row, std::ostream* stream)
{
    Support::PrintAsName(row.strProperty + row.values.back(), stream);
}

class IntensityOf : public testing::TestWithParam<IntensityT>
{};

TEST_P(IntensityOf, GetsTheSmallestEncodingThatHoldsIt)
{
    const ImportedT imported = Import(Points({GetParam().strProperty + " intensity"}, GetParam().values));
    EXPECT_EQ(imported.oFormat.uiIntensity, GetParam().uiType);
    EXPECT_EQ(imported.Row("intensity").ullChanged, GetParam().ullChanged);
}

INSTANTIATE_TEST_SUITE_P(ScanImport, IntensityOf,
                         testing::Values(IntensityT{"uchar", {"255"}, Format::s_uiTypeUInt16, 0},
                                         IntensityT{"char", {"1"}, Format::s_uiTypeInt16, 0},
                                         IntensityT{"ushort", {"65535"}, Format::s_uiTypeUInt16, 0},
                                         IntensityT{"short", {"5"}, Format::s_uiTypeInt16, 0},
                                         IntensityT{"int", {"0", "65535"}, Format::s_uiTypeUInt16, 0},
                                         IntensityT{"int", {"-1", "32767"}, Format::s_uiTypeInt16, 0},
                                         IntensityT{"int", {"-1", "32768"}, Format::s_uiTypeFloat, 0},
                                         IntensityT{"uint", {"65536"}, Format::s_uiTypeFloat, 0},
                                         IntensityT{"uint", {"16777217"}, Format::s_uiTypeFloat, 1},
                                         IntensityT{"float", {"7"}, Format::s_uiTypeFloat, 0},
                                         IntensityT{"double", {"0.5"}, Format::s_uiTypeFloat, 0},
                                         IntensityT{"double", {"0.1"}, Format::s_uiTypeFloat, 1}));

TEST(ScanImport, AnEncodingThatIsAskedForIsUsedAndItsLossCounted)
{
    ImportChoicesC choices;
    choices.oPosition = NumberTypeT::Float;
    choices.oIntensity = NumberTypeT::UInt16;
    const ImportedT imported = Import(Points({"float intensity"}, {"0.25", "-1", "2", "99999"}), choices);
    EXPECT_EQ(imported.oFormat.uiIntensity, Format::s_uiTypeUInt16);
    EXPECT_EQ(imported.Row("intensity").ullChanged, 3u);
    EXPECT_EQ(imported.Row("intensity").dLargestChange, 34464.0);
    EXPECT_EQ(imported.vecPoints.at(3).dIntensity, 65535);
}

TEST(ScanImport, IntensityIsScaledOnRequestAndToldSo)
{
    ImportChoicesC choices;
    choices.oIntensity = NumberTypeT::UInt16;
    choices.dIntensityScale = 65535.0;
    const ImportedT imported = Import(Points({"float intensity"}, {"0", "1", "0.5"}), choices);
    EXPECT_EQ(imported.vecPoints.at(1).dIntensity, 65535);
    EXPECT_EQ(imported.Row("intensity").eOutcome, OutcomeT::Scaled);
    EXPECT_EQ(imported.Row("intensity").dFactor, 65535.0);
    EXPECT_EQ(imported.Row("intensity").ullChanged, 1u);
}

TEST(ScanImport, IntensitiesThatReadersWouldCutToNothingAreRemarkedOn)
{
    EXPECT_NE(Import(Points({"float intensity"}, {"0.5"})).Row("intensity").strNote, "");
    EXPECT_EQ(Import(Points({"float intensity"}, {"0.5", "1.5"})).Row("intensity").strNote, "");
    EXPECT_EQ(Import(Points({"uchar intensity"}, {"1"})).Row("intensity").strNote, "");
}

TEST(ScanImport, MissingIntensityIsAddedAsZeroAndCountsAsLoss)
{
    const ImportedT imported = Import(Points({}, {""}));
    EXPECT_EQ(imported.oFormat.uiIntensity, Format::s_uiTypeUInt16);
    EXPECT_EQ(imported.vecPoints.at(0).dIntensity, 0);
    EXPECT_EQ(imported.Row("intensity").eOutcome, OutcomeT::Added);
    EXPECT_TRUE(imported.Row("intensity").bLoss);
}

struct ColorT
{
    std::string strType;
    std::string strValues;
    std::array<double, 3> adColor;
    double dFactor;
    std::uint64_t ullChanged; ///< of red
};

void PrintTo(const ColorT& row, std::ostream* stream)
{
    Support::PrintAsName(row.strType + row.strValues, stream);
}

class ColorOf : public testing::TestWithParam<ColorT>
{};

TEST_P(ColorOf, IsEightBitsPerChannelAndItsScaleIsTold)
{
    const std::string& type = GetParam().strType;
    const ImportedT imported =
        Import(Points({type + " red", type + " green", type + " blue"}, {GetParam().strValues}));
    const Tool::ScanPointC& point = imported.vecPoints.at(0);
    EXPECT_EQ((std::array<double, 3>{point.adColor[0], point.adColor[1], point.adColor[2]}),
              GetParam().adColor);
    EXPECT_EQ(imported.Row("red").dFactor, GetParam().dFactor);
    EXPECT_EQ(imported.Row("red").ullChanged, GetParam().ullChanged);
}

INSTANTIATE_TEST_SUITE_P(ScanImport, ColorOf,
                         testing::Values(ColorT{"uchar", "1 2 255", {1, 2, 255}, 1.0, 0},
                                         ColorT{"ushort", "1 2 255", {1, 2, 255}, 1.0, 0},
                                         ColorT{"ushort", "257 514 65535", {1, 2, 255}, 255.0 / 65535.0, 0},
                                         ColorT{"ushort", "300 514 65535", {1, 2, 255}, 255.0 / 65535.0, 1},
                                         ColorT{"float", "0.2 0.4 1", {51, 102, 255}, 255.0, 0},
                                         ColorT{"float", "0.5 0 1", {128, 0, 255}, 255.0, 1},
                                         ColorT{"double", "12 0 255", {12, 0, 255}, 1.0, 0},
                                         ColorT{"float", "nan 0 1", {0, 0, 255}, 255.0, 1}));

TEST(ScanImport, TheValueOfFullColourCanBeGiven)
{
    ImportChoicesC choices;
    choices.oColorMax = 4095.0;
    const ImportedT imported =
        Import(Points({"ushort red", "ushort green", "ushort blue"}, {"0 4095 819"}), choices);
    EXPECT_EQ(imported.vecPoints.at(0).adColor[1], 255);
    EXPECT_EQ(imported.vecPoints.at(0).adColor[2], 51);
}

TEST(ScanImport, HalfAColourOrGridIndexIsDroppedWithTheReason)
{
    const ImportedT imported = Import(Points({"uchar red", "uchar green", "uint row"}, {"1 2 3"}));
    EXPECT_EQ(imported.oFormat.uiColor, 0u);
    EXPECT_EQ(imported.oFormat.uiGrid, 0u);
    EXPECT_EQ(imported.Row("red").strNote, "a colour needs red, green and blue");
    EXPECT_EQ(imported.Row("row").strNote, "a grid index needs row and col");
}

TEST(ScanImport, ElementsAreLeftOutOnRequestAndToldSo)
{
    ImportChoicesC choices;
    choices.bNoNoise = choices.bNoGrid = choices.bNoColor = true;
    const ImportedT imported =
        Import(Points({"uchar noise", "uchar red", "uchar green", "uchar blue", "uint row", "uint col"},
                      {"1 2 3 4 5 6"}),
               choices);
    EXPECT_EQ(imported.oFormat.uiNoise + imported.oFormat.uiGrid + imported.oFormat.uiColor, 0u);
    for (const char* field : {"noise", "red", "green", "blue", "row", "col"}) {
        EXPECT_EQ(imported.Row(field).strNote, "left out as asked");
        EXPECT_TRUE(imported.Row(field).bLoss);
    }
}

struct NoiseT
{
    std::string strProperty;
    std::string strValue;
    std::uint32_t uiType;
};

void PrintTo(const NoiseT& row, std::ostream* stream)
{
    Support::PrintAsName(row.strProperty + row.strValue, stream);
}

class NoiseOf : public testing::TestWithParam<NoiseT>
{};

TEST_P(NoiseOf, GetsTheSmallestEncodingThatHoldsIt)
{
    const ImportedT imported = Import(Points({GetParam().strProperty + " noise"}, {GetParam().strValue}));
    EXPECT_EQ(imported.oFormat.uiNoise, GetParam().uiType);
    EXPECT_EQ(imported.Row("noise").eOutcome, OutcomeT::Kept);
}

INSTANTIATE_TEST_SUITE_P(ScanImport, NoiseOf,
                         testing::Values(NoiseT{"uchar", "1", Format::s_uiTypeUInt8},
                                         NoiseT{"ushort", "1", Format::s_uiTypeUInt16},
                                         NoiseT{"float", "1", Format::s_uiTypeFloat},
                                         NoiseT{"double", "1", Format::s_uiTypeFloat},
                                         NoiseT{"int", "255", Format::s_uiTypeUInt8},
                                         NoiseT{"uint", "256", Format::s_uiTypeUInt16},
                                         NoiseT{"short", "-1", Format::s_uiTypeFloat}));

TEST(ScanImport, GridIndicesKeepTheWidthOfTheirType)
{
    const auto type = [](const std::string& property) {
        return Import(Points({property + " row", property + " col"}, {"1 2"})).oFormat.uiGrid;
    };
    EXPECT_EQ(type("ushort"), Format::s_uiTypeUInt16Pair);
    EXPECT_EQ(type("uint"), Format::s_uiTypeUInt32Pair);
    EXPECT_EQ(type("int"), Format::s_uiTypeUInt16Pair);
    EXPECT_EQ(type("float"), Format::s_uiTypeUInt16Pair);
    EXPECT_EQ(Import(Points({"float row", "float col"}, {"65536 0"})).oFormat.uiGrid,
              Format::s_uiTypeUInt32Pair);
}

TEST(ScanImport, TheGridIsStoredAsItsLargestIndices)
{
    const ImportedT imported = Import(Points({"uint row", "uint col"}, {"0 0"}, "comment qsb grid 3 4\n"));
    EXPECT_EQ(imported.oInfo.auiGridSize[0], 2u);
    EXPECT_EQ(imported.oInfo.auiGridSize[1], 3u);
    EXPECT_EQ(imported.Row("grid").strNote, "3 rows, 4 columns");
}

TEST(ScanImport, AGridThatIsNotStatedFollowsFromTheLargestIndices)
{
    const ImportedT imported = Import(Points({"uint row", "uint col"}, {"2 0", "0 3"}));
    EXPECT_EQ(imported.oInfo.auiGridSize[0], 2u);
    EXPECT_EQ(imported.oInfo.auiGridSize[1], 3u);
    EXPECT_EQ(imported.Row("grid").eOutcome, OutcomeT::Added);
}

TEST(ScanImport, AGridOneLineWideIsToldToReadAsNone)
{
    const ImportedT imported = Import(Points({"uint row", "uint col"}, {"0 0"}, "comment qsb grid 1 4\n"));
    EXPECT_EQ(imported.Row("grid").eOutcome, OutcomeT::Dropped);
    EXPECT_TRUE(imported.Row("grid").bLoss);
}

TEST(ScanImport, IndicesOutsideTheGridAreCounted)
{
    const ImportedT imported =
        Import(Points({"uint row", "uint col"}, {"1 1", "2 0", "0 2"}, "comment qsb grid 2 2\n"));
    EXPECT_EQ(imported.Row("grid").strNote, "2 rows, 2 columns; 2 points lie outside it");
}

TEST(ScanImport, AGridWithoutIndicesIsKeptAndRemarkedOn)
{
    EXPECT_EQ(Import(Points({}, {""}, "comment qsb grid 2 2\n")).Row("grid").strNote,
              "2 rows, 2 columns; the points have no indices");
}

TEST(ScanImport, PoseAndHeightReachTheHeader)
{
    const ImportedT imported = Import(Points(
        {}, {""},
        "comment qsb pose 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\ncomment qsb instrument_height 1.5\n"));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(imported.oInfo.oTransformation.At(i / 4, i % 4), i + 1);
    EXPECT_EQ(imported.oInfo.dInstrumentHeight, 1.5);
    EXPECT_EQ(imported.Row("pose").eOutcome, OutcomeT::Kept);
}

TEST(ScanImport, WhatNoScanFileCarriesIsDroppedByName)
{
    const auto source = SourceInMemory::Ply("ply\nformat ascii 1.0\ncomment a remark\nelement vertex "
                                            "1\nproperty float x\nproperty float y\nproperty float z\n"
                                            "property uchar intensity\nproperty double time\nelement face "
                                            "1\nproperty list uchar int i\nend_header\n1 2 3 4 5\n0\n");
    const ImportedT imported = Import(source);
    EXPECT_TRUE(imported.Row("time").bLoss);
    EXPECT_TRUE(imported.Row("element face (1)").bLoss);
    EXPECT_FALSE(imported.Row("1 comments").bLoss);
}

TEST(ScanImport, NothingLostMeansLossless)
{
    EXPECT_TRUE(Import(Points({"float intensity"}, {"1"})).oReport.IsLossless());
}

TEST(ScanImport, ASourceWithoutPointsMakesAnEmptyScanWithoutAGrid)
{
    const ImportedT imported =
        Import(Points({"uint row", "uint col", "float red", "float green", "float blue"}, {}));
    EXPECT_TRUE(imported.vecPoints.empty());
    EXPECT_EQ(imported.oInfo.auiGridSize[0], 0u);
    EXPECT_TRUE(imported.oReport.IsLossless());
}

TEST(ScanImport, ASourceWithoutPositionsIsRefused)
{
    EXPECT_EQ(Support::DamageToldBy([] {
                  Import(SourceInMemory::Ply("ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
                                             "property float y\nend_header\n1 2\n"));
              }),
              "a.ply: the points have no positions; fields x, y and z are needed");
}

} // namespace
