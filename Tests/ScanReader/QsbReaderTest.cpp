// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The exported reader: return values, messages, states, and what Read delivers.
#include "ReaderTest.h"

#include <limits>
#include <memory>
#include <type_traits>

namespace {

using namespace ReaderTest;
using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

class Reader : public Fixture
{
protected:
    std::vector<double> Matrix()
    {
        std::vector<double> matrix(16, 4711);
        reader.GetTransformation(matrix.data());
        return matrix;
    }
};

const std::vector<double> s_identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

TEST_F(Reader, AnOpenSucceedsWithZeroAndAnEmptyMessage)
{
    EXPECT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(Message(), "");
}

TEST_F(Reader, ASecondOpenFailsAndLeavesTheFirstFileOpen)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(reader.Open(folder.Write("other.qsb", Support::SmallScan(5)).c_str()), -1);
    EXPECT_EQ(Message(), s_szStillOpen);
    EXPECT_EQ(reader.GetNumPoints(), 3u);
}

TEST_F(Reader, ASecondOpenOfAMissingFileSaysThatAFileIsOpen)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(reader.Open("/nowhere/scan.qsb"), -1);
    EXPECT_EQ(Message(), s_szStillOpen);
}

TEST_F(Reader, AfterCloseTheNextOpenSucceeds)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(reader.Close(), 0);
    EXPECT_EQ(Open(Support::SmallScan(4)), 0);
    EXPECT_EQ(reader.GetNumPoints(), 4u);
}

TEST_F(Reader, CloseIsAlwaysZeroAndLeavesTheMessage)
{
    EXPECT_EQ(reader.Close(), 0);
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(Open(Support::SmallScan(3)), -1);
    EXPECT_EQ(reader.Close(), 0);
    EXPECT_EQ(Message(), s_szStillOpen);
    EXPECT_EQ(reader.Close(), 0);
}

TEST_F(Reader, AFailedOpenLeavesTheReaderClosedAndUsable)
{
    EXPECT_EQ(Open(BytesT(50)), -1);
    EXPECT_EQ(reader.GetNumPoints(), 0u);
    EXPECT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_EQ(Message(), "");
}

