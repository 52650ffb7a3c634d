// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Exported records whose bytes are moved are the same as those that go through numbers, and so is the report.
#include "API_Hdr/GMAT_Algebra.h"
#include "Support/Files.h"
#include "Support/QsbBytes.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_PointSink.h"
#include "Tools/Qsb/Tool_RecordMoves.h"
#include "Tools/Qsb/Tool_ScanExport.h"
#include "Tools/TinyScan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

namespace F = SIO::QsbFormat;
using Tool::ExportChoicesC;
using Tool::RecordMovesC;
using Tool::ScanExportC;
using Tool::ScanFormatC;
using Tool::ScanReaderC;

std::string Pattern(std::size_t nBytes)
{
    std::string bytes(nBytes, '\0');
    for (std::size_t i = 0; i < nBytes; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
}

TEST(RecordMoves, MovesFieldsOfEverySizeAndLeavesWhatIsBetweenThem)
{
    constexpr std::size_t nRecords = 300; // more than a tile, and no multiple of one
    for (std::size_t nField = 1; nField <= 70; ++nField) {
        const std::size_t nSourceStride = nField + 3, nTargetStride = nField + 5;
        RecordMovesC moves;
        moves.Add(3, 5, nField); // the last byte of the last record ends the memory on both sides
        const std::string source = Pattern(nRecords * nSourceStride);
        const std::vector<char> exactSource(source.begin(), source.end());
        std::vector<char> target(nRecords * nTargetStride, 'x');
        moves.Move(exactSource.data(), nSourceStride, target.data(), nTargetStride, nRecords);
        for (std::size_t i = 0; i < nRecords; ++i) {
            ASSERT_EQ(std::string(&target[i * nTargetStride], nTargetStride),
                      "xxxxx" + source.substr(i * nSourceStride + 3, nField))
                << nField;
        }
    }
}

TEST(RecordMoves, MovesFieldsInAnyOrder)
{
    RecordMovesC moves;
    moves.Add(4, 0, 2);
    moves.Add(6, 2, 1); // together with the one before
    moves.Add(0, 3, 4);
    std::string target(14, '.');
    moves.Move("0123456abcdefg", 7, target.data(), 7, 2);
    EXPECT_EQ(target, "4560123efgabcd");
}

TEST(RecordMoves, MovesNothingOfNoRecords)
{
    RecordMovesC moves;
    moves.Add(0, 0, 4);
    moves.Move(nullptr, 4, nullptr, 4, 0);
}

class ScanExport : public testing::Test
{
protected:
    std::string Path() const { return m_directory.Narrow("scan.qsb"); }

    enum class FormT
    {
        Raw,
        Ply
    };

    /// What is written, and the report's rows, as text.
    std::string Written(const ExportChoicesC& choices = {}, FormT eForm = FormT::Raw)
    {
        ScanReaderC reader(Path());
        ScanExportC scan(reader, choices);
        const Tool::OutputFileC data(m_directory.Narrow("a.bin"), false),
            header(m_directory.Narrow("a.json"), false);
        const auto sink = eForm == FormT::Raw ? MakeRawSink(data, header, scan.GetHeader(), "a")
                                              : MakePlySink(data, scan.GetHeader());
        while (scan.Forward(*sink) != 0) {
        }
        sink->Finish();
        return Support::ReadAll(data.GetTemporaryPath()) + Report(scan);
    }

    std::string ThroughNumbers(const ExportChoicesC& choices = {})
    {
        ScanReaderC reader(Path());
        ScanExportC scan(reader, choices);
        std::vector<std::vector<double>> columns;
        std::string bytes;
        while (const std::size_t nPoints = scan.Read(columns))
            Tool::AppendRecords(bytes, scan.GetHeader(), columns, nPoints);
        return bytes + Report(scan);
    }

    /// The records as the virtual calls of the point definition decode them, mapped by the pose if it is to
    /// be applied.
    std::string PointByPoint(const ExportChoicesC& choices = {})
    {
        ScanReaderC reader(Path());
        const Tool::RawHeaderC header = ScanExportC(reader, choices).GetHeader();
        std::vector<Tool::ScanPointC> points(header.ullPoints);
        reader.Rewind();
        std::vector<Tool::ScanPointC> batch;
        for (std::size_t nDone = 0; nDone < points.size(); nDone += batch.size()) {
            reader.Read(batch);
            std::copy(batch.begin(), batch.end(), points.begin() + static_cast<std::ptrdiff_t>(nDone));
        }
        if (choices.bApplyPose) {
            for (Tool::ScanPointC& point : points)
                GMAT::TransformPosition(reader.GetInfo().oTransformation, point.x, point.y, point.z);
        }
        std::vector<std::vector<double>> columns(header.vecFields.size());
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto& names = Tool::s_astrScanValueNames;
            const auto name = std::find(names.begin(), names.end(), header.vecFields[i].strName);
            for (const Tool::ScanPointC& point : points)
                columns[i].push_back(
                    Tool::ValueIn(point, static_cast<Tool::ScanValueT>(name - names.begin())));
        }
        std::string bytes;
        Tool::AppendRecords(bytes, header, columns, points.size());
        return bytes;
    }

    /// Every part of every row.
    static std::string Report(const ScanExportC& scan)
    {
        Tool::ConversionReportC report("export", "in", "out");
        scan.AddTo(report);
        std::string text;
        for (const Tool::ReportRowC& row : report.GetRows()) {
            text += fmt::format("\n{}|{}|{}|{}|{}|{}|{}|{}|{}", row.strWhat, row.strSourceType,
                                row.strStoredType, static_cast<int>(row.eOutcome), row.dFactor,
                                row.ullChanged, row.dLargestChange, row.strNote, row.bLoss);
        }
        return text;
    }

    /// A scan of these positions' type that is turned, moved and projected.
    void WritePosedScan(std::uint32_t uiPosition, const std::vector<Tool::ScanPointC>& points) const
    {
        SIO::QsbScanInfoC info;
        info.oTransformation.At(0, 0) = info.oTransformation.At(1, 1) = 0.8;
        info.oTransformation.At(1, 0) = 0.6;
        info.oTransformation.At(0, 1) = -0.6;
        info.oTransformation.At(2, 3) = 1000;
        ScanFormatC format = Support::s_oRichFormat;
        format.uiPosition = uiPosition;
        Tool::ScanWriterC writer(Path(), format, info);
        writer.Write(points);
        writer.Finish();
    }

    const Support::TemporaryDirectory m_directory;
};

