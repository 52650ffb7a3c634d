// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The tolerant view of a header says what the reader's own says, where there is one; and its size does not
// follow the header's.
#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_QsbBlockHeader.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Tools/CheckTest.h"
#include "Tools/Qsb/Tool_StoredPoints.h"

namespace {

using namespace CheckTest;

/// Compares both views of the block that is read in this file.
void CompareViews(const QsbBytes& file)
{
    const auto check = Check(file, false);
    SIO::QsbStrategyDataC data(1, 1);
    ASSERT_TRUE(SIO::InterpretBlockHeader(*check.oChain.oBlocks.Get(*check.oReadBlock), false, data));
    const Tool::ScanHeaderC& header = *check.pHeader;
    EXPECT_EQ(header.ullRecordBytes, data.m_oPointDefinition.GetSizeInBytes());
    EXPECT_EQ(header.GetPoints(), data.m_ullNumberOfPoints);
    EXPECT_EQ(header.oInfo.dInstrumentHeight, data.m_oInfo.dInstrumentHeight);
    EXPECT_EQ(header.oInfo.auiGridSize[1], data.m_oInfo.auiGridSize[1]);
    EXPECT_EQ(header.oInfo.oTransformation.At(0, 3), data.m_oInfo.oTransformation.At(0, 3));
    EXPECT_EQ(header.oInfo.oBoundingBox.adMax[2], data.m_oInfo.oBoundingBox.adMax[2]);
    ASSERT_EQ(header.vecShown.size(), data.m_oPointDefinition.GetCount());
    for (std::size_t i = 0; i < header.vecShown.size(); ++i) {
        EXPECT_EQ(header.vecShown[i].uiKind, data.m_oPointDefinition.GetElement(i)->GetAvailablePointData());
        EXPECT_EQ(header.vecShown[i].uiTypeCode, data.m_oPointDefinition.GetElement(i)->GetTypeCode());
    }
}

TEST(ScanHeader, SaysWhatTheReaderSays)
{
    CompareViews(CleanScan());
    CompareViews(Support::SmallScan(5));
    CompareViews(Support::RichScan(2));
    CompareViews(CleanHeader(3).Entry(7, 1, 2).Data(CleanPoints(3)));
}

TEST(ScanHeader, ElementsStandInTheOrderOfTheirBytesWhateverTheOrderOfTheEntries)
{
    QsbBytes file;
    file.Block(1).Entry(7, 104, 4).Entry(8, 101, 4).Entry(40, 100, 12).Entry(5, 101, 2).Data(BytesT(50, 1));
    CompareViews(file);
}

TEST(ScanHeader, OfSeveralElementsOfAKindTheLastOneIsDecoded)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12).Entry(5, 101, 2).Entry(8, 101, 4).Entry(7, 104, 4);
    file.Data(Support::Bytes(1.0f, 2.0f, 3.0f, std::uint16_t{9}, 77.0f, std::uint32_t{0x00030201}));
    const BytesT bytes = file.Get();
    Tool::MemoryInputC input(bytes.data(), bytes.size());
    const auto check = Check(file);
    Tool::StoredPointsC points(input, *check.pHeader);
    ASSERT_TRUE(points.Next());
    EXPECT_EQ(points.GetPoints()[0].dIntensity, 77.0);
    EXPECT_EQ(points.GetPoints()[0].adColor[2], 3.0);
}

TEST(ScanHeader, OfVeryManyElementsAFewAreKeptAndAllCounted)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100, 12);
    for (int i = 0; i < 20000; ++i)
        file.Entry(5, 101, 2);
    file.Data(BytesT(12 + 40000, 1));
    const auto check = Check(file);
    EXPECT_EQ(check.pHeader->vecShown.size(), Tool::ScanHeaderC::s_nShown);
    EXPECT_EQ(check.pHeader->ullElements, 20001u);
    EXPECT_EQ(check.pHeader->ullRecordBytes, 40012u);
    EXPECT_EQ(check.pStatistics->oIntensity.dMax, 257.0);
}

} // namespace
