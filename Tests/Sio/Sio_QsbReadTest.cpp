// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reading stored points through a strategy, and the strategy itself.
#include "ScanTest.h"

#include <limits>

namespace {

using Support::BytesT;
using Support::QsbBytes;

constexpr std::uint32_t s_uiFailed = 0xFFFFFFFF;

/// Data that no container knows.
struct ForeignData final : SIO::StrategyDataI
{};

class QsbRead : public SioTest::ScanTest
{
protected:
    /// Opens a file and interprets its block.
    void Prepare(const QsbBytes& file)
    {
        ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", file)));
        ASSERT_TRUE(scan.Interpret());
    }

    BytesT Delivered(std::size_t bytes) { return Support::Slice(scan.buffer, 0, bytes); }
};

TEST_F(QsbRead, BatchesDeliverTheStoredBytesOneAfterAnother)
{
    Prepare(Support::SmallScan(5));
    EXPECT_EQ(scan.Read(2), 2u);
    EXPECT_EQ(Delivered(28), Support::SmallPoints(2));
    EXPECT_EQ(scan.buffer[28], 0xEE);
    EXPECT_EQ(scan.Read(2), 2u);
    EXPECT_EQ(Delivered(28), Support::SmallPoints(2, 2));
    EXPECT_EQ(scan.strategy.GetData()->m_ullPosition, 56u);
}

TEST_F(QsbRead, ABatchOfMoreThanWhatRemainsDeliversWhatRemainsAndThenNothing)
{
    Prepare(Support::SmallScan(5));
    EXPECT_EQ(scan.Read(3), 3u);
    EXPECT_EQ(scan.Read(1000), 2u);
    EXPECT_EQ(Delivered(28), Support::SmallPoints(2, 3));
    EXPECT_EQ(scan.Read(1000), 0u);
    EXPECT_EQ(scan.Read(1000), 0u);
}

TEST_F(QsbRead, ABatchOfNoPointsDeliversNone)
{
    Prepare(Support::SmallScan(5));
    EXPECT_EQ(scan.Read(0), 0u);
    EXPECT_EQ(scan.Read(1), 1u);
    EXPECT_EQ(Delivered(14), Support::SmallPoints(1));
}

TEST_F(QsbRead, TrailingBytesOfABlockAreNeverRead)
{
    Prepare(Support::SmallScan(2).Data(BytesT(13, 0x77)));
    EXPECT_EQ(scan.Read(1000), 2u);
    EXPECT_EQ(scan.buffer[28], 0xEE);
    EXPECT_EQ(scan.Read(1000), 0u);
}

TEST_F(QsbRead, NoBatchCrossesIntoTheNextBlock)
{
    Prepare(Support::SmallScan(2).Block(1).Data(BytesT(280)));
    EXPECT_EQ(scan.Read(1000), 2u);
    EXPECT_EQ(scan.Read(1000), 0u);
}

TEST_F(QsbRead, ABlockWithoutDataHasNoPoints)
{
    Prepare(Support::SmallScan(0));
    EXPECT_EQ(scan.Read(1000), 0u);
}

TEST_F(QsbRead, ABatchMayDeliverMoreThanADeclaredCount)
{
    QsbBytes file;
    file.Block(3).Entry(7, 1, 2).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(5));
    Prepare(file);
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 2u);
    EXPECT_EQ(scan.Read(4), 4u);
}

TEST_F(QsbRead, TheFirstReadInterpretsTheBlockThatTheStrategyNames)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(2).Block(9).Data(BytesT(72)))));
    scan.strategy.SetBlockIndex(2);
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 0u);
    EXPECT_EQ(scan.Read(1000), 3u);
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 3u);
    EXPECT_EQ(scan.strategy.GetPointDefinition(), &scan.strategy.GetData()->m_oPointDefinition);
}

TEST_F(QsbRead, TheFirstReadChoosesTheBlockWhenTheStrategyNamesNone)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(2))));
    EXPECT_EQ(scan.strategy.GetBlockIndex(), -1);
    EXPECT_EQ(scan.Read(1000), 2u);
}

