// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Files of many small blocks, which are packed in memory: read, written further, and checked against the
// file's own bytes.
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "WriteTest.h"

#include <cstring>
#include <random>

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

/// A file of empty blocks with these identifiers behind the file header.
QsbBytes FileOf(const std::vector<std::uint32_t>& ids)
{
    QsbBytes file;
    for (const std::uint32_t id : ids)
        file.Block(id);
    return file;
}

class QsbPackedFile : public SioTest::WriteTest
{
protected:
    const SIO::QsbBlockListC& Blocks() { return scan.container.GetBlocks(); }

    /// Expects that the list holds the blocks that the bytes say, one after another.
    void ExpectBlocksOf(const BytesT& bytes, const SIO::QsbBlockListC& blocks)
    {
        std::size_t offset = 0;
        std::uint64_t count = 0;
        const auto expectNext = [&](const SIO::QsbBlockC& block, std::uint64_t index) {
            EXPECT_EQ(index, count);
            EXPECT_EQ(block.GetOffset(), offset);
            for (std::uint64_t i = 0; i < block.GetRunLength(); ++i, ++count) {
                EXPECT_EQ(block.GetId(), Support::NumberAt(bytes, offset, 4)) << index;
                EXPECT_EQ(block.GetHeaderBytes(), Support::NumberAt(bytes, offset + 4, 4)) << index;
                EXPECT_EQ(block.GetDataBytes(), Support::NumberAt(bytes, offset + 8, 4)) << index;
                const BytesT header(bytes.begin() + static_cast<std::ptrdiff_t>(offset) + 12,
                                    bytes.begin() + static_cast<std::ptrdiff_t>(offset) + 12 +
                                        block.GetHeaderBytes());
                if (!header.empty()) {
                    EXPECT_EQ(std::memcmp(block.begin(), header.data(), header.size()), 0) << index;
                }
                offset += 12 + block.GetHeaderBytes() + block.GetDataBytes();
            }
            return !HasFailure();
        };
        blocks.ForEach(expectNext);
        EXPECT_EQ(offset, bytes.size());
        EXPECT_EQ(blocks.GetCount(), count);
        for (std::uint64_t i = 0; i < blocks.GetCount(); i += 1 + blocks.GetCount() / 100)
            ASSERT_NE(blocks.Get(i), nullptr);
        offset = count = 0; // and with single ones among the packed
        blocks.ForEach(expectNext);
        EXPECT_EQ(blocks.GetCount(), count);
    }
};

/// A chain of empty blocks, alike and unlike, and of others now and then.
BytesT MixedChain(unsigned int seed)
{
    std::mt19937 engine(seed);
    const auto random = [&] { return static_cast<std::uint32_t>(engine()); };
    BytesT bytes = QsbBytes().Get();
    const auto put = [&](std::uint32_t id, std::uint32_t header, std::uint32_t data) {
        const BytesT head = Bytes(id, header, data);
        bytes.insert(bytes.end(), head.begin(), head.end());
        for (std::uint32_t i = 0; i < header; ++i)
            bytes.push_back(static_cast<char>(i % 16 < 8 || id % 3 == 0 ? i / 16 : random()));
        bytes.insert(bytes.end(), data, 0);
    };
    while (bytes.size() < 1000000) {
        const std::uint32_t count = random() % 8 == 0 ? random() % 20000 : random() % 40;
        const std::uint32_t what = random() % 13;
        for (std::uint32_t i = 0; i < count; ++i) {
            if (what < 4)
                put(random(), 0, 0);
            else if (what == 4)
                put(100 + i / 5, 0, 0);
            else if (what == 5)
                put(7, 0, 0);
            else if (what == 6)
                put(random() % 5, 0, 0);
            else if (what == 7)
                put(8, 16 * (i % 2), i % 30);
            else if (what == 8)
                put(random(), 16 * (random() % 4), random() % 50);
            else if (what == 9)
                put(9, 16, 20);
            else if (what == 10)
                put(random(), 32, 5);
            else if (what == 11)
                put(random(), 0, i % 2);
            else
                put(random() % 3, 16 * (random() % 300), 0);
        }
    }
    return bytes;
}

TEST_F(QsbPackedFile, AMixedChainIsWalkedAsItsBytesSay)
{
    for (unsigned int seed = 0; seed < 10; ++seed) {
        const BytesT bytes = MixedChain(seed);
        ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", bytes))) << seed;
        ExpectBlocksOf(bytes, Blocks());
        EXPECT_TRUE(scan.container.Close());
    }
}

TEST_F(QsbPackedFile, SingleEmptyBlocksBetweenOthersAreWalkedAsTheBytesSay)
{
    QsbBytes file;
    for (std::uint32_t i = 0; i < 50000; ++i) {
        file.Block(i % 7);
        if (i % 12 == 0) file.Entry(7, 30, i);
        if (i % 2 == 0) file.Data(BytesT(1 + i % 40));
        if (i % 1000 == 0) file.Block(200 + i).Block(201 + i);
    }
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", file)));
    ExpectBlocksOf(file.Get(), Blocks());
    EXPECT_EQ(Blocks().Find(3), 6);
    EXPECT_TRUE(scan.container.Close());
}

TEST_F(QsbPackedFile, PointsBehindUnlikeEmptyBlocksAreRead)
{
    QsbBytes file = FileOf({9, 3, 10, 11});
    file.Block(1).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(3));
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", file)));
    EXPECT_EQ(Blocks().Find(1), 5);
    EXPECT_EQ(scan.Read(10), 3u);
    EXPECT_EQ(Support::Slice(scan.buffer, 0, 42), Support::SmallPoints(3));
}

