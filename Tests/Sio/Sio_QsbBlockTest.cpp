// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Header entries, block records and the list of blocks, in memory.
#include "Sio/Sio_QsbBlockList.h"

#include "Support/QsbBytes.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using SIO::QsbBlockC;
using SIO::QsbBlockListC;
using SIO::QsbHeaderEntryC;

Support::BytesT BytesOf(const QsbHeaderEntryC& entry)
{
    return {entry.GetBytes(), entry.GetBytes() + 16};
}

TEST(QsbHeaderEntry, AThirtyTwoBitValueIsFollowedByFourZeroBytes)
{
    const auto entry = QsbHeaderEntryC::FromUInt32(7, 24, 0xA1B2C3D4);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(7, 24, std::uint64_t{0xA1B2C3D4}));
    EXPECT_EQ(entry.GetType(), 7u);
    EXPECT_EQ(entry.GetTag(), 24u);
    EXPECT_EQ(entry.AsByte(), 0xD4);
    EXPECT_EQ(entry.AsUInt32(), 0xA1B2C3D4u);
    EXPECT_EQ(entry.AsUInt64(), 0xA1B2C3D4u);
}

TEST(QsbHeaderEntry, ADoubleHasTypeCodeNine)
{
    const auto entry = QsbHeaderEntryC::FromDouble(26, -1.5);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(9, 26, -1.5));
    EXPECT_EQ(entry.AsDouble(), -1.5);
}

TEST(QsbHeaderEntry, ReplacingAValueKeepsTypeAndTag)
{
    auto entry = QsbHeaderEntryC::FromUInt32(1, 1, 0xFFFFFFFF);
    entry.SetByte(5);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(1, 1, std::uint64_t{0xFFFFFF05}));
    entry.SetUInt64(0x0102030405060708);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(1, 1, std::uint64_t{0x0102030405060708}));
    entry.SetUInt32(9);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(1, 1, std::uint64_t{0x0102030400000009}));
    entry.SetDouble(2.0);
    EXPECT_EQ(BytesOf(entry), Support::Bytes(1, 1, 2.0));
}

TEST(QsbBlock, ANewBlockIsNeitherSealedNorDirtyAndEmpty)
{
    QsbBlockListC blocks;
    const QsbBlockC& block = blocks.AppendNew(100, 7);
    EXPECT_FALSE(block.IsSealed());
    EXPECT_FALSE(block.IsHeaderDirty());
    EXPECT_EQ(block.GetOffset(), 100u);
    EXPECT_EQ(block.GetHeaderBytes(), 0u);
    EXPECT_EQ(block.GetDataBytes(), 0u);
    EXPECT_EQ(block.GetEndOffset(), 112u);
}

TEST(QsbBlock, AddingAnEntryAddsSixteenToTheHeaderAndMarksItDirty)
{
    QsbBlockC block(100, 7, 0);
    EXPECT_TRUE(block.AddEntry(QsbHeaderEntryC::FromUInt32(7, 24, 5)));
    EXPECT_TRUE(block.AddEntry(QsbHeaderEntryC::FromUInt32(7, 24, 6)));
    EXPECT_EQ(block.GetHeaderBytes(), 32u);
    EXPECT_TRUE(block.IsHeaderDirty());
    EXPECT_EQ(block.FindEntry(24)->AsUInt32(), 5u);
    EXPECT_EQ(block.FindEntry(25), nullptr);
}

TEST(QsbBlock, ASealedBlockTakesNoEntry)
{
    QsbBlockC block(100, 7, 0);
    block.SetSealed(true);
    EXPECT_FALSE(block.AddEntry(QsbHeaderEntryC::FromUInt32(7, 24, 5)));
    EXPECT_EQ(block.GetHeaderBytes(), 0u);
    EXPECT_FALSE(block.IsHeaderDirty());
}

TEST(QsbBlock, ChangingAnEntryMarksTheHeaderDirtyAlsoWhenSealed)
{
    QsbBlockC block(100, 7, 0);
    ASSERT_TRUE(block.AddEntry(QsbHeaderEntryC::FromUInt32(7, 24, 5)));
    block.SetSealed(true);
    block.SetHeaderDirty(false);
    EXPECT_EQ(block.ChangeEntry(99), nullptr);
    EXPECT_FALSE(block.IsHeaderDirty());
    block.ChangeEntry(24)->SetUInt32(6);
    EXPECT_TRUE(block.IsHeaderDirty());
    EXPECT_EQ(block.FindEntry(24)->AsUInt32(), 6u);
}

TEST(QsbBlockList, EndOffsetsBeyond4GiBDoNotWrap)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0xFFFFFFFF0, 1, 0xFFFFFFFF, {}));
    EXPECT_EQ(blocks.Last().GetEndOffset(), 0xFFFFFFFF0 + 12 + std::uint64_t{0xFFFFFFFF});
}

