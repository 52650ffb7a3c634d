// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Files that are re-opened to be written further: what was appended is there when they are opened again.
#include "WriteTest.h"

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

class QsbAppend : public SioTest::WriteTest
{
protected:
    /// Re-opens the file, writes points behind the last one of its point-cloud block, and closes it.
    bool Append(std::uint32_t points, std::uint32_t first)
    {
        EXPECT_TRUE(scan.Open(Path(), true, true));
        EXPECT_TRUE(scan.Interpret());
        EXPECT_TRUE(scan.strategy.Seek(scan.strategy.GetNumberOfPoints()));
        const bool written = Write(points, first);
        EXPECT_TRUE(scan.container.Close());
        scan.strategy.ResetData();
        return written;
    }

    /// Number of points when the file is opened anew for reading.
    std::uint64_t PointsOfFile()
    {
        SioTest::Scan other;
        EXPECT_TRUE(other.Open(Path()));
        EXPECT_TRUE(other.Interpret());
        return other.strategy.GetNumberOfPoints();
    }
};

/// A block 3 whose header counts its points.
QsbBytes CountedScan(std::uint32_t type, std::uint64_t count, std::uint32_t points)
{
    QsbBytes file;
    file.Block(3)
        .Entry(type, 1, count)
        .Entry(40, 100, 12)
        .Entry(5, 101, 2)
        .Data(Support::SmallPoints(points));
    return file;
}

TEST_F(QsbAppend, PointsAppendedToTheLastBlockAreThereAfterReopening)
{
    folder.Write("scan.qsb", Support::SmallScan(3));
    EXPECT_TRUE(Append(2, 3));
    EXPECT_EQ(File(), Support::SmallScan(5).Get());
    EXPECT_TRUE(Append(4, 5));
    EXPECT_EQ(File(), Support::SmallScan(9).Get());
    EXPECT_EQ(PointsOfFile(), 9u);
}

TEST_F(QsbAppend, PointsAppendedToABlock3WithoutACountAreThereAfterReopening)
{
    folder.Write("scan.qsb", Support::SmallScan(3, 3));
    EXPECT_TRUE(Append(2, 3));
    EXPECT_EQ(File(), Support::SmallScan(5, 3).Get());
}

TEST_F(QsbAppend, AppendedToAnEmptyBlockTheyAreItsPoints)
{
    folder.Write("scan.qsb", Support::SmallScan(0));
    EXPECT_TRUE(Append(2, 0));
    EXPECT_EQ(File(), Support::SmallScan(2).Get());
}

TEST_F(QsbAppend, TheHeaderIsMarkedDirtyAsSoonAsTheBlockGrows)
{
    Reopen(Support::SmallScan(3));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_TRUE(Write(3)); // over what is there
    EXPECT_FALSE(Block(1).IsHeaderDirty());
    EXPECT_TRUE(Write(1, 3));
    EXPECT_TRUE(Block(1).IsHeaderDirty());
}

TEST_F(QsbAppend, ACountOfEachKindOfNumberIsRaisedWithThePoints)
{
    for (const std::uint32_t type : {1u, 6u, 7u, 9u}) {
        folder.Write("scan.qsb", CountedScan(type, 3, 3));
        EXPECT_TRUE(Append(2, 3)) << type;
        EXPECT_EQ(File(), CountedScan(type, 5, 5).Get()) << type;
        EXPECT_TRUE(Append(1, 5)) << type;
        EXPECT_EQ(File(), CountedScan(type, 6, 6).Get()) << type;
        EXPECT_EQ(PointsOfFile(), 6u) << type;
    }
}

TEST_F(QsbAppend, RaisingACountLeavesTheOtherBytesOfItsEntry)
{
    folder.Write("scan.qsb", CountedScan(1, 0xAABBCCDDEEFF1103, 3));
    EXPECT_TRUE(Append(2, 3));
    EXPECT_EQ(File(), CountedScan(1, 0xAABBCCDDEEFF1105, 5).Get());
}

TEST_F(QsbAppend, ACountThatCannotHoldTheNumberRefusesTheWriteAndNothingIsWritten)
{
    folder.Write("scan.qsb", CountedScan(1, 254, 254));
    EXPECT_TRUE(Append(1, 254));
    EXPECT_FALSE(Append(1, 255));
    EXPECT_EQ(File(), CountedScan(1, 255, 255).Get());
}

TEST_F(QsbAppend, ACountOfAnotherTypeRefusesTheWrite)
{
    folder.Write("scan.qsb", CountedScan(5, 3, 3));
    EXPECT_FALSE(Append(1, 3));
    EXPECT_EQ(File(), CountedScan(5, 3, 3).Get());
}

