// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Creating files and blocks, writing bytes and points, rewriting headers, dropping the last block.
#include "WriteTest.h"

#include <algorithm>
#include <memory>

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

/// A definition of any elements, null ones too.
class OddDefinition final : public SIO::PointDefinitionContainerI
{
public:
    std::vector<const SIO::PointDefinitionI*> elements;

    void Encode(const SIO::QsbPointGetterI&, char*) const override {}
    void Decode(SIO::QsbPointModifierI&, const char*, const GMAT::Matrix4C&) const override {}
    std::size_t GetSizeInBytes() const override { return 12; }
    std::uint32_t GetAvailablePointData() const override { return 1; }
    std::uint32_t GetTypeCode() const override { return 0; }
    void Add(std::unique_ptr<SIO::PointDefinitionI>) override {}
    void Clear() override {}
    std::size_t GetCount() const override { return elements.size(); }
    const SIO::PointDefinitionI* GetElement(std::size_t i) const override { return elements.at(i); }
};

/// An element of a kind that no tag names.
class UnknownElement final : public SIO::PointDefinitionI
{
public:
    void Encode(const SIO::QsbPointGetterI&, char*) const override {}
    void Decode(SIO::QsbPointModifierI&, const char*, const GMAT::Matrix4C&) const override {}
    std::size_t GetSizeInBytes() const override { return 1; }
    std::uint32_t GetAvailablePointData() const override { return 32; }
    std::uint32_t GetTypeCode() const override { return 2; }
};

class QsbWrite : public SioTest::WriteTest
{};

TEST_F(QsbWrite, ANewFileHoldsTheFileHeaderBlockAfterClose)
{
    Create();
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), Bytes(0x12879054, 16, 0, 7, 1, std::uint64_t{0x20000}));
}

TEST_F(QsbWrite, TheFileHeaderOfANewFileIsDirtyAndNotSealedUntilABlockFollows)
{
    Create();
    ASSERT_EQ(scan.container.GetBlocks().GetCount(), 1u);
    EXPECT_TRUE(Block(0).IsHeaderDirty());
    EXPECT_FALSE(Block(0).IsSealed());
    EXPECT_EQ(Block(0).GetHeaderBytes(), 16u);
    EXPECT_EQ(scan.container.AppendBlock(1), 1);
    EXPECT_TRUE(Block(0).IsSealed());
    EXPECT_TRUE(Block(0).IsHeaderDirty());
}

TEST_F(QsbWrite, UntilCloseTheFileHeaderOnDiskIsAHeadWithSizesOfZero)
{
    Create();
    EXPECT_EQ(scan.container.AppendBlock(1), 1); // moves the stream, so what came before is on disk
    EXPECT_EQ(Support::Slice(File(), 0, 12), Bytes(0x12879054, 0, 0));
}

TEST_F(QsbWrite, OpeningForWritingOnlyEmptiesTheFileThatIsThere)
{
    folder.Write("scan.qsb", Support::RichScan(5));
    Create();
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Get());
}

TEST_F(QsbWrite, AnAppendedBlockStandsBehindTheLastOneAndIsClean)
{
    Reopen(Support::SmallScan(3));
    EXPECT_EQ(scan.container.AppendBlock(77), 2);
    EXPECT_EQ(Block(2).GetOffset(), Support::SmallScan(3).Get().size());
    EXPECT_EQ(Block(2).GetId(), 77u);
    EXPECT_FALSE(Block(2).IsSealed());
    EXPECT_FALSE(Block(2).IsHeaderDirty());
    EXPECT_TRUE(Block(1).IsSealed());
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), Support::SmallScan(3).Block(77).Get());
}

TEST_F(QsbWrite, AClosedContainerAppendsNothing)
{
    EXPECT_EQ(scan.container.AppendBlock(1), -1);
}

TEST_F(QsbWrite, AFailedAppendChangesNothing)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(3)))); // for reading only
    EXPECT_EQ(scan.container.AppendBlock(1), -1);
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 2u);
    scan.container.Close();
    EXPECT_EQ(File(), Support::SmallScan(3).Get());
}

TEST_F(QsbWrite, WritingPointsMakesABlockWithItsHeaderInOrder)
{
    Create();
    EXPECT_TRUE(Write(3));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(3).Get());
}