TEST(QsbBlockList, ARunOfEmptyBlocksHasManyIndicesAndIsToldOnce)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendReadEmpty(0, 5, 1000000000000));
    ASSERT_TRUE(blocks.AppendRead(12000000000000, 6, 3, {}));
    EXPECT_EQ(blocks.GetCount(), 1000000000001u);
    EXPECT_EQ(blocks.Get(999999999999)->GetId(), 5u);
    EXPECT_EQ(blocks.Get(999999999999)->GetOffset(), 999999999999u * 12);
    EXPECT_EQ(blocks.Get(1000000000000)->GetId(), 6u);
    EXPECT_EQ(blocks.Get(1000000000001), nullptr);
    EXPECT_EQ(blocks.Find(6), 1000000000000);
}

std::vector<std::uint64_t> RunLengthsOf(const QsbBlockListC& blocks)
{
    std::vector<std::uint64_t> lengths;
    blocks.ForEach([&](const QsbBlockC& block, std::uint64_t) {
        lengths.push_back(block.GetRunLength());
        return true;
    });
    return lengths;
}

TEST(QsbBlockList, BlocksWithHeaderOrDataOrAnotherIdentifierJoinNoRun)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 5, 0, {}));
    ASSERT_TRUE(blocks.AppendRead(12, 5, 0, {}));
    ASSERT_TRUE(blocks.AppendRead(24, 5, 7, {}));
    ASSERT_TRUE(blocks.AppendRead(43, 5, 0, {}));
    ASSERT_TRUE(blocks.AppendRead(55, 5, 0, {QsbHeaderEntryC()}));
    ASSERT_TRUE(blocks.AppendRead(83, 5, 0, {}));
    ASSERT_TRUE(blocks.AppendRead(95, 4, 0, {}));
    ASSERT_TRUE(blocks.AppendRead(107, 5, 0, {}));
    EXPECT_EQ(RunLengthsOf(blocks), (std::vector<std::uint64_t>{2, 1, 1, 1, 1, 1, 1}));
}

TEST(QsbBlockList, IdenticalBlocksThatHoldSomethingAreToldOneByOne)
{
    QsbBlockListC blocks;
    for (std::uint64_t i = 0; i < 3; ++i)
        ASSERT_TRUE(blocks.AppendRead(17 * i, 5, 5, {}));
    EXPECT_EQ(RunLengthsOf(blocks), (std::vector<std::uint64_t>{1, 1, 1}));
}

TEST(QsbBlockList, ABlockOfARunChangesAlone)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendReadEmpty(100, 5, 10));
    QsbBlockC& block = *blocks.Get(6);
    EXPECT_EQ(block.GetOffset(), 100u + 6 * 12);
    EXPECT_EQ(block.GetRunLength(), 1u);
    EXPECT_TRUE(block.IsSealed());
    EXPECT_FALSE(block.IsHeaderDirty());
    block.SetHeaderDirty(true);
    EXPECT_EQ(blocks.Get(6), &block);
    EXPECT_FALSE(blocks.Get(5)->IsHeaderDirty());
    EXPECT_FALSE(blocks.Get(7)->IsHeaderDirty());
    EXPECT_EQ(blocks.GetCount(), 10u);
    EXPECT_EQ(RunLengthsOf(blocks), (std::vector<std::uint64_t>{5, 1, 1, 1, 2}));
}

TEST(QsbBlockList, AllThatHaveChangedAreAmongTheSingleOnes)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendReadEmpty(0, 5, 10));
    blocks.AppendNew(120, 6);
    blocks.Get(3)->SetHeaderDirty(true);
    std::vector<std::uint64_t> indices;
    for (const auto& [index, block] : blocks.GetSingleBlocks())
        indices.push_back(index);
    EXPECT_EQ(indices, (std::vector<std::uint64_t>{3, 10}));
}

TEST(QsbBlockList, TheEndOffsetIsThatOfTheLastBlock)
{
    QsbBlockListC blocks;
    EXPECT_EQ(blocks.GetEndOffset(), 0u);
    ASSERT_TRUE(blocks.AppendReadEmpty(0, 5, 10));
    EXPECT_EQ(blocks.GetEndOffset(), 120u);
    blocks.Last().SetDataBytes(7);
    EXPECT_EQ(blocks.GetEndOffset(), 127u);
    blocks.AppendNew(127, 6);
    EXPECT_EQ(blocks.GetEndOffset(), 139u);
    blocks.RemoveLast();
    blocks.RemoveLast();
    EXPECT_EQ(blocks.GetEndOffset(), 108u);
}

TEST(QsbBlockList, TheEndOffsetIsRightBehindAnyBlockThatWasRemoved)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 7, 5, {}));
    ASSERT_TRUE(blocks.AppendRead(17, 8, 0, SIO::QsbHeaderEntriesT(300)));
    ASSERT_TRUE(blocks.AppendRead(4829, 9, 5, {}));
    EXPECT_EQ(blocks.GetEndOffset(), 4846u);
    blocks.RemoveLast();
    EXPECT_EQ(blocks.GetEndOffset(), 4829u);
    blocks.RemoveLast();
    EXPECT_EQ(blocks.GetEndOffset(), 17u);
    blocks.RemoveLast();
    EXPECT_EQ(blocks.GetEndOffset(), 0u);
}

