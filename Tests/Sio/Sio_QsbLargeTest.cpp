// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Files larger than memory, nearly all of them holes: offsets beyond 2 and 4 GiB, blocks of the largest size,
// very many blocks. No gigabyte is written; where the file system has no such files the test says so and is
// skipped.
#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReader.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"
#include "WriteTest.h"

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

constexpr std::uint64_t s_nGiB = std::uint64_t{1} << 30;
constexpr std::uint32_t s_nMaxData = 0xFFFFFFFF;
constexpr std::uint32_t s_nMaxPoints = s_nMaxData / 14; ///< small points of 14 bytes

class QsbLarge : public SioTest::WriteTest
{
protected:
    /// Writes a file and lengthens it by a hole. Says whether the file system did it.
    bool MakeSparse(const QsbBytes& file, std::uint64_t size)
    {
        return Support::Resize(folder.Write("scan.qsb", file), size);
    }

    /// Whether holes are known without reading them.
    bool KnowsHoles()
    {
        std::FILE* stream = BSS::HAL::OpenStream(BSS::HAL::WidePath(Path()), "rb");
        std::uint64_t next = 0;
        const bool known = BSS::HAL::NextStoredOffset(stream, s_nGiB, next) && next > s_nGiB;
        std::fclose(stream);
        return known;
    }

    /// How often a visit of all blocks tells of one or several of them.
    int Visits()
    {
        int visits = 0;
        scan.container.GetBlocks().ForEach(
            [&](const SIO::QsbBlockC&, std::uint64_t) { return ++visits < 100; });
        return visits;
    }

    /// A file whose block 1 holds small points of the largest size, its data beginning at `data`.
    bool MakeLargestBlock(std::uint64_t& data)
    {
        QsbBytes file = Support::SmallScan(0);
        file.ClaimDataBytes(14 * s_nMaxPoints);
        data = file.Get().size();
        return MakeSparse(file, data + 14 * std::uint64_t{s_nMaxPoints});
    }

    /// The intensities of a batch at a point.
    std::vector<int> IntensitiesAt(std::uint64_t point, std::uint32_t size)
    {
        SIO::QsbReaderC reader;
        EXPECT_EQ(reader.Open(Path(), 1), 0u);
        SIO::QsbReaderIteratorC iterator(size);
        dynamic_cast<SIO::QsbReaderIteratorImplC&>(*iterator.GetImpl()).SetIteratorPos(point);
        std::vector<SIO::QsbPointC> points(size);
        SIO::QsbPointArrayIteratorC target(points.data());
        std::int32_t count = -5;
        EXPECT_EQ(reader.Read(iterator, target, count), 0u);
        std::vector<int> intensities;
        for (std::int32_t i = 0; i < count; ++i)
            intensities.push_back(points[static_cast<std::size_t>(i)].intensity);
        return intensities;
    }
};

TEST_F(QsbLarge, APointBlockThatBeginsBeyond4GiBIsFoundAndRead)
{
    QsbBytes front;
    front.Block(9).ClaimDataBytes(s_nMaxData);
    const std::uint64_t second = front.Get().size() + std::uint64_t{s_nMaxData};
    const BytesT points = Support::SmallScan(3).Get();
    if (!MakeSparse(front, second)) GTEST_SKIP() << "no files of 4 GiB here";
    Support::WriteAt(Path(), second, Bytes(9, 0, 0));
    Support::WriteAt(Path(), second + 12, Support::Slice(points, 28, points.size() - 28));
    ASSERT_TRUE(scan.Open(Path()));
    EXPECT_GT(Block(3).GetOffset(), 4 * s_nGiB);
    EXPECT_EQ(scan.Read(10), 3u);
    EXPECT_EQ(Support::Slice(scan.buffer, 0, 42), Support::SmallPoints(3));
}

TEST_F(QsbLarge, TheSumOfHeadHeaderAndDataDoesNotWrap)
{
    // In 32 bits the next block would begin inside this one.
    QsbBytes file;
    file.Block(9).Entry(7, 50).ClaimDataBytes(s_nMaxData);
    const std::uint64_t next = file.Get().size() + std::uint64_t{s_nMaxData};
    if (!MakeSparse(file, next)) GTEST_SKIP() << "no files of 4 GiB here";
    Support::WriteAt(Path(), next, Bytes(1, 0, 0));
    ASSERT_TRUE(scan.Open(Path()));
    ASSERT_EQ(scan.container.GetBlocks().GetCount(), 3u);
    EXPECT_EQ(Block(2).GetOffset(), next);
}

