// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Empty blocks that follow one another with identifiers of their own share a record: whatever is asked of the
// list is answered as if each block had one.
#include "Sio/Sio_QsbBlockList.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using SIO::QsbBlockC;
using SIO::QsbBlockListC;

/// What ForEach tells of a block, or of several identical ones.
struct ToldT
{
    std::uint64_t index;
    std::uint32_t id;
    std::uint64_t count;
    std::uint64_t offset;

    bool operator==(const ToldT&) const = default;
};

std::vector<ToldT> TellAll(const QsbBlockListC& blocks)
{
    std::vector<ToldT> told;
    blocks.ForEach([&](const QsbBlockC& block, std::uint64_t index) {
        told.push_back({index, block.GetId(), block.GetRunLength(), block.GetOffset()});
        return true;
    });
    return told;
}

/// A list of empty blocks with these identifiers, appended one by one.
QsbBlockListC ListOf(const std::vector<std::uint32_t>& ids)
{
    QsbBlockListC blocks;
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_TRUE(blocks.AppendReadEmpty(12 * i, ids[i], 1));
    return blocks;
}

/// Expects each block to be where it was put.
void ExpectBlocks(const QsbBlockListC& blocks, const std::vector<std::uint32_t>& ids)
{
    ASSERT_EQ(blocks.GetCount(), ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        ASSERT_EQ(blocks.GetId(i), ids[i]) << i;
        ASSERT_EQ(blocks.GetOffset(i), 12 * i) << i;
    }
    EXPECT_EQ(blocks.Get(ids.size()), nullptr);
    EXPECT_TRUE(ids.empty() || blocks.Last().GetEndOffset() == 12 * ids.size());
}

TEST(QsbBlockStretch, UnlikeEmptyBlocksShareARecordAndKeepTheirIdentifiersAndOffsets)
{
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < 100000; ++i)
        ids.push_back(0xFFFFFFFF - 7 * i);
    const QsbBlockListC blocks = ListOf(ids);
    EXPECT_EQ(blocks.GetRecords().size(), 1u);
    ExpectBlocks(blocks, ids);
    EXPECT_EQ(blocks.Get(99999)->GetDataBytes(), 0u);
    EXPECT_EQ(blocks.Get(99999)->GetEntryCount(), 0u);
    EXPECT_TRUE(blocks.Get(99999)->IsSealed());
    EXPECT_FALSE(blocks.Get(99999)->IsHeaderDirty());
}

TEST(QsbBlockStretch, ManyAtATimeAreThoseOneByOne)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendReadEmpty(0, 9, 3));
    ASSERT_TRUE(blocks.CanTakeStretch());
    const std::uint32_t ids[] = {10, 11, 11, 12};
    ASSERT_TRUE(blocks.AppendReadStretch(ids, 4));
    ASSERT_TRUE(blocks.CanTakeStretch());
    ASSERT_TRUE(blocks.AppendReadStretch(ids, 2));
    EXPECT_EQ(blocks.GetRecords().size(), 1u);
    ExpectBlocks(blocks, {9, 9, 9, 10, 11, 11, 12, 10, 11});
}

TEST(QsbBlockStretch, NoneGoesOnBehindABlockThatHoldsSomethingOrALongRun)
{
    QsbBlockListC blocks;
    EXPECT_FALSE(blocks.CanTakeStretch());
    ASSERT_TRUE(blocks.AppendRead(0, 9, 5, {}));
    EXPECT_FALSE(blocks.CanTakeStretch());
    ASSERT_TRUE(blocks.AppendRead(17, 9, 0, {SIO::QsbHeaderEntryC()}));
    EXPECT_FALSE(blocks.CanTakeStretch());
    ASSERT_TRUE(blocks.AppendReadEmpty(45, 9, 9));
    EXPECT_TRUE(blocks.CanTakeStretch());
    ASSERT_TRUE(blocks.AppendReadEmpty(45 + 9 * 12, 9, 1));
    EXPECT_FALSE(blocks.CanTakeStretch());
}

TEST(QsbBlockStretch, ALongRunBehindAStretchIsARecordHoweverItComes)
{
    for (const std::uint64_t atOnce : {1u, 3u, 9u, 10u, 500u}) {
        QsbBlockListC blocks = ListOf({20, 21, 22});
        std::vector<std::uint32_t> ids{20, 21, 22};
        while (ids.size() < 1503) {
            ASSERT_TRUE(blocks.AppendReadEmpty(12 * ids.size(), 22, atOnce));
            ids.insert(ids.end(), atOnce, 22);
        }
        EXPECT_EQ(blocks.GetRecords().size(), 2u) << atOnce;
        ExpectBlocks(blocks, ids);
    }
}

TEST(QsbBlockStretch, ARunThatBeginsAStretchBecomesPartOfItWhenItIsShort)
{
    ExpectBlocks(ListOf({5, 5, 5, 6, 6, 7}), {5, 5, 5, 6, 6, 7});
    EXPECT_EQ(ListOf({5, 5, 5, 6, 6, 7}).GetRecords().size(), 1u);
    std::vector<std::uint32_t> ids(10, 5);
    ids.insert(ids.end(), {6, 7});
    ExpectBlocks(ListOf(ids), ids);
    EXPECT_EQ(ListOf(ids).GetRecords().size(), 2u);
}