TEST_F(Reader, AMissingFileIsNoQsbFile)
{
    EXPECT_EQ(reader.Open(folder.Path("missing.qsb").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Reader, ANullPathIsNoQsbFile)
{
    EXPECT_EQ(reader.Open(nullptr), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Reader, AnEmptyPathIsNoQsbFile)
{
    EXPECT_EQ(reader.Open(""), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Reader, AnEmptyFileCouldNotBeOpened)
{
    EXPECT_EQ(Open(BytesT{}), -1);
    EXPECT_EQ(Message(), s_szNotOpened);
}

TEST_F(Reader, AnUnsupportedVersionCouldNotBeOpened)
{
    EXPECT_EQ(Open(QsbBytes(0x18000)), -1);
    EXPECT_EQ(Message(), s_szNotOpened);
}

TEST_F(Reader, AFileWithoutPointCloudBlockCouldNotBeOpenedAndAGoodFileOpensNext)
{
    EXPECT_EQ(Open(QsbBytes()), -1);
    EXPECT_EQ(Message(), s_szNotOpened);
    EXPECT_EQ(Open(Support::SmallScan(3)), 0);
}

TEST_F(Reader, AFileWithoutIntensityIsInvalidAndAGoodFileOpensNext)
{
    EXPECT_EQ(Open(QsbBytes().Block(1).Entry(40, 100).Entry(7, 104).Data(BytesT(16))), -1);
    EXPECT_EQ(Message(), s_szIncomplete);
    EXPECT_FALSE(reader.HasColor());
    EXPECT_EQ(reader.GetNumPoints(), 0u);
    EXPECT_EQ(Open(Support::SmallScan(3)), 0);
}

TEST_F(Reader, PositionsAsDoublesNeedNoEntry)
{
    ASSERT_EQ(Open(QsbBytes().Block(1).Entry(5, 101).Data(Bytes(1.0, 2.0, 3.0, std::uint16_t{4}))), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 1, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->z, 3.0);
}

TEST_F(Reader, EveryQueryOfAClosedReaderIsNeutral)
{
    std::uint64_t first = 7, second = 8;
    EXPECT_EQ(reader.GetNumPoints(), 0u);
    EXPECT_FALSE(reader.GetGridSize(first, second));
    EXPECT_EQ(first + second, 15u);
    EXPECT_EQ(reader.GetInstrumentHeight(), 0.0);
    EXPECT_FALSE(reader.HasColor() || reader.HasGrid() || reader.HasNoiseRatio());
    EXPECT_EQ(Matrix(), s_identity);
    EXPECT_EQ(Message(), "");
}

TEST_F(Reader, AfterCloseEveryQueryIsNeutralAgain)
{
    ASSERT_EQ(Open(Support::RichScan(3)), 0);
    reader.Close();
    std::uint64_t first = 7, second = 8;
    EXPECT_EQ(reader.GetNumPoints(), 0u);
    EXPECT_FALSE(reader.GetGridSize(first, second));
    EXPECT_EQ(reader.GetInstrumentHeight(), 0.0);
    EXPECT_FALSE(reader.HasColor() || reader.HasGrid() || reader.HasNoiseRatio());
    EXPECT_EQ(Matrix(), s_identity);
}

TEST_F(Reader, TheQueriesAnswerWhatTheFileSays)
{
    ASSERT_EQ(Open(Support::RichScan(3)), 0);
    EXPECT_EQ(reader.GetNumPoints(), 3u);
    EXPECT_EQ(reader.GetInstrumentHeight(), 1.5);
    EXPECT_TRUE(reader.HasColor());
    EXPECT_TRUE(reader.HasGrid());
    EXPECT_TRUE(reader.HasNoiseRatio());
    EXPECT_EQ(Matrix(), (std::vector<double>{1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1}));
}

TEST_F(Reader, AFileOfPositionsAndIntensitiesHasNothingElse)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    EXPECT_FALSE(reader.HasColor());
    EXPECT_FALSE(reader.HasGrid());
    EXPECT_FALSE(reader.HasNoiseRatio());
    EXPECT_EQ(Matrix(), s_identity);
}

TEST_F(Reader, TheMatrixIsDeliveredRowByRow)
{
    std::vector<double> elements{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    ASSERT_EQ(Open(QsbBytes().Block(1).Matrix(elements).Entry(5, 101)), 0);
    EXPECT_EQ(Matrix(), elements);
}

TEST_F(Reader, ANullMatrixIsLeftAlone)
{
    reader.GetTransformation(nullptr);
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    reader.GetTransformation(nullptr);
}

/// The stored grid values and what the queries make of them.
struct GridRow
{
    std::uint32_t stored0;
    std::uint32_t stored1;
    bool hasGrid;
    std::uint64_t first;
    std::uint64_t second;
};

void PrintTo(const GridRow& row, std::ostream* out)
{
    *out << row.stored0 << " and " << row.stored1;
}

class Grid : public Reader, public testing::WithParamInterface<GridRow>
{};

TEST_P(Grid, IsOneMoreThanStoredAndNoneWhenEitherIsZero)
{
    const GridRow& row = GetParam();
    ASSERT_EQ(Open(QsbBytes()
                       .Block(1)
                       .Entry(7, 24, row.stored0)
                       .Entry(7, 25, row.stored1)
                       .Entry(5, 101)
                       .Entry(21, 103)),
              0);
    std::uint64_t first = 4711, second = 4712;
    EXPECT_EQ(reader.GetGridSize(first, second), row.hasGrid);
    EXPECT_EQ(first, row.first);
    EXPECT_EQ(second, row.second);
    EXPECT_EQ(reader.HasGrid(), row.hasGrid);
}

INSTANTIATE_TEST_SUITE_P(Values, Grid,
                         testing::Values(GridRow{3, 5, true, 4, 6}, GridRow{1, 1, true, 2, 2},
                                         GridRow{0, 0, false, 4711, 4712}, GridRow{0, 5, false, 4711, 4712},
                                         GridRow{5, 0, false, 4711, 4712}, GridRow{4294967295, 1, true, 0, 2},
                                         GridRow{4294967294, 4294967295, true, 4294967295, 0}));

TEST_F(Reader, AGridSizeWithoutGridIndicesIsNoGrid)
{
    ASSERT_EQ(Open(QsbBytes().Block(1).Entry(7, 24, 3).Entry(7, 25, 5).Entry(5, 101)), 0);
    std::uint64_t first = 0, second = 0;
    EXPECT_TRUE(reader.GetGridSize(first, second));
    EXPECT_EQ(first, 4u);
    EXPECT_FALSE(reader.HasGrid());
}

TEST_F(Reader, BatchesOf10000Over25000PointsAre10000And10000And5000AndThenTheEnd)
{
    ASSERT_EQ(Open(Support::SmallScan(25000)), 0);
    QsbReadIterator iterator;
    EXPECT_EQ(Read(iterator), (ReadResult{0, 10000, ""}));
    EXPECT_EQ(iterator.GetPoint(9999)->x, 9999);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 10000, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->x, 10000);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 5000, ""}));
    EXPECT_EQ(iterator.GetPoint(4999)->x, 24999);
    EXPECT_EQ(Read(iterator), s_end);
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Reader, ABatchThatEndsExactlyAtTheLastPointIsFollowedByTheEnd)
{
    ASSERT_EQ(Open(Support::SmallScan(4)), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator).count, 2u);
    EXPECT_EQ(Read(iterator).count, 2u);
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Reader, TheFirstReadOfAFileWithoutPointsDeliversNoneAndTheSecondIsTheEnd)
{
    ASSERT_EQ(Open(Support::SmallScan(0)), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 0, ""}));
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Reader, ReadWithoutOpenFails)
{
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator), s_failed);
    EXPECT_EQ(Read(iterator), s_failed);
}