TEST_F(QsbRead, AFirstReadThatFindsNoBlockFailsAndClosesTheContainer)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", QsbBytes())));
    EXPECT_EQ(scan.Read(1), s_uiFailed);
    EXPECT_FALSE(scan.container.IsOpen());
    EXPECT_FALSE(scan.strategy.HasData());
}

TEST_F(QsbRead, AClosedContainerReadsNothing)
{
    EXPECT_EQ(scan.Read(1), s_uiFailed);
}

TEST_F(QsbRead, AFileOpenedForWritingOnlyIsNotRead)
{
    ASSERT_TRUE(scan.Open(folder.Path("scan.qsb"), false, true));
    EXPECT_EQ(scan.Read(1), s_uiFailed);
    EXPECT_TRUE(scan.container.IsOpen());
}

TEST_F(QsbRead, ForeignStrategyDataFails)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(2))));
    scan.strategy.SetForeignData(std::make_unique<ForeignData>());
    EXPECT_EQ(scan.Read(1), s_uiFailed);
}

TEST_F(QsbRead, DataOfAFileClosedSinceIsNotReadFromAnother)
{
    Prepare(Support::SmallScan(2));
    scan.container.Close();
    EXPECT_EQ(scan.Read(1), s_uiFailed);
    ASSERT_TRUE(scan.Open(folder.Path("scan.qsb")));
    EXPECT_EQ(scan.Read(1), s_uiFailed);
}

TEST_F(QsbRead, ABatchThatTheFileDoesNotHoldWholeFailsEveryTimeAndThePositionStays)
{
    const BytesT whole = Support::SmallScan(5).Get();
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::Truncated(whole, whole.size() - 1))));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 5u);
    EXPECT_EQ(scan.Read(3), 3u);
    EXPECT_EQ(scan.Read(2), s_uiFailed);
    EXPECT_EQ(scan.Read(2), s_uiFailed);
    EXPECT_EQ(scan.strategy.GetData()->m_ullPosition, 42u);
    EXPECT_EQ(scan.Read(1), 1u);
    EXPECT_EQ(Delivered(14), Support::SmallPoints(1, 3));
}

TEST_F(QsbRead, APositionBeyondTheDataIsTheEnd)
{
    Prepare(Support::SmallScan(5));
    scan.strategy.GetData()->m_ullPosition = 71;
    EXPECT_EQ(scan.Read(1), 0u);
    scan.strategy.GetData()->m_ullPosition = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(scan.Read(1), 0u);
}

TEST_F(QsbRead, SeekGoesToAPoint)
{
    Prepare(Support::SmallScan(5));
    ASSERT_TRUE(scan.strategy.Seek(3));
    EXPECT_EQ(scan.strategy.GetData()->m_ullPosition, 42u);
    EXPECT_EQ(scan.Read(1), 1u);
    EXPECT_EQ(Delivered(14), Support::SmallPoints(1, 3));
    ASSERT_TRUE(scan.strategy.Seek(0));
    EXPECT_EQ(scan.Read(1), 1u);
    EXPECT_EQ(Delivered(14), Support::SmallPoints(1));
}

TEST_F(QsbRead, SeekToTheNumberOfPointsSucceedsAndTheNextReadDeliversNothing)
{
    Prepare(Support::SmallScan(5));
    EXPECT_TRUE(scan.strategy.Seek(5));
    EXPECT_EQ(scan.Read(1), 0u);
}