TEST(QsbBlockStretch, TheFirstPointCloudOfAKindBeginsARecord)
{
    const QsbBlockListC blocks = ListOf({50, 51, 3, 52, 1, 3, 1, 53});
    EXPECT_EQ(blocks.Find(3), 2);
    EXPECT_EQ(blocks.Find(1), 4);
    EXPECT_EQ(blocks.Find(2), -1);
    EXPECT_EQ(blocks.Get(2)->GetId(), 3u);
    EXPECT_EQ(blocks.Get(2)->GetOffset(), 24u);
    EXPECT_EQ(blocks.Get(4)->GetId(), 1u);
    EXPECT_EQ(blocks.Get(4)->GetOffset(), 48u);
    EXPECT_EQ(blocks.GetRecords().size(), 3u);
    ExpectBlocks(blocks, {50, 51, 3, 52, 1, 3, 1, 53});
}

TEST(QsbBlockStretch, ABlockInItIsFoundByItsIdentifier)
{
    const QsbBlockListC blocks = ListOf({50, 51, 1, 52, 51, 53});
    EXPECT_EQ(blocks.Find(50), 0);
    EXPECT_EQ(blocks.Find(51), 1);
    EXPECT_EQ(blocks.Find(53), 5);
    EXPECT_EQ(blocks.Find(54), -1);
}

TEST(QsbBlockStretch, IdenticalOnesThatFollowOneAnotherAreToldOnce)
{
    QsbBlockListC blocks = ListOf({50, 51, 51, 52, 1, 1, 53});
    ASSERT_TRUE(blocks.AppendRead(84, 53, 5, {}));
    const std::vector<ToldT> expected{{0, 50, 1, 0}, {1, 51, 2, 12}, {3, 52, 1, 36},
                                      {4, 1, 2, 48}, {6, 53, 1, 72}, {7, 53, 1, 84}};
    EXPECT_EQ(TellAll(blocks), expected);
}

TEST(QsbBlockStretch, TellingEndsWhenItIsTold)
{
    int told = 0;
    ListOf({50, 51, 52, 53}).ForEach([&](const QsbBlockC&, std::uint64_t) { return ++told < 2; });
    EXPECT_EQ(told, 2);
}

TEST(QsbBlockStretch, ItsLastBlockCanGetARecordOfItsOwn)
{
    QsbBlockListC blocks = ListOf({50, 51, 52});
    QsbBlockC& last = blocks.IsolateLast();
    EXPECT_EQ(last.GetId(), 52u);
    EXPECT_EQ(last.GetOffset(), 24u);
    EXPECT_TRUE(last.IsSealed());
    EXPECT_EQ(&blocks.IsolateLast(), &last);
    last.SetSealed(false);
    EXPECT_TRUE(last.AddEntry(SIO::QsbHeaderEntryC::FromUInt32(7, 30, 5)));
    last.SetDataBytes(4);
    EXPECT_EQ(blocks.AppendNew(24 + 12 + 16 + 4, 60).GetId(), 60u);
    EXPECT_EQ(blocks.Get(2), &last);
    EXPECT_EQ(blocks.GetId(1), 51u);
    EXPECT_EQ(blocks.GetId(2), 52u);
    EXPECT_EQ(blocks.GetId(3), 60u);
    EXPECT_EQ(blocks.Find(52), 2);
    EXPECT_EQ(blocks.GetCount(), 4u);
}

TEST(QsbBlockStretch, OneThatShrankToASingleBlockIsAnOrdinaryBlock)
{
    QsbBlockListC blocks = ListOf({50, 51, 52});
    blocks.RemoveLast();
    blocks.RemoveLast();
    QsbBlockC& last = blocks.IsolateLast();
    EXPECT_FALSE(last.IsStretch());
    EXPECT_TRUE(last.IsSealed());
    last.SetSealed(false);
    EXPECT_TRUE(last.AddEntry(SIO::QsbHeaderEntryC::FromUInt32(7, 30, 5)));
    EXPECT_EQ(last.GetHeaderBytes(), 16u);
    blocks.AppendNew(28, 60);
    EXPECT_EQ(blocks.GetId(0), 50u);
    EXPECT_EQ(blocks.GetId(1), 60u);
}

TEST(QsbBlockStretch, RemovingItsBlocksOneByOneGivesTheirMemoryBack)
{
    const std::uint64_t before = QsbBlockListC::s_ullMemoryLimit / 16 - 6;
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.HasRoomFor(before));
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < 100; ++i) {
        ASSERT_TRUE(blocks.AppendReadEmpty(12 * i, 70 + i, 1));
        ids.push_back(70 + i);
    }
    EXPECT_FALSE(blocks.HasRoomFor(before));
    for (; !ids.empty(); ids.pop_back()) {
        ExpectBlocks(blocks, ids);
        blocks.RemoveLast();
    }
    EXPECT_TRUE(blocks.IsEmpty());
    EXPECT_TRUE(blocks.HasRoomFor(before));
}