TEST_F(QsbLarge, PointsOnEitherSideOf2And4GiBOfABlocksDataAreRead)
{
    std::uint64_t data = 0;
    if (!MakeLargestBlock(data)) GTEST_SKIP() << "no files of 4 GiB here";
    for (const std::uint64_t boundary : {2 * s_nGiB, 4 * s_nGiB}) {
        const std::uint64_t point = (boundary - data) / 14 - 1; // the batch spans the boundary
        if (point + 3 > s_nMaxPoints) continue;
        Support::WriteAt(Path(), data + 14 * point, Support::SmallPoints(3, 7));
        EXPECT_EQ(IntensitiesAt(point, 3), (std::vector<int>{107, 108, 109})) << boundary;
    }
    Support::WriteAt(Path(), data + 14 * std::uint64_t{s_nMaxPoints - 2}, Support::SmallPoints(2, 9));
    EXPECT_EQ(IntensitiesAt(s_nMaxPoints - 2, 5), (std::vector<int>{109, 110}));
}

TEST_F(QsbLarge, ADataAreaThatSpans4GiBOfTheFileIsRead)
{
    QsbBytes front;
    front.Block(9).ClaimDataBytes(3u << 30);
    const BytesT points = Support::SmallScan(0).ClaimDataBytes(14 * s_nMaxPoints).Get();
    const std::uint64_t block = front.Get().size() + 3 * s_nGiB;
    if (!MakeSparse(front, block)) GTEST_SKIP() << "no files of 4 GiB here";
    Support::WriteAt(Path(), block, Support::Slice(points, 28, points.size() - 28));
    const std::uint64_t data = block + points.size() - 28;
    if (!Support::Resize(Path(), data + 14 * std::uint64_t{s_nMaxPoints}))
        GTEST_SKIP() << "no files of 7 GiB here";
    const std::uint64_t point = (4 * s_nGiB - data) / 14 - 1;
    Support::WriteAt(Path(), data + 14 * point, Support::SmallPoints(4, 3));
    EXPECT_EQ(IntensitiesAt(point, 4), (std::vector<int>{103, 104, 105, 106}));
}

TEST_F(QsbLarge, ABlockGrowsTo4GiBMinusOneAndNotFurther)
{
    std::uint64_t data = 0;
    if (!MakeLargestBlock(data)) GTEST_SKIP() << "no files of 4 GiB here";
    Support::WriteAt(Path(), 28 + 8, Bytes(14 * (s_nMaxPoints - 1))); // room for one point
    ASSERT_TRUE(Support::Resize(Path(), data + 14 * std::uint64_t{s_nMaxPoints - 1}));
    ASSERT_TRUE(scan.Open(Path(), true, true));
    ASSERT_TRUE(scan.Interpret());
    ASSERT_TRUE(scan.strategy.Seek(s_nMaxPoints - 1));
    EXPECT_FALSE(Write(2));
    EXPECT_EQ(Block(1).GetDataBytes(), 14 * (s_nMaxPoints - 1));
    EXPECT_FALSE(Block(1).IsHeaderDirty());
    EXPECT_TRUE(Write(1, 5));
    EXPECT_FALSE(Write(1, 6));
    EXPECT_EQ(Block(1).GetDataBytes(), 14 * s_nMaxPoints);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(Support::FileSize(Path()), data + 14 * std::uint64_t{s_nMaxPoints});
    EXPECT_EQ(IntensitiesAt(s_nMaxPoints - 1, 1), (std::vector<int>{105}));
}

TEST_F(QsbLarge, TheFirstWriteOfMoreThanABlockHoldsMakesNoBlock)
{
    Create();
    SioTest::PlainSource source = SioTest::SmallSource(1);
    EXPECT_FALSE(scan.container.WritePoints(source, s_nMaxPoints + 1, scan.strategy));
    EXPECT_FALSE(scan.container.WritePoints(source, s_nMaxData, scan.strategy));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 1u);
}

TEST_F(QsbLarge, BytesBeyondTheLargestDataSizeAreRefusedAndTheSizeNeverWraps)
{
    const BytesT bytes{1, 2};
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", QsbBytes().Block(9)), true, true));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, s_nMaxData - 1, 2 + 1, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, s_nMaxData, 1, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, std::uint64_t{s_nMaxData} + 1, 0, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, 0, std::uint64_t{s_nMaxData} + 1, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, ~std::uint64_t{0}, 2, bytes.data()));
    EXPECT_EQ(Block(1).GetDataBytes(), 0u);
    if (!scan.container.WriteBytesIntoBlock(1, s_nMaxData - 2, 2, bytes.data()))
        GTEST_SKIP() << "no files of 4 GiB";
    EXPECT_EQ(Block(1).GetDataBytes(), s_nMaxData);
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(1, s_nMaxData, 1, bytes.data()));
    EXPECT_TRUE(scan.container.Close());
    ASSERT_TRUE(scan.Open(Path(), true, true));
    EXPECT_EQ(scan.container.AppendBlock(1), 2); // behind 4 GiB
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(Support::FileSize(Path()), 28 + 12 + std::uint64_t{s_nMaxData} + 12);
}