TEST_F(QsbRead, SeekBeyondTheNumberOfPointsFailsAndLeavesThePosition)
{
    Prepare(Support::SmallScan(5));
    ASSERT_TRUE(scan.strategy.Seek(2));
    EXPECT_FALSE(scan.strategy.Seek(6));
    EXPECT_FALSE(scan.strategy.Seek(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(scan.strategy.GetData()->m_ullPosition, 28u);
}

TEST(QsbStrategy, ANewStrategyHasNoDataAndNeutralSettings)
{
    SIO::QsbStrategyC strategy;
    constexpr double most = std::numeric_limits<double>::max();
    EXPECT_FALSE(strategy.HasData());
    EXPECT_EQ(strategy.GetPointDefinition(), nullptr);
    EXPECT_EQ(strategy.GetBlockIndex(), -1);
    EXPECT_EQ(strategy.GetWriteBlockId(), 1u);
    EXPECT_EQ(strategy.WriteInfo().oBoundingBox.adMin[2], most);
    EXPECT_EQ(strategy.WriteInfo().oBoundingBox.adMax[0], -most);
    EXPECT_EQ(strategy.WriteInfo().oTransformation.At(3, 3), 1.0);
    EXPECT_EQ(strategy.WriteInfo().oTransformation.At(3, 0), 0.0);
    EXPECT_EQ(strategy.WriteInfo().dInstrumentHeight, 0.0);
    EXPECT_EQ(strategy.WriteInfo().auiGridSize[0] + strategy.WriteInfo().auiGridSize[1], 0u);
}

TEST(QsbStrategy, WithoutDataThereAreNoPointsNoBoxNoMatrixAndNoSeek)
{
    SIO::QsbStrategyC strategy;
    double box[6] = {1, 2, 3, 4, 5, 6};
    GMAT::Matrix4C matrix;
    matrix.At(0, 0) = 9;
    EXPECT_EQ(strategy.GetNumberOfPoints(), 0u);
    EXPECT_FALSE(strategy.GetBoundingBox(box[0], box[1], box[2], box[3], box[4], box[5]));
    EXPECT_EQ(std::vector<double>(box, box + 6), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(strategy.GetTransformation(matrix));
    EXPECT_EQ(matrix.At(0, 0), 9);
    EXPECT_FALSE(strategy.Seek(0));
}

TEST(QsbStrategy, DataOfAnotherClassBehavesAsNone)
{
    SIO::QsbStrategyC strategy;
    strategy.SetForeignData(std::make_unique<ForeignData>());
    double x = 0;
    EXPECT_TRUE(strategy.HasData());
    EXPECT_EQ(strategy.GetData(), nullptr);
    EXPECT_EQ(strategy.GetNumberOfPoints(), 0u);
    EXPECT_FALSE(strategy.GetBoundingBox(x, x, x, x, x, x));
    EXPECT_FALSE(strategy.Seek(0));
}

TEST(QsbStrategy, KeepsTheDefinitionItIsGivenUntilItHasABlocksOwn)
{
    SIO::QsbStrategyC strategy;
    SIO::PointDefinitionC definition;
    strategy.SetPointDefinition(&definition);
    EXPECT_EQ(strategy.GetPointDefinition(), &definition);
    strategy.SetData(std::make_unique<SIO::QsbStrategyDataC>(1, 0));
    EXPECT_EQ(strategy.GetPointDefinition(), &strategy.GetData()->m_oPointDefinition);
}

TEST(QsbStrategy, LosingItsDataItForgetsTheDefinitionToo)
{
    SIO::QsbStrategyC strategy;
    strategy.SetData(std::make_unique<SIO::QsbStrategyDataC>(1, 0));
    strategy.ResetData();
    EXPECT_FALSE(strategy.HasData());
    EXPECT_EQ(strategy.GetPointDefinition(), nullptr);
}

TEST(QsbStrategy, ReplacedDataIsDeleted)
{
    struct Counted final : SIO::StrategyDataI
    {
        explicit Counted(int& count) : destroyed(count) {}
        ~Counted() override { ++destroyed; }
        int& destroyed;
    };
    int destroyed = 0;
    {
        SIO::QsbStrategyC strategy;
        strategy.SetForeignData(std::make_unique<Counted>(destroyed));
        strategy.SetForeignData(std::make_unique<Counted>(destroyed));
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 2);
}

} // namespace