TEST_F(QsbWrite, TheHeaderReceivesWhatTheStrategySays)
{
    Create();
    SIO::QsbScanInfoC& info = scan.strategy.WriteInfo();
    const std::vector<double> elements{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    for (int i = 0; i < 16; ++i)
        info.oTransformation.At(i / 4, i % 4) = elements[static_cast<std::size_t>(i)];
    for (int i = 0; i < 3; ++i)
        info.oBoundingBox.adMin[i] = 2 + i;
    for (int i = 0; i < 3; ++i)
        info.oBoundingBox.adMax[i] = 5 + i;
    info.auiGridSize[0] = 33;
    info.auiGridSize[1] = 44;
    info.dInstrumentHeight = 1.625;
    scan.strategy.SetWriteBlockId(3);
    EXPECT_TRUE(Write(1));
    EXPECT_TRUE(scan.container.Close());
    QsbBytes expected;
    expected.Block(3);
    for (std::uint32_t tag = 2; tag <= 7; ++tag)
        expected.DoubleEntry(tag, tag);
    expected.Matrix(elements).Entry(7, 24, 33).Entry(7, 25, 44).DoubleEntry(26, 1.625);
    EXPECT_EQ(File(), expected.Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(1)).Get());
}

TEST_F(QsbWrite, ConsecutiveWritesAppend)
{
    Create();
    EXPECT_TRUE(Write(3));
    EXPECT_TRUE(Write(0));
    EXPECT_TRUE(Write(4, 3));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(7).Get());
}

TEST_F(QsbWrite, WritingNoPointsSucceedsWritesNothingButMakesTheBlockOnTheFirstCall)
{
    Create();
    EXPECT_TRUE(Write(0));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 2u);
    EXPECT_TRUE(Write(0));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 2u);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(0).Get());
}

TEST_F(QsbWrite, PlainRecordsAreWrittenWithAFourthColourChannelOf255)
{
    Create();
    small.Add(SIO::PointDefinitionC::CreateElement(SIO::PD_COLOR, 7));
    SIO::QsbPointC point;
    point.x = 1;
    point.intensity = 0x0203;
    point.red = 4;
    EXPECT_TRUE(scan.container.WritePoints(&point, 1, scan.strategy));
    EXPECT_TRUE(scan.container.Close());
    const BytesT file = File();
    EXPECT_EQ(Support::Slice(file, file.size() - 18, 18),
              Bytes(1.0f, 0.0f, 0.0f, std::uint16_t{0x0203}, std::uint8_t{4}, std::uint8_t{0},
                    std::uint8_t{0}, std::uint8_t{255}));
}

TEST_F(QsbWrite, AfterAWritePositionSizeAndNumberOfPointsAreTrue)
{
    Create();
    EXPECT_TRUE(Write(3));
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 3u);
    EXPECT_EQ(scan.strategy.GetData()->m_ullPosition, 42u);
    EXPECT_EQ(scan.strategy.GetData()->m_ullDataBytes, 42u);
    EXPECT_TRUE(scan.strategy.Seek(3));
    EXPECT_FALSE(scan.strategy.Seek(4));
}

TEST_F(QsbWrite, WhatWasJustWrittenCanBeSoughtAndRead)
{
    Reopen(QsbBytes());
    scan.strategy.SetPointDefinition(&small);
    EXPECT_TRUE(Write(5));
    ASSERT_TRUE(scan.strategy.Seek(1));
    EXPECT_EQ(scan.Read(2), 2u);
    EXPECT_EQ(Support::Slice(scan.buffer, 0, 28), Support::SmallPoints(2, 1));
}

TEST_F(QsbWrite, ABatchOfManyPiecesIsWrittenWholeWhereverItBegins)
{
    constexpr std::uint32_t points = 65000;
    for (const std::size_t before : {0u, 1u, 13u, 523800u, 524288u}) {
        QsbBytes file = QsbBytes().Block(9).Data(BytesT(before));
        Reopen(file);
        scan.strategy.ResetData();
        scan.strategy.SetPointDefinition(&small);
        EXPECT_TRUE(Write(points));
        EXPECT_TRUE(scan.container.Close());
        file.Block(1);
        SioTest::AddNeutralEntries(file);
        file.Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(points));
        EXPECT_TRUE(File() == file.Get()) << before;
    }
}

