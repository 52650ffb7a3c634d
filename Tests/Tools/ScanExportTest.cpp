// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Exported records whose bytes are moved are the same as those that go through numbers, and so is the report.
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
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

namespace F = SIO::QsbFormat;
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

    /// What is written, and the report's rows, as text.
    std::string Moved()
    {
        ScanReaderC reader(Path());
        ScanExportC scan(reader, {});
        const Tool::OutputFileC data(m_directory.Narrow("a.bin"), false),
            header(m_directory.Narrow("a.json"), false);
        const auto sink = MakeRawSink(data, header, scan.GetHeader(), "a");
        while (scan.Forward(*sink) != 0) {
        }
        sink->Finish();
        return Support::ReadAll(data.GetTemporaryPath()) + Report(scan);
    }

    std::string ThroughNumbers()
    {
        ScanReaderC reader(Path());
        ScanExportC scan(reader, {});
        std::vector<std::vector<double>> columns;
        std::string bytes;
        while (const std::size_t nPoints = scan.Read(columns))
            Tool::AppendRecords(bytes, scan.GetHeader(), columns, nPoints);
        return bytes + Report(scan);
    }

    /// The records as the virtual calls of the point definition decode them.
    std::string PointByPoint()
    {
        ScanReaderC reader(Path());
        const Tool::RawHeaderC header = ScanExportC(reader, {}).GetHeader();
        const std::vector<Tool::ScanPointC> points = Support::ReadScan(Path());
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

    static std::string Report(const ScanExportC& scan)
    {
        Tool::ConversionReportC report("export", "in", "out");
        scan.AddTo(report);
        std::string text;
        for (const Tool::ReportRowC& row : report.GetRows())
            text +=
                "\n" + row.strWhat + " " + row.strSourceType + " " + row.strStoredType + " " + row.strNote;
        return text;
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

TEST_F(ScanExport, RecordsAreTheSameMovedAndThroughNumbersForEveryFormat)
{
    // More than a batch.
    const std::vector<Tool::ScanPointC> points = SomePoints(10500);
    for (const std::uint32_t uiPosition : {F::s_uiTypeFloatTriple, F::s_uiTypeDoubleTriple}) {
        for (const std::uint32_t uiIntensity : {F::s_uiTypeInt16, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
            for (const std::uint32_t uiNoise : {0u, F::s_uiTypeUInt8, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
                for (const std::uint32_t uiGrid : {0u, F::s_uiTypeUInt16Pair, F::s_uiTypeUInt32Pair}) {
                    const std::uint32_t uiColor = uiGrid == F::s_uiTypeUInt16Pair ? 0u : F::s_uiTypeColor;
                    const ScanFormatC format{uiPosition, uiIntensity, uiNoise, uiGrid, uiColor, 1};
                    std::remove(Path().c_str());
                    Support::WriteScan(Path(), points, 3, 3, format);
                    const std::string moved = Moved();
                    EXPECT_NE(moved.find("are not finite"), std::string::npos);
                    EXPECT_EQ(moved.rfind(PointByPoint(), 0), 0u);
                    EXPECT_TRUE(moved == ThroughNumbers()) << uiPosition << " " << uiIntensity << " "
                                                           << uiNoise << " " << uiGrid << " " << uiColor;
                }
            }
        }
    }
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
    const std::string moved = Moved();
    EXPECT_EQ(moved.substr(12, 2), "\x34\x12");
    EXPECT_EQ(moved.rfind(PointByPoint(), 0), 0u);
    EXPECT_EQ(moved, ThroughNumbers());
}

TEST_F(ScanExport, WhatMustBeConvertedIsNotMoved)
{
    Support::WriteScan(Path(), SomePoints(20));
    ScanReaderC reader(Path());
    ScanExportC scan(reader, {false, Tool::NumberTypeT::Float});
    const Tool::OutputFileC data(m_directory.Narrow("a.bin"), false),
        header(m_directory.Narrow("a.json"), false);
    const auto sink = MakeRawSink(data, header, scan.GetHeader(), "a");
    EXPECT_EQ(scan.Forward(*sink), 20u);
    EXPECT_EQ(scan.Forward(*sink), 0u);
    sink->Finish();
    float fX = 0;
    std::memcpy(&fX, Support::ReadAll(data.GetTemporaryPath()).data(), sizeof fX);
    EXPECT_EQ(static_cast<double>(fX), SomePoints(1)[0].x);
}

} // namespace