TEST_F(QsbPackedFile, AnEmptyBlockAmongOthersIsAScanWithoutPoints)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", FileOf({9, 10, 3, 11, 12}))));
    ASSERT_TRUE(scan.Interpret(4));
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 0u);
    EXPECT_EQ(scan.Read(10), 0u);
    ASSERT_TRUE(scan.Interpret());
    EXPECT_EQ(scan.strategy.GetData()->m_llBlockIndex, 3);
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 0u);
}

TEST_F(QsbPackedFile, AHeadThatIsCutOffBehindUnlikeEmptyBlocksIsRefused)
{
    for (const std::size_t rest : {1u, 4u, 11u})
        EXPECT_FALSE(scan.Open(folder.Write("scan.qsb", FileOf({9, 10, 11}).Raw(BytesT(rest))))) << rest;
    EXPECT_TRUE(scan.Open(folder.Write("scan.qsb", FileOf({9, 10, 11}).Raw(BytesT(12)))));
}

TEST_F(QsbPackedFile, TerabytesOfZerosBehindUnlikeEmptyBlocksArePassed)
{
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < 1000; ++i)
        ids.push_back(50 + i);
    const BytesT front = FileOf(ids).Get();
    const std::uint64_t zeros = std::uint64_t{12} * 600000000000; // 7 TB
    if (!Support::Resize(folder.Write("scan.qsb", front), front.size() + zeros))
        GTEST_SKIP() << "no files of 7 TB here";
    std::FILE* stream = BSS::HAL::OpenStream(BSS::HAL::WidePath(Path()), "rb");
    std::uint64_t next = 0;
    const bool known = BSS::HAL::NextStoredOffset(stream, front.size() + 65536, next);
    std::fclose(stream);
    if (!known || next < front.size() + zeros) GTEST_SKIP() << "holes must be read here";
    ASSERT_TRUE(scan.Open(Path()));
    EXPECT_EQ(Blocks().GetCount(), 600000001001u);
    EXPECT_EQ(Blocks().Get(1000)->GetId(), 1049u);
    EXPECT_EQ(Blocks().Get(1001)->GetId(), 0u);
}

TEST_F(QsbPackedFile, ItsLastBlockGrowsAlone)
{
    Reopen(FileOf({9, 10, 11}));
    const BytesT bytes{1, 2, 3};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(3, 0, 3, bytes.data()));
    EXPECT_EQ(scan.container.AppendBlock(12), 4);
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(4, 0, 1, bytes.data()));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), FileOf({9, 10, 11}).Data({1, 2, 3}).Block(12).Data({1}).Get());
}

TEST_F(QsbPackedFile, ABlockIsAppendedBehindItsLast)
{
    Reopen(FileOf({9, 10, 11}));
    EXPECT_EQ(scan.container.AppendBlock(9), 4);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), FileOf({9, 10, 11, 9}).Get());
}

TEST_F(QsbPackedFile, OneOfItsBlocksBeforeTheLastTakesNoBytes)
{
    const QsbBytes file = FileOf({9, 10, 11});
    Reopen(file);
    const BytesT bytes{1};
    EXPECT_TRUE(scan.container.WriteBytesIntoBlock(2, 0, 0, bytes.data()));
    EXPECT_FALSE(scan.container.WriteBytesIntoBlock(2, 0, 1, bytes.data()));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), file.Get());
}

TEST_F(QsbPackedFile, RewritingAHeadOfItWritesWhatIsThere)
{
    const QsbBytes file = FileOf({9, 10, 11, 12});
    Reopen(file);
    Support::WriteAt(Path(), 28 + 24, BytesT(12, 0xEE));
    EXPECT_TRUE(scan.container.RewriteBlockHeader(3));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), file.Get());
}

TEST_F(QsbPackedFile, PointsWrittenIntoItsLastBlockAreItsPoints)
{
    // Without entries a block has double positions alone.
    Reopen(FileOf({9, 10, 3}));
    ASSERT_TRUE(scan.Interpret());
    SioTest::PlainSource source = SioTest::SmallSource(2);
    EXPECT_TRUE(scan.container.WritePoints(source, 2, scan.strategy));
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 2u);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), FileOf({9, 10, 3}).Data(Bytes(0.0, 0.25, 0.5, 1.0, 1.25, 1.5)).Get());
}

TEST_F(QsbPackedFile, PointsDoNotGoIntoOneOfItsBlocksBeforeTheLast)
{
    const QsbBytes file = FileOf({9, 1, 10, 11});
    Reopen(file);
    ASSERT_TRUE(scan.Interpret());
    SioTest::PlainSource source = SioTest::SmallSource(2);
    EXPECT_FALSE(scan.container.WritePoints(source, 2, scan.strategy));
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), file.Get());
}

TEST_F(QsbPackedFile, DroppingItsLastBlockLeavesTheOthers)
{
    Reopen(FileOf({9, 10, 11}));
    EXPECT_TRUE(scan.container.DropLastBlock());
    EXPECT_EQ(Blocks().GetCount(), 3u);
    EXPECT_EQ(Blocks().Get(1)->GetId(), 9u);
    EXPECT_EQ(Blocks().Get(2)->GetId(), 10u);
    EXPECT_EQ(Block(2).GetOffset(), 28u + 12);
    EXPECT_TRUE(Block(2).IsHeaderDirty());
    EXPECT_FALSE(Block(1).IsHeaderDirty());
}

} // namespace