TEST_F(QsbWrite, WritingOverPointsThatAreThereKeepsTheirNumber)
{
    Reopen(SioTest::WrittenSmallScan(5));
    ASSERT_TRUE(scan.Interpret());
    ASSERT_TRUE(scan.strategy.Seek(1));
    EXPECT_TRUE(Write(2, 30));
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 5u);
    EXPECT_TRUE(scan.container.Close());
    const BytesT file = File();
    EXPECT_EQ(file.size(), SioTest::WrittenSmallScan(5).Get().size());
    EXPECT_EQ(Support::Slice(file, file.size() - 56, 28), Support::SmallPoints(2, 30));
    EXPECT_EQ(Support::Slice(file, file.size() - 28, 28), Support::SmallPoints(2, 3));
}

TEST_F(QsbWrite, AClosedContainerWritesNothing)
{
    scan.strategy.SetPointDefinition(&small);
    EXPECT_FALSE(Write(1));
    EXPECT_FALSE(Write(0));
}

TEST_F(QsbWrite, AFileOpenedForReadingIsNotWritten)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(3))));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_FALSE(Write(1));
    EXPECT_FALSE(Write(0));
    scan.container.Close();
    EXPECT_EQ(File(), Support::SmallScan(3).Get());
}

TEST_F(QsbWrite, WithoutADefinitionNothingIsWrittenAndNoBlockMade)
{
    Create();
    scan.strategy.SetPointDefinition(nullptr);
    EXPECT_FALSE(Write(1));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 1u);
    EXPECT_EQ(reports.Reports().size(), 0u);
}

TEST_F(QsbWrite, TheWorkerReportsAMissingDefinition)
{
    Create();
    scan.strategy.SetPointDefinition(nullptr);
    SioTest::PlainSource source = SioTest::SmallSource(1);
    EXPECT_FALSE(scan.container.WritePointsIntoBlock(source, 1, scan.strategy));
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poPointDefinitionContainer", SioTest::s_szQsb));
}

TEST_F(QsbWrite, ANullElementIsReportedAndFails)
{
    Create();
    OddDefinition odd;
    odd.elements = {nullptr};
    scan.strategy.SetPointDefinition(&odd);
    EXPECT_FALSE(Write(1));
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poPointDefElement", SioTest::s_szQsb));
}

TEST_F(QsbWrite, AnElementOfUnknownKindFails)
{
    Create();
    const UnknownElement unknown;
    OddDefinition odd;
    odd.elements = {small.GetElement(0), &unknown};
    scan.strategy.SetPointDefinition(&odd);
    EXPECT_FALSE(Write(1));
    EXPECT_FALSE(scan.strategy.HasData());
}

TEST_F(QsbWrite, AStrategyOfAnotherClassFails)
{
    struct Other final : SIO::StrategyI
    {
        void SetPointDefinition(SIO::PointDefinitionContainerI*) override {}
        std::uint64_t GetNumberOfPoints() const override { return 0; }
        bool GetBoundingBox(double&, double&, double&, double&, double&, double&) const override
        {
            return false;
        }
        bool Seek(std::uint64_t) override { return false; }
    } other;
    Create();
    SioTest::PlainSource source = SioTest::SmallSource(1);
    EXPECT_FALSE(scan.container.WritePoints(source, 1, other));
    EXPECT_FALSE(scan.container.WritePointsIntoBlock(source, 1, other));
    EXPECT_FALSE(scan.container.SetBoundingBox(other, {}));
}

TEST_F(QsbWrite, ForeignStrategyDataFails)
{
    struct Foreign final : SIO::StrategyDataI
    {};
    Create();
    scan.strategy.SetForeignData(std::make_unique<Foreign>());
    scan.strategy.SetPointDefinition(&small);
    EXPECT_FALSE(Write(1));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 1u);
}

TEST_F(QsbWrite, ADefinitionOtherThanTheBlocksIsRefused)
{
    Create();
    EXPECT_TRUE(Write(1));
    SIO::PointDefinitionC other;
    SioTest::Define(other, {40, 4, 0, 0, 0});
    scan.strategy.SetPointDefinition(&other);
    EXPECT_FALSE(Write(1));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(1).Get());
}