TEST_F(Reader, ReadAfterCloseFailsAndLeavesThePoints)
{
    ASSERT_EQ(Open(Support::SmallScan(4)), 0);
    QsbReadIterator fresh(2), used(2);
    EXPECT_EQ(Read(used).count, 2u);
    reader.Close();
    EXPECT_EQ(Read(fresh), s_failed);
    EXPECT_EQ(used.GetPoint(1)->intensity, 101);
}

TEST_F(Reader, AnIdentityMatrixDeliversPositionsExactlyAsStored)
{
    ASSERT_EQ(Open(QsbBytes()
                       .Block(1)
                       .Matrix(s_identity)
                       .Entry(41, 100)
                       .Entry(5, 101)
                       .Data(Bytes(0.1, -1e-300, 1e300, std::uint16_t{1}))),
              0);
    QsbReadIterator iterator(1);
    EXPECT_EQ(Read(iterator).count, 1u);
    EXPECT_EQ(iterator.GetPoint(0)->x, 0.1);
    EXPECT_EQ(iterator.GetPoint(0)->y, -1e-300);
    EXPECT_EQ(iterator.GetPoint(0)->z, 1e300);
}

TEST_F(Reader, ATranslationIsAddedToEveryPosition)
{
    ASSERT_EQ(Open(Support::RichScan(2)), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 2u);
    EXPECT_EQ(iterator.GetPoint(1)->x, 11);
    EXPECT_EQ(iterator.GetPoint(1)->y, 22);
    EXPECT_EQ(iterator.GetPoint(1)->z, 33);
}