TEST(QsbBlockStretch, ItsIdentifiersCountAgainstTheLimit)
{
    QsbBlockListC blocks = ListOf({50, 51});
    const std::vector<std::uint32_t> ids{10, 11, 12, 13, 14, 15, 16, 17};
    std::vector<std::uint32_t> many;
    while (many.size() < 1 << 20)
        many.insert(many.end(), ids.begin(), ids.end());
    std::uint64_t count = 2;
    for (; blocks.AppendReadStretch(many.data(), many.size()); count += many.size()) {
    }
    // One by one it is filled to the last byte, as it would be by many at once.
    for (; blocks.AppendReadEmpty(12 * count, ids[count % ids.size()], 1); ++count) {
    }
    EXPECT_EQ(blocks.GetCount(), count);
    EXPECT_EQ(sizeof(QsbBlockC) + 16 + 4 * count, QsbBlockListC::s_ullMemoryLimit);
    EXPECT_FALSE(blocks.AppendReadStretch(ids.data(), 1));
    EXPECT_FALSE(blocks.AppendReadEmpty(12 * count, 18, 8));
    EXPECT_EQ(blocks.GetCount(), count);
}

TEST(QsbBlockStretch, TakesLessThanARecordForEachBlock)
{
    // As many as would pass the limit with a record each.
    QsbBlockListC blocks;
    const std::uint64_t count = QsbBlockListC::s_ullMemoryLimit / sizeof(QsbBlockC) + 1000;
    for (std::uint64_t i = 0; i < count; ++i)
        ASSERT_TRUE(blocks.AppendReadEmpty(12 * i, static_cast<std::uint32_t>(100 + i), 1));
    EXPECT_EQ(blocks.GetCount(), count);
    EXPECT_EQ(blocks.GetId(count - 1), 100 + count - 1);
}

TEST(QsbBlockStretch, MovingAListTakesItsStretchesAlong)
{
    QsbBlockListC blocks = ListOf({50, 51, 52});
    const QsbBlockListC other = std::move(blocks);
    ExpectBlocks(other, {50, 51, 52});
    ExpectBlocks(blocks, {});
    ASSERT_TRUE(blocks.AppendReadEmpty(0, 60, 1));
    ASSERT_TRUE(blocks.AppendReadEmpty(12, 61, 1));
    ExpectBlocks(blocks, {60, 61});
}

TEST(QsbBlockStretch, AnyOrderOfAppendingAndRemovingIsThatOfAPlainList)
{
    for (unsigned int seed = 0; seed < 50; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
        QsbBlockListC blocks;
        std::vector<ToldT> plain; // block by block
        for (int step = 0; step < 400; ++step) {
            const std::uint64_t offset =
                plain.empty() ? 0 : plain.back().offset + plain.back().count; // count: bytes here
            const std::uint32_t id = below(4) == 0 ? below(6) : 100 + below(4);
            const std::uint32_t what = below(20);
            if (what == 0) {
                ASSERT_TRUE(blocks.AppendRead(offset, id, 7, {}));
                plain.push_back({plain.size(), id, 19, offset});
            } else if (what < 3 && !plain.empty()) {
                blocks.RemoveLast();
                plain.pop_back();
            } else {
                const std::uint32_t length = what == 4 ? 1 + below(30) : 1 + below(3);
                ASSERT_TRUE(blocks.AppendReadEmpty(offset, id, length));
                for (std::uint32_t i = 0; i < length; ++i)
                    plain.push_back({plain.size(), id, 12, offset + 12 * i});
            }
            ASSERT_EQ(blocks.GetCount(), plain.size());
        }
        for (const ToldT& block : plain) {
            ASSERT_EQ(blocks.GetId(block.index), block.id) << seed << ' ' << block.index;
            ASSERT_EQ(blocks.GetOffset(block.index), block.offset) << seed << ' ' << block.index;
            ASSERT_EQ(blocks.Get(block.index)->GetDataBytes(), block.count - 12);
        }
        for (std::uint32_t id = 0; id < 110; ++id) {
            const auto it =
                std::find_if(plain.begin(), plain.end(), [&](const ToldT& block) { return block.id == id; });
            const std::int64_t first = it == plain.end() ? -1 : it - plain.begin();
            ASSERT_EQ(blocks.Find(id), first) << seed << ' ' << id;
            if (first >= 0 && (id == 1 || id == 3)) {
                ASSERT_EQ(blocks.Get(it->index)->GetOffset(), it->offset) << seed << ' ' << id;
            }
        }
        std::uint64_t told = 0;
        for (const ToldT& run : TellAll(blocks)) {
            ASSERT_EQ(run.index, told);
            ASSERT_EQ(run.offset, plain[told].offset);
            ASSERT_EQ(run.id, plain[told].id);
            told += run.count;
        }
        ASSERT_EQ(told, plain.size());
    }
}

} // namespace