TEST_F(QsbWrite, DataOfAFileClosedSinceIsNotWrittenIntoAnother)
{
    Create();
    EXPECT_TRUE(Write(1));
    scan.container.Close();
    ASSERT_TRUE(scan.Open(Path(), true, true));
    EXPECT_FALSE(Write(1, 1));
    scan.container.Close();
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(1).Get());
}

TEST_F(QsbWrite, TheDefinitionMayGoOnceTheBlockIsMade)
{
    Create();
    auto definition = std::make_unique<SIO::PointDefinitionC>();
    SioTest::Define(*definition, {40, 5, 0, 0, 0});
    scan.strategy.SetPointDefinition(definition.get());
    EXPECT_TRUE(Write(1));
    definition.reset();
    EXPECT_TRUE(Write(1, 1));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(2).Get());
}

TEST_F(QsbWrite, BytesGoToAPositionInTheBlockAndSealIt)
{
    Create();
    ASSERT_EQ(scan.container.AppendBlock(9), 1);
    const BytesT bytes{1, 2, 3, 4};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 0, 4, bytes.data()));
    EXPECT_TRUE(Block(1).IsSealed());
    EXPECT_TRUE(Block(1).IsHeaderDirty());
    EXPECT_EQ(Block(1).GetDataBytes(), 4u);
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 2, 4, bytes.data()));
    EXPECT_EQ(Block(1).GetDataBytes(), 6u);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Block(9).Data({1, 2, 1, 2, 3, 4}).Get());
}

TEST_F(QsbWrite, BytesWithinTheLastBlockDoNotChangeItsSize)
{
    Reopen(QsbBytes().Block(9).Data(BytesT(6)));
    const BytesT bytes{1, 2};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 3, 2, bytes.data()));
    EXPECT_FALSE(Block(1).IsHeaderDirty());
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Block(9).Data({0, 0, 0, 1, 2, 0}).Get());
}

TEST_F(QsbWrite, TheLastBlockGrowsToTheEndOfWhatWasWrittenAlsoBehindAGap)
{
    Reopen(QsbBytes().Block(9).Data(BytesT(2)));
    const BytesT bytes{1, 2};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 4, 2, bytes.data()));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Block(9).Data({0, 0, 0, 0, 1, 2}).Get());
}

TEST_F(QsbWrite, NoBytesAreAlwaysWrittenAndChangeNothing)
{
    Reopen(QsbBytes().Block(9).Data(BytesT(2)));
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 2, 0, nullptr));
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 500, 0, nullptr));
    EXPECT_EQ(Block(1).GetDataBytes(), 2u);
    EXPECT_FALSE(Block(1).IsHeaderDirty());
}

TEST_F(QsbWrite, ABlockThatIsNotTheLastTakesBytesWithinItsDataOnly)
{
    Reopen(QsbBytes().Block(8).Data(BytesT(6)).Block(9));
    const BytesT bytes{1, 2, 3};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 3, 3, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, 4, 3, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, 7, 0, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, 0xFFFFFFFFFFFFFFFF, 3, bytes.data()));
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(1, 6, 0, bytes.data()));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), QsbBytes().Block(8).Data({0, 0, 0, 1, 2, 3}).Block(9).Get());
}

TEST_F(QsbWrite, BytesForNoBlockOrNoFileAreRefused)
{
    const BytesT bytes{1};
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(0, 0, 1, bytes.data()));
    Create();
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(-1, 0, 1, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, 0, 1, bytes.data()));
}

TEST_F(QsbWrite, RewritingAHeaderClearsItsDirtyMark)
{
    Create();
    EXPECT_TRUE(scan.container.RewriteBlockHeader(0));
    EXPECT_FALSE(Block(0).IsHeaderDirty());
    EXPECT_EQ(scan.container.AppendBlock(1), 1);
    EXPECT_EQ(Support::Slice(File(), 0, 28), QsbBytes().Get());
}

TEST_F(QsbWrite, RewritingTheHeaderOfNoBlockOrNoFileFails)
{
    EXPECT_FALSE(scan.container.RewriteBlockHeader(0));
    Create();
    EXPECT_FALSE(scan.container.RewriteBlockHeader(-1));
    EXPECT_FALSE(scan.container.RewriteBlockHeader(1));
}