TEST_F(Reader, ALastRowOfZeroZeroZeroTwoHalvesEveryPosition)
{
    ASSERT_EQ(Open(QsbBytes().Block(1).DoubleEntry(23, 2.0).Entry(40, 100).Entry(5, 101).Data(
                  Support::SmallPoints(3))),
              0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 3u);
    EXPECT_EQ(iterator.GetPoint(2)->x, 1.0);
    EXPECT_EQ(iterator.GetPoint(2)->z, 1.25);
}

TEST_F(Reader, TheInstrumentHeightIsPartOfNeitherPositionsNorMatrix)
{
    ASSERT_EQ(Open(QsbBytes().Block(1).DoubleEntry(26, 100).Entry(40, 100).Entry(5, 101).Data(
                  Support::SmallPoints(1))),
              0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 1u);
    EXPECT_EQ(iterator.GetPoint(0)->z, 0.5);
    EXPECT_EQ(Matrix(), s_identity);
    EXPECT_EQ(reader.GetInstrumentHeight(), 100);
}

TEST_F(Reader, EveryElementReachesItsField)
{
    ASSERT_EQ(Open(Support::RichScan(3)), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 3u);
    const QsbPoint& point = *iterator.GetPoint(2);
    EXPECT_EQ(point.intensity, 1002);
    EXPECT_EQ(point.levelOfNoise, 2);
    EXPECT_EQ(point.gridIndex0, 2u);
    EXPECT_EQ(point.gridIndex1, 3u);
    EXPECT_EQ(point.red, 2);
    EXPECT_EQ(point.green, 3);
    EXPECT_EQ(point.blue, 4);
}

TEST_F(Reader, IntensitiesAreCutTo16Bits)
{
    QsbBytes file;
    file.Block(1).Entry(40, 100).Entry(8, 101);
    for (const float intensity : {-1.0f, 0.9f, 65536.0f, 70000.5f, std::numeric_limits<float>::infinity()}) {
        file.Data(Bytes(0.0f, 0.0f, 0.0f, intensity));
    }
    ASSERT_EQ(Open(file), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 5u);
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 65535);
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 0);
    EXPECT_EQ(iterator.GetPoint(2)->intensity, 0);
    EXPECT_EQ(iterator.GetPoint(3)->intensity, 70000 - 65536);
    EXPECT_EQ(iterator.GetPoint(4)->intensity, 0);
}

TEST_F(Reader, OfTwoIntensitiesTheLaterOneIsDelivered)
{
    ASSERT_EQ(Open(QsbBytes().Block(1).Entry(40, 100).Entry(5, 101).Entry(5, 101).Data(
                  Bytes(0.0f, 0.0f, 0.0f, std::uint16_t{1}, std::uint16_t{2}))),
              0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 1u);
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 2);
}

TEST_F(Reader, AFileWithoutColourLeavesTheColourOfAFreshIteratorZero)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    QsbReadIterator iterator(3);
    EXPECT_EQ(Read(iterator).count, 3u);
    EXPECT_EQ(iterator.GetPoint(2)->red + iterator.GetPoint(2)->green + iterator.GetPoint(2)->blue, 0);
    EXPECT_EQ(iterator.GetPoint(2)->levelOfNoise, 0);
    EXPECT_EQ(iterator.GetPoint(2)->gridIndex1, 0u);
}

TEST_F(Reader, FieldsThatAFileDoesNotCarryKeepWhatAnEarlierFileLeft)
{
    ASSERT_EQ(Open(Support::RichScan(2)), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator).count, 2u);
    reader.Close();
    ASSERT_EQ(Open(Support::SmallScan(4)), 0);
    EXPECT_EQ(Read(iterator).count, 2u); // at its own position: points 2 and 3
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 103);
    EXPECT_EQ(iterator.GetPoint(1)->blue, 3);
    EXPECT_EQ(iterator.GetPoint(1)->gridIndex1, 2u);
}