TEST_F(QsbAppend, WrittenBehindTheLastCountedPointTheyTakeThePlaceOfUncountedOnes)
{
    folder.Write("scan.qsb", CountedScan(7, 2, 5));
    EXPECT_TRUE(Append(1, 40));
    const BytesT file = File();
    EXPECT_EQ(PointsOfFile(), 3u);
    EXPECT_EQ(file.size(), CountedScan(7, 3, 5).Get().size());
    EXPECT_EQ(Support::Slice(file, file.size() - 42, 14), Support::SmallPoints(1, 40));
}

TEST_F(QsbAppend, ABlock1IgnoresAPointCountAlsoWhenItGrows)
{
    QsbBytes file, expected;
    file.Block(1).Entry(7, 1, 1).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(3));
    expected.Block(1).Entry(7, 1, 1).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(4));
    folder.Write("scan.qsb", file);
    EXPECT_TRUE(Append(1, 3));
    EXPECT_EQ(File(), expected.Get());
}

TEST_F(QsbAppend, ABlockThatIsNotTheLastDoesNotGrow)
{
    const QsbBytes file = Support::SmallScan(3).Block(9).Data(BytesT(50));
    folder.Write("scan.qsb", file);
    EXPECT_FALSE(Append(1, 3));
    EXPECT_EQ(File(), file.Get());
}

TEST_F(QsbAppend, ANewStrategyAppendsABlockOfItsOwn)
{
    Reopen(Support::SmallScan(3));
    scan.strategy.SetPointDefinition(&small);
    EXPECT_TRUE(Write(2, 70));
    EXPECT_TRUE(scan.container.Close());
    QsbBytes expected = Support::SmallScan(3);
    expected.Block(1);
    SioTest::AddNeutralEntries(expected);
    expected.Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(2, 70));
    EXPECT_EQ(File(), expected.Get());
    EXPECT_EQ(PointsOfFile(), 3u); // the first block is still the one that is chosen
}

TEST_F(QsbAppend, TwoStrategiesWriteTwoBlocksOfWhichOnlyTheLastGrows)
{
    Create();
    EXPECT_TRUE(Write(2));
    SIO::QsbStrategyC second;
    second.SetPointDefinition(&small);
    SioTest::PlainSource source = SioTest::SmallSource(3, 50);
    EXPECT_TRUE(scan.container.WritePoints(source, 3, second));
    EXPECT_FALSE(Write(1, 2));
    ASSERT_TRUE(scan.strategy.Seek(1));
    EXPECT_TRUE(Write(1, 90));
    EXPECT_TRUE(scan.container.Close());
    const BytesT file = File();
    EXPECT_EQ(Support::Slice(file, file.size() - 42, 42), Support::SmallPoints(3, 50));
    const BytesT first = SioTest::WrittenSmallScan(2).Get();
    EXPECT_EQ(Support::Slice(file, first.size() - 14, 14), Support::SmallPoints(1, 90));
}

TEST_F(QsbAppend, BehindDataThatTheFileDoesNotHoldWholeABlockIsAppendedWhereTheHeadSays)
{
    Reopen(Support::SmallScan(1).ClaimDataBytes(100));
    EXPECT_EQ(scan.container.AppendBlock(9), 2);
    EXPECT_EQ(Block(2).GetOffset(), Block(1).GetDataOffset() + 100);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(Support::FileSize(Path()), Support::SmallScan(0).Get().size() + 100 + 12);
}

TEST_F(QsbAppend, TheLastOfARunOfEmptyBlocksGrowsAlone)
{
    Reopen(QsbBytes().Block(9).Block(9).Block(9));
    const BytesT bytes{1, 2, 3};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(3, 0, 3, bytes.data()));
    EXPECT_EQ(scan.container.AppendBlock(9), 4);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Block(9).Block(9).Block(9).Data({1, 2, 3}).Block(9).Get());
}

TEST_F(QsbAppend, DroppingTheLastOfARunLeavesTheOthers)
{
    Reopen(QsbBytes().Block(9).Block(9).Block(9));
    EXPECT_TRUE(scan.container.DropLastBlock());
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 3u);
    EXPECT_TRUE(Block(2).IsHeaderDirty());
    EXPECT_FALSE(Block(1).IsHeaderDirty());
    EXPECT_EQ(Block(2).GetOffset(), 28u + 12);
}

TEST_F(QsbAppend, ManyPointsThatCrossTheEndOfABlockBeforeTheLastLeaveTheFileAsItWas)
{
    const QsbBytes file = Support::SmallScan(6000).Block(9).Data(BytesT(5));
    Reopen(file);
    ASSERT_TRUE(scan.Interpret(1));
    EXPECT_FALSE(Write(6001, 9));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_TRUE(File() == file.Get());
}

TEST_F(QsbAppend, WritingNoPointsSucceedsWhateverTheBlockCounts)
{
    Reopen(
        QsbBytes().Block(3).Entry(5, 1, 2).Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(2)));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_TRUE(Write(0));
}

} // namespace