TEST_F(QsbWrite, TheBoundingBoxOfAWrittenBlockCanBeReplaced)
{
    Create();
    EXPECT_TRUE(Write(1));
    EXPECT_TRUE(scan.container.SetBoundingBox(scan.strategy, {{1, 2, 3}, {4, 5, 6}}));
    double box[6] = {};
    EXPECT_TRUE(scan.strategy.GetBoundingBox(box[0], box[1], box[2], box[3], box[4], box[5]));
    EXPECT_EQ(std::vector<double>(box, box + 6), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    EXPECT_TRUE(scan.container.Close());
    const BytesT file = File();
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(Support::Slice(file, 28 + 12 + 16 * i, 16),
                  Bytes(9, static_cast<std::uint32_t>(2 + i), static_cast<double>(i + 1)));
    }
}

TEST_F(QsbWrite, TheBoundingBoxIsRefusedWithoutABlockOrWithoutWriting)
{
    Create();
    EXPECT_FALSE(scan.container.SetBoundingBox(scan.strategy, {}));
    scan.container.Close();
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(3))));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_FALSE(scan.container.SetBoundingBox(scan.strategy, {}));
    scan.container.Close();
    EXPECT_FALSE(scan.container.SetBoundingBox(scan.strategy, {}));
}

TEST_F(QsbWrite, DroppingTheLastBlockNeedsTheWriteFlagTwoBlocksAndAnOpenFile)
{
    EXPECT_FALSE(scan.container.DropLastBlock());
    Create();
    EXPECT_FALSE(scan.container.DropLastBlock());
    scan.container.Close();
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(3))));
    EXPECT_FALSE(scan.container.DropLastBlock());
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 2u);
}

TEST_F(QsbWrite, DroppingTheLastBlockUnsealsAndDirtiesTheOneBeforeAndEmptiesTheFile)
{
    Reopen(Support::SmallScan(3).Block(9).Data(BytesT(5)));
    EXPECT_TRUE(scan.container.DropLastBlock());
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 2u);
    EXPECT_FALSE(Block(1).IsSealed());
    EXPECT_TRUE(Block(1).IsHeaderDirty());
    EXPECT_TRUE(scan.container.IsOpen());
    EXPECT_EQ(scan.container.GetPath(), BSS::HAL::WidePath(Path()));
    EXPECT_EQ(Support::FileSize(Path()), 0u);
    EXPECT_TRUE(scan.container.Close());
    // What the header rewrite of Close leaves: zeros up to the block, its head and its entries.
    const BytesT whole = Support::SmallScan(3).Get();
    BytesT expected = Support::Truncated(whole, whole.size() - 42);
    std::fill(expected.begin(), expected.begin() + 28, std::uint8_t{0});
    EXPECT_EQ(File(), expected);
}

TEST_F(QsbWrite, CloseWritesNothingWhenNoHeaderIsDirty)
{
    const BytesT odd = Support::SmallScan(3).ClaimDataBytes(9999).Get(); // kept although it is not true
    folder.Write("scan.qsb", odd);
    ASSERT_TRUE(scan.Open(Path(), true, true));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), odd);
}

TEST_F(QsbWrite, DestroyingTheContainerClosesIt)
{
    {
        SIO::QsbC container;
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), false, true));
    }
    EXPECT_EQ(File(), QsbBytes().Get());
}

TEST_F(QsbWrite, UntilCloseANewBlockOnDiskIsAHeadWithSizesOfZero)
{
    Reopen(QsbBytes());
    scan.strategy.SetPointDefinition(&small);
    EXPECT_TRUE(Write(3));
    EXPECT_EQ(scan.container.AppendBlock(9), 2); // brings everything before it to disk
    EXPECT_EQ(Support::Slice(File(), 28, 12), Bytes(1, 0, 0));
}

TEST_F(QsbWrite, DirtyHeadersAreWrittenInTheOrderOfTheBlocks)
{
    Create();
    ASSERT_TRUE(Write(2));
    EXPECT_TRUE(Block(0).IsHeaderDirty());
    EXPECT_TRUE(Block(1).IsHeaderDirty());
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), SioTest::WrittenSmallScan(2).Get());
}

} // namespace
