// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The block list at sizes where it takes many pieces of memory.
#include "Sio/Sio_QsbBlockList.h"

#include <gtest/gtest.h>

namespace {

using SIO::QsbBlockC;
using SIO::QsbBlockListC;
using SIO::QsbHeaderEntriesT;
using SIO::QsbHeaderEntryC;

QsbHeaderEntriesT EntriesOf(std::uint32_t uiTag, std::size_t nEntries)
{
    return QsbHeaderEntriesT(nEntries, QsbHeaderEntryC::FromUInt32(7, uiTag, uiTag + 1));
}

TEST(QsbBlockRecords, BlocksAndRunsInTurnAreFoundByTheirIndices)
{
    QsbBlockListC blocks;
    std::uint64_t ullOffset = 0;
    for (std::uint32_t i = 0; i < 20000; ++i) {
        ASSERT_TRUE(blocks.AppendReadEmpty(ullOffset, 10 + i, 3));
        ullOffset += 36;
        ASSERT_TRUE(blocks.AppendRead(ullOffset, 100000 + i, 5, {}));
        ASSERT_TRUE(blocks.AppendRead(ullOffset + 17, 200000 + i, 5, {}));
        ullOffset += 34;
    }
    EXPECT_EQ(blocks.GetCount(), 100000u);
    for (std::uint32_t i = 0; i < 20000; i += 17) {
        const std::uint64_t ullFirst = 5 * std::uint64_t{i};
        for (std::uint64_t j = 0; j < 3; ++j)
            ASSERT_EQ(blocks.Get(ullFirst + j)->GetId(), 10 + i);
        ASSERT_EQ(blocks.Get(ullFirst + 3)->GetId(), 100000 + i);
        ASSERT_EQ(blocks.Get(ullFirst + 4)->GetId(), 200000 + i);
    }
    EXPECT_EQ(blocks.Find(200000 + 19999), 99999);
    EXPECT_EQ(blocks.Get(100000), nullptr);
}

TEST(QsbBlockRecords, TheFirstBlockOfAnIdentifierIsFoundAndForgottenWithIt)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 7, 5, {}));
    EXPECT_EQ(blocks.Find(1), -1);
    ASSERT_TRUE(blocks.AppendRead(17, 1, 5, {}));
    ASSERT_TRUE(blocks.AppendRead(34, 1, 5, {}));
    EXPECT_EQ(blocks.Find(1), 1);
    blocks.RemoveLast();
    EXPECT_EQ(blocks.Find(1), 1);
    blocks.RemoveLast();
    EXPECT_EQ(blocks.Find(1), -1);
    ASSERT_TRUE(blocks.AppendReadEmpty(17, 1, 4));
    EXPECT_EQ(blocks.Find(1), 1);
    blocks.Clear();
    EXPECT_EQ(blocks.Find(1), -1);
}

TEST(QsbBlockRecords, EntriesOfManyBlocksAreKeptApart)
{
    QsbBlockListC blocks;
    for (std::uint32_t i = 0; i < 60000; ++i) {
        // Among them some that are too many to be packed.
        ASSERT_TRUE(blocks.AppendRead(i, i, 0, EntriesOf(i, i % 10000 == 7 ? 300 : i % 5)));
    }
    const auto check = [](const QsbBlockC& block, std::uint64_t i) {
        EXPECT_EQ(block.GetEntryCount(), i % 10000 == 7 ? 300 : i % 5);
        for (const QsbHeaderEntryC& entry : block) {
            EXPECT_EQ(entry.GetTag(), i);
            EXPECT_EQ(entry.AsUInt32(), i + 1);
        }
        return !testing::Test::HasFailure();
    };
    blocks.ForEach(check);
    for (std::uint64_t i = 0; i < 60000; i += 11)
        ASSERT_TRUE(check(*blocks.Get(i), i));
    blocks.ForEach(check); // with those among them that have been asked for
}

TEST(QsbBlockRecords, AnEntryOfABlockThatWasReadCanChangeAndOthersBeAdded)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 7, 0, EntriesOf(30, 2)));
    ASSERT_TRUE(blocks.AppendRead(44, 8, 0, EntriesOf(31, 2)));
    QsbBlockC& block = *blocks.Get(0);
    block.ChangeEntry(30)->SetUInt32(99);
    block.SetSealed(false);
    for (std::uint32_t i = 0; i < 100; ++i)
        ASSERT_TRUE(block.AddEntry(QsbHeaderEntryC::FromUInt32(7, 40 + i, i)));
    EXPECT_EQ(block.GetHeaderBytes(), 102u * 16);
    EXPECT_EQ(block.FindEntry(30)->AsUInt32(), 99u);
    EXPECT_EQ(block.FindEntry(139)->AsUInt32(), 99u);
    EXPECT_TRUE(block.IsHeaderDirty());
    EXPECT_EQ(blocks.Get(1)->FindEntry(31)->AsUInt32(), 32u);
}

TEST(QsbBlockRecords, ARunThatShrankToNothingDoesNotCountAnyMore)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 9, 5, {}));
    ASSERT_TRUE(blocks.AppendReadEmpty(17, 7, 2));
    blocks.RemoveLast();
    blocks.RemoveLast();
    ASSERT_TRUE(blocks.AppendRead(17, 5, 5, {}));
    ASSERT_TRUE(blocks.AppendRead(34, 6, 5, {}));
    EXPECT_EQ(blocks.GetCount(), 3u);
    EXPECT_EQ(blocks.Get(1)->GetId(), 5u);
    EXPECT_EQ(blocks.Get(2)->GetId(), 6u);
}

TEST(QsbBlockRecords, MovingAListLeavesTheOtherEmpty)
{
    QsbBlockListC blocks;
    ASSERT_TRUE(blocks.AppendRead(0, 1, 0, EntriesOf(30, 2)));
    QsbBlockListC other = std::move(blocks);
    EXPECT_TRUE(blocks.IsEmpty());
    EXPECT_EQ(blocks.GetCount(), 0u);
    EXPECT_EQ(blocks.Find(1), -1);
    EXPECT_EQ(other.Find(1), 0);
    ASSERT_TRUE(blocks.AppendRead(0, 2, 0, EntriesOf(50, 2)));
    EXPECT_EQ(other.Get(0)->FindEntry(30)->AsUInt32(), 31u);
}

} // namespace