TEST_F(QsbLarge, AMillionEmptyBlocksOfOneIdentifierAreToldAtOnce)
{
    BytesT bytes = QsbBytes().Get();
    const BytesT head = Bytes(9, 0, 0);
    for (int i = 0; i < 1000000; ++i)
        bytes.insert(bytes.end(), head.begin(), head.end());
    const BytesT points = Support::SmallScan(3).Get();
    bytes.insert(bytes.end(), points.begin() + 28, points.end());
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", bytes)));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 1000002u);
    EXPECT_EQ(Visits(), 3);
    EXPECT_EQ(scan.Read(10), 3u);
}

TEST_F(QsbLarge, AMillionEmptyBlocksOfAlternatingIdentifiersAreWalkedAndRead)
{
    BytesT bytes = QsbBytes().Get();
    for (std::uint32_t i = 0; i < 1000000; ++i) {
        const BytesT head = Bytes(8 + i % 2, 0, 0);
        bytes.insert(bytes.end(), head.begin(), head.end());
    }
    const BytesT points = Support::SmallScan(3).Get();
    bytes.insert(bytes.end(), points.begin() + 28, points.end());
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", bytes)));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 1000002u);
    EXPECT_EQ(scan.container.GetBlocks().Get(777777)->GetOffset(), 28u + 777776 * 12);
    EXPECT_EQ(scan.container.GetBlocks().Get(777777)->GetId(), 8u);
    EXPECT_EQ(scan.Read(10), 3u);
    EXPECT_EQ(Support::Slice(scan.buffer, 0, 42), Support::SmallPoints(3));
}

TEST_F(QsbLarge, TerabytesOfZerosAreEmptyBlocksAndPointsBehindThemAreFound)
{
    const std::uint64_t zeros = std::uint64_t{12} * 600000000000; // 7 TB
    const BytesT points = Support::SmallScan(3).Get();
    if (!MakeSparse(QsbBytes(), 28 + zeros)) GTEST_SKIP() << "no files of 7 TB here";
    Support::WriteAt(Path(), 28 + zeros, Support::Slice(points, 28, points.size() - 28));
    if (!KnowsHoles()) GTEST_SKIP() << "holes must be read here";
    ASSERT_TRUE(scan.Open(Path()));
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 600000000002u);
    EXPECT_EQ(Visits(), 3);
    EXPECT_EQ(scan.Read(10), 3u);
    EXPECT_EQ(Support::Slice(scan.buffer, 0, 42), Support::SmallPoints(3));
}

TEST_F(QsbLarge, TerabytesOfZerosThatEndInTheMiddleOfAHeadAreRefused)
{
    if (!MakeSparse(QsbBytes(), 28 + std::uint64_t{12} * 600000000000 + 5))
        GTEST_SKIP() << "no files of 7 TB here";
    if (!KnowsHoles()) GTEST_SKIP() << "holes must be read here";
    EXPECT_FALSE(SIO::QsbC::IsQsbFile(BSS::HAL::WidePath(Path())));
}

TEST_F(QsbLarge, AHeaderThatWouldPassTheMemoryLimitIsRefusedAlsoWhenTheFileHoldsIt)
{
    QsbBytes file;
    file.Block(9).ClaimHeaderBytes(0xFFFFFFF0);
    if (!MakeSparse(file, file.Get().size() + 0xFFFFFFF0u)) GTEST_SKIP() << "no files of 4 GiB here";
    EXPECT_FALSE(SIO::QsbC::IsQsbFile(BSS::HAL::WidePath(Path())));
    EXPECT_FALSE(scan.Open(Path()));
}

TEST_F(QsbLarge, AnIteratorTakesNoMoreMemoryThanTheFileHoldsData)
{
    folder.Write("scan.qsb", Support::SmallScan(4).ClaimDataBytes(s_nMaxData));
    SIO::QsbReaderC reader;
    ASSERT_EQ(reader.Open(Path(), 1), 0u);
    for (const std::uint32_t size : {1u, 3u, 4u, 5u, 1000u, 0xFFFFFFFFu}) {
        SIO::QsbReaderIteratorC iterator(size);
        SIO::QsbPointC points[4];
        SIO::QsbPointArrayIteratorC target(points);
        std::int32_t count = -5;
        EXPECT_EQ(reader.Read(iterator, target, count), 0u);
        EXPECT_EQ(count, size <= 4 ? static_cast<std::int32_t>(size) : -1) << size;
        EXPECT_EQ(dynamic_cast<SIO::QsbReaderIteratorImplC&>(*iterator.GetImpl()).GetCapacity(),
                  std::min(size, 4u));
    }
}

} // namespace