TEST_F(Reader, RecordsBehindTheCountKeepAnEarlierBatch)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), 0);
    QsbReadIterator iterator(3);
    EXPECT_EQ(Read(iterator).count, 3u);
    EXPECT_EQ(Read(iterator).count, 2u);
    ASSERT_NE(iterator.GetPoint(2), nullptr);
    EXPECT_EQ(iterator.GetPoint(2)->intensity, 102);
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 104);
    EXPECT_EQ(iterator.GetPoint(3), nullptr);
}

TEST_F(Reader, ADeclaredCountEndsTheFileButABatchMayDeliverMore)
{
    QsbBytes file;
    file.Block(3).Entry(7, 1, 3).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(8));
    ASSERT_EQ(Open(file), 0);
    EXPECT_EQ(reader.GetNumPoints(), 3u);
    QsbReadIterator two(2), ten(10);
    EXPECT_EQ(Read(two), (ReadResult{0, 2, ""}));
    EXPECT_EQ(Read(two), (ReadResult{0, 2, ""}));
    EXPECT_EQ(Read(two), s_end);
    EXPECT_EQ(Read(ten), (ReadResult{0, 8, ""}));
    EXPECT_EQ(Read(ten), s_end);
}

TEST_F(Reader, ATornEndFailsEveryTimeAndLeavesPositionAndPoints)
{
    const BytesT whole = Support::SmallScan(5).Get();
    ASSERT_EQ(Open(Support::Truncated(whole, whole.size() - 20)), 0); // three points and a bit
    EXPECT_EQ(reader.GetNumPoints(), 5u);
    QsbReadIterator iterator(2), single(1);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
    EXPECT_EQ(Read(iterator), s_failed);
    EXPECT_EQ(Read(iterator), s_failed);
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 100);
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 101);
    EXPECT_EQ(Read(single).count, 1u);
    EXPECT_EQ(Read(single).count, 1u);
    EXPECT_EQ(Read(single), (ReadResult{0, 1, ""}));
    EXPECT_EQ(single.GetPoint(0)->intensity, 102);
    EXPECT_EQ(Read(single), s_failed);
}

TEST_F(Reader, DataThatClaims4GiBInASmallFileOpensAndEveryBatchFails)
{
    ASSERT_EQ(Open(Support::SmallScan(5).ClaimDataBytes(0xFFFFFFFF)), 0);
    EXPECT_EQ(reader.GetNumPoints(), 0xFFFFFFFFu / 14);
    QsbReadIterator large(100000), small(5);
    EXPECT_EQ(Read(large), s_failed);
    EXPECT_EQ(Read(small), (ReadResult{0, 5, ""}));
    EXPECT_EQ(Read(small), s_failed);
}

TEST_F(Reader, SeveralIteratorsOnOneReaderEachDeliverTheirOwnPoints)
{
    ASSERT_EQ(Open(Support::SmallScan(6)), 0);
    QsbReadIterator two(2), three(3);
    EXPECT_EQ(Read(two).count, 2u);
    EXPECT_EQ(Read(three).count, 3u);
    EXPECT_EQ(Read(two).count, 2u);
    EXPECT_EQ(two.GetPoint(0)->intensity, 102);
    EXPECT_EQ(Read(three).count, 3u);
    EXPECT_EQ(three.GetPoint(0)->intensity, 103);
    EXPECT_EQ(Read(three), s_end);
    EXPECT_EQ(Read(two).count, 2u);
    EXPECT_EQ(two.GetPoint(1)->intensity, 105);
    EXPECT_EQ(Read(two), s_end);
}

TEST_F(Reader, AnIteratorUsedWithAnotherReaderGoesOnAtItsPositionThere)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), 0);
    QsbReader other;
    ASSERT_EQ(other.Open(folder.Write("rich.qsb", Support::RichScan(9)).c_str()), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator).count, 2u);
    EXPECT_EQ(ReadWith(other, iterator), (ReadResult{0, 2, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 1002);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 104);
}