TEST(QsbBlockList, ABlockBehindAGapIsWhereItWasPut)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 7, 5, {}));
    ASSERT_TRUE(blocks.AppendRead(100, 7, 5, {}));
    EXPECT_EQ(blocks.Get(1)->GetOffset(), 100u);
    EXPECT_EQ(blocks.GetEndOffset(), 117u);
}

TEST(QsbBlockList, ABlockThatWasNotPackedLeavesNothingBehind)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 7, 0, SIO::QsbHeaderEntriesT(300)));
    std::vector<char> bytes(5000, 0);
    bytes[5] = 0x12; // a header of 4608 bytes
    std::uint64_t offset = 4812;
    ASSERT_TRUE(blocks.AppendShown(bytes.data(), bytes.size(), offset));
    EXPECT_EQ(offset, 4812u);
    blocks.RemoveLast();
    EXPECT_TRUE(blocks.IsEmpty());
    blocks.ForEach([](const QsbBlockC&, std::uint64_t) {
        ADD_FAILURE();
        return true;
    });
}

// Of what is left below the limit, room for a chunk's record alone and for its memory alone is not room for
// both.
TEST(QsbBlockList, TheLimitHoldsWhereItIsAimedAt)
{
    for (std::uint64_t left = 0; left < 64; left += 8) {
        QsbBlockListC blocks;
        ASSERT_TRUE(blocks.AppendRead(0, 9, 0, {QsbHeaderEntryC()}));
        constexpr std::uint64_t most = (std::uint64_t{2} << 20) + 80;
        std::uint64_t entries = QsbBlockListC::s_ullMemoryLimit / 16;
        while (!blocks.HasRoomFor(entries))
            --entries;
        ASSERT_TRUE(blocks.AppendRead(28, 9, 0, SIO::QsbHeaderEntriesT(entries - (most - left) / 16)));
        std::uint64_t offset = blocks.GetEndOffset();
        for (std::uint32_t i = 0; i < 1000000 && blocks.AppendRead(offset, 100 + 7 * i, i % 3, {}); ++i)
            offset = blocks.GetEndOffset();
        EXPECT_FALSE(blocks.HasRoomFor(std::uint64_t{1} << 24)) << left;
    }
}

TEST(QsbBlockList, RemovingTheLastBlockShortensARunByOne)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendReadEmpty(100, 5, 3));
    blocks.RemoveLast();
    EXPECT_EQ(blocks.GetCount(), 2u);
    EXPECT_EQ(blocks.Last().GetEndOffset(), 124u);
    blocks.RemoveLast();
    blocks.RemoveLast();
    EXPECT_TRUE(blocks.IsEmpty());
    EXPECT_EQ(blocks.Find(5), -1);
}

TEST(QsbBlockList, RefusesALongHeaderThatWouldPassItsMemoryLimit)
{
    QsbBlockListC blocks;
    constexpr std::uint64_t most = QsbBlockListC::s_ullMemoryLimit / 16;
    EXPECT_TRUE(blocks.HasRoomFor(most - 16));
    EXPECT_FALSE(blocks.HasRoomFor(most));
}

TEST(QsbBlockList, LongHeadersCountAgainstTheLimitUntilItIsCleared)
{
    QsbBlockListC blocks;
    constexpr std::uint64_t entries = QsbBlockListC::s_ullMemoryLimit / 16 - 16;
    ASSERT_TRUE(blocks.AppendRead(0, 1, 0, SIO::QsbHeaderEntriesT(1000)));
    EXPECT_FALSE(blocks.HasRoomFor(entries - 500));
    blocks.RemoveLast();
    EXPECT_FALSE(blocks.HasRoomFor(entries - 500));
    blocks.Clear();
    EXPECT_TRUE(blocks.HasRoomFor(entries));
}

TEST(QsbBlockList, TakesBlocksUpToTheLimitAndNoneBeyond)
{
    // Each with entries of another kind, so that none can be told by another.
    QsbBlockListC blocks;
    std::uint32_t count = 0;
    SIO::QsbHeaderEntriesT entries(256);
    const auto append = [&] {
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = QsbHeaderEntryC::FromUInt32(count, static_cast<std::uint32_t>(i), count);
        return blocks.AppendRead(std::uint64_t{4108} * count, 9, 0, entries);
    };
    while (count < QsbBlockListC::s_ullMemoryLimit / 4100 && append())
        ++count;
    EXPECT_EQ(blocks.GetCount(), count);
    EXPECT_GT(count, QsbBlockListC::s_ullMemoryLimit / 4200);
    EXPECT_LT(count, QsbBlockListC::s_ullMemoryLimit / 4100);
    EXPECT_FALSE(append());
    EXPECT_EQ(blocks.GetCount(), count);
    EXPECT_EQ(blocks.Last().FindEntry(255)->AsUInt32(), count - 1);
}

} // namespace