/// Points of which some are not finite.
std::vector<Tool::ScanPointC> SomePoints(std::size_t nPoints)
{
    constexpr double dNaN = std::numeric_limits<double>::quiet_NaN();
    std::mt19937 random(4);
    std::vector<Tool::ScanPointC> points(nPoints);
    for (std::size_t i = 0; i < nPoints; ++i) {
        const auto number = [&] { return static_cast<double>(random() % 60000) / 2; };
        Tool::ScanPointC& point = points[i];
        point.x = number();
        point.y = number();
        point.z = i % 7 == 0 ? dNaN : number();
        point.dIntensity = i % 100 == 1 ? -HUGE_VAL : number();
        point.dNoise = number();
        for (double& d : point.adColor)
            d = static_cast<double>(random() % 256);
        for (double& d : point.adGrid)
            d = number();
    }
    return points;
}

/// Every format that a scan can have.
std::vector<ScanFormatC> AllFormats()
{
    std::vector<ScanFormatC> formats;
    for (const std::uint32_t uiPosition : {F::s_uiTypeFloatTriple, F::s_uiTypeDoubleTriple}) {
        for (const std::uint32_t uiIntensity : {F::s_uiTypeInt16, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
            for (const std::uint32_t uiNoise : {0u, F::s_uiTypeUInt8, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
                for (const std::uint32_t uiGrid : {0u, F::s_uiTypeUInt16Pair, F::s_uiTypeUInt32Pair}) {
                    for (const std::uint32_t uiColor : {0u, F::s_uiTypeColor})
                        formats.push_back({uiPosition, uiIntensity, uiNoise, uiGrid, uiColor, 1});
                }
            }
        }
    }
    return formats;
}

TEST_F(ScanExport, RecordsAreTheSameMovedAndThroughNumbersForEveryFormat)
{
    // More than a batch.
    const std::vector<Tool::ScanPointC> points = SomePoints(10500);
    for (const ScanFormatC& format : AllFormats()) {
        std::remove(Path().c_str());
        Support::WriteScan(Path(), points, 3, 3, format);
        const std::string moved = Written();
        ASSERT_NE(moved.find("are not finite"), std::string::npos);
        ASSERT_EQ(moved.rfind(PointByPoint(), 0), 0u);
        ASSERT_TRUE(moved == ThroughNumbers())
            << format.uiPosition << " " << format.uiIntensity << " " << format.uiNoise << " " << format.uiGrid
            << " " << format.uiColor;
        // The same behind PLY's header.
        const std::string ply = Written({}, FormT::Ply);
        ASSERT_TRUE(ply.substr(ply.find("end_header\n") + 11) == moved);
    }
}

TEST_F(ScanExport, WithThePoseAppliedNoStoredBytesAreMoved)
{
    const std::vector<Tool::ScanPointC> points = SomePoints(10500);
    for (const std::uint32_t uiPosition : {F::s_uiTypeFloatTriple, F::s_uiTypeDoubleTriple}) {
        std::remove(Path().c_str());
        WritePosedScan(uiPosition, points);
        const ExportChoicesC applied{.bApplyPose = true, .oPosition = {}};
        const std::string mapped = Written(applied);
        EXPECT_TRUE(mapped.rfind(PointByPoint(applied), 0) == 0) << uiPosition;
        EXPECT_TRUE(mapped == ThroughNumbers(applied)) << uiPosition;
        EXPECT_NE(mapped.find("mapped by the pose"), std::string::npos);
        EXPECT_FALSE(PointByPoint(applied) == PointByPoint()) << uiPosition; // the pose does something
        const std::string ply = Written(applied, FormT::Ply);
        EXPECT_TRUE(ply.substr(ply.find("end_header\n") + 11) == mapped) << uiPosition;
    }
}

TEST_F(ScanExport, OfATornScanTheWholePointsAreMovedAndTheOthersReported)
{
    Support::WriteScan(Path(), SomePoints(10500));
    const std::string whole = Written();
    std::string file = Support::ReadAll(Path());
    ScanReaderC reader(Path());
    const std::size_t nStored = reader.ReadStored().nStride;
    // Within the second batch, and within a point.
    file.resize(file.size() - 300 * nStored - nStored / 2);
    Support::WriteAll(Path(), file);
    ScanReaderC torn(Path());
    const std::size_t nRecordBytes = ScanExportC(torn, {}).GetHeader().GetRecordBytes();
    const std::string moved = Written();
    EXPECT_EQ(moved.substr(0, 10199 * nRecordBytes), whole.substr(0, 10199 * nRecordBytes));
    EXPECT_EQ(moved[10199 * nRecordBytes], '\n'); // the report begins
    EXPECT_NE(moved.find("301 are missing, the file is torn"), std::string::npos);
    EXPECT_TRUE(moved == ThroughNumbers());
}

TEST_F(ScanExport, OfSeveralElementsOfAKindTheLastOneIsMoved)
{
    Support::QsbBytes file;
    file.Block(1).Entry(40, 100).Entry(5, 101).Entry(4, 101);
    Support::BytesT stored = Support::SmallPoints(1);
    stored.push_back(0x34);
    stored.push_back(0x12);
    const Support::BytesT bytes = file.Data(stored).Get();
    Support::WriteAll(Path(), std::string(bytes.begin(), bytes.end()));
    const std::string moved = Written();
    EXPECT_EQ(moved.substr(12, 2), "\x34\x12");
    EXPECT_EQ(moved.rfind(PointByPoint(), 0), 0u);
    EXPECT_EQ(moved, ThroughNumbers());
}

TEST_F(ScanExport, WhatMustBeConvertedIsNotMoved)
{
    const std::vector<Tool::ScanPointC> points = SomePoints(10500);
    Support::WriteScan(Path(), points);
    const ExportChoicesC choices{.bApplyPose = false, .oPosition = Tool::NumberTypeT::Float};
    const std::string converted = Written(choices);
    EXPECT_TRUE(converted == ThroughNumbers(choices));
    EXPECT_TRUE(converted.rfind(PointByPoint(choices), 0) == 0);
    ScanReaderC reader(Path());
    const std::size_t nRecordBytes = ScanExportC(reader, choices).GetHeader().GetRecordBytes();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double adPosition[] = {points[i].x, points[i].y, points[i].z};
        float afStored[3];
        std::memcpy(afStored, &converted[i * nRecordBytes], sizeof afStored);
        for (std::size_t j = 0; j < 3; ++j) {
            ASSERT_TRUE(static_cast<double>(afStored[j]) == adPosition[j] ||
                        (std::isnan(afStored[j]) && std::isnan(adPosition[j])))
                << i << " " << j;
        }
    }
}

} // namespace