TEST_F(Reader, SeveralReadersDoNotDisturbEachOther)
{
    QsbReader other;
    ASSERT_EQ(Open(Support::SmallScan(4)), 0);
    ASSERT_EQ(other.Open(folder.Path("scan.qsb").c_str()), 0);
    QsbReadIterator first(2), second(2);
    EXPECT_EQ(Read(first).count, 2u);
    EXPECT_EQ(ReadWith(other, second).count, 2u);
    reader.Close();
    EXPECT_EQ(ReadWith(other, second).count, 2u);
    EXPECT_EQ(second.GetPoint(0)->intensity, 102);
}

TEST_F(Reader, AfterCloseAndReopenWithLargerRecordsAnIteratorGoesOnAtItsPosition)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), 0);
    QsbReadIterator iterator(4);
    EXPECT_EQ(Read(iterator).count, 4u);
    reader.Close();
    ASSERT_EQ(Open(Support::RichScan(9)), 0);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 4, ""}));
    EXPECT_EQ(iterator.GetPoint(3)->intensity, 1007);
    EXPECT_EQ(iterator.GetPoint(3)->gridIndex1, 8u);
}

TEST_F(Reader, AnIteratorOutlivesItsReader)
{
    QsbReadIterator iterator(2);
    {
        QsbReader brief;
        ASSERT_EQ(brief.Open(folder.Write("brief.qsb", Support::SmallScan(2)).c_str()), 0);
        EXPECT_EQ(ReadWith(brief, iterator).count, 2u);
        EXPECT_EQ(ReadWith(brief, iterator), s_end);
    }
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 101);
    ASSERT_EQ(Open(Support::SmallScan(6)), 0);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 102);
}

TEST_F(Reader, DestroyingAnOpenReaderClosesItsFile)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    for (int i = 0; i < 3000; ++i) { // more than a process may hold open
        QsbReader brief;
        ASSERT_EQ(brief.Open(path.c_str()), 0) << i;
    }
}

TEST_F(Reader, FailedOpensLeaveNoFileOpen)
{
    const std::string path = folder.Write("scan.qsb", QsbBytes());
    for (int i = 0; i < 3000; ++i)
        ASSERT_EQ(reader.Open(path.c_str()), -1) << i;
    EXPECT_EQ(Message(), s_szNotOpened);
}

TEST_F(Reader, TheGettersLeaveTheMessage)
{
    EXPECT_EQ(reader.Open(nullptr), -1);
    std::uint64_t first = 0, second = 0;
    reader.GetNumPoints();
    reader.GetGridSize(first, second);
    reader.GetInstrumentHeight();
    Matrix();
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Reader, AnIteratorUsedBeforeFindsTheEndInAClosedReader)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), 0);
    QsbReadIterator iterator(2);
    ASSERT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
    reader.Close();
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Reader, AnIteratorAtTheEndOfOneReaderFindsTheEndInTheNextOneToo)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), 0);
    QsbReadIterator iterator(5);
    ASSERT_EQ(Read(iterator), (ReadResult{0, 5, ""}));
    QsbReader other;
    ASSERT_EQ(other.Open(folder.Write("other.qsb", Support::SmallScan(50)).c_str()), 0);
    EXPECT_EQ(ReadWith(other, iterator), s_end);
}

TEST_F(Reader, AnIteratorBeyondTheLastPointOfItsNextReaderGetsNoPoints)
{
    ASSERT_EQ(Open(Support::SmallScan(50)), 0);
    QsbReadIterator iterator(20);
    ASSERT_EQ(Read(iterator), (ReadResult{0, 20, ""}));
    QsbReader other;
    ASSERT_EQ(other.Open(folder.Write("other.qsb", Support::SmallScan(5)).c_str()), 0);
    EXPECT_EQ(ReadWith(other, iterator), (ReadResult{0, 0, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->x, 0.0);
    EXPECT_EQ(iterator.GetPoint(19)->x, 19.0);
    EXPECT_EQ(ReadWith(other, iterator), s_end);
}

} // namespace
