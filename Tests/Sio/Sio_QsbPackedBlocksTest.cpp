// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Blocks that were read are packed: whatever is asked of the list is answered as if each were kept as it is.
#include "Sio/Sio_QsbBlockList.h"

#include "Sio/Sio_LittleEndian.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using SIO::QsbBlockC;
using SIO::QsbBlockListC;
using SIO::QsbHeaderEntriesT;
using SIO::QsbHeaderEntryC;

/// A block, and the bytes of its entries.
struct PlainT
{
    std::uint64_t offset = 0;
    std::uint32_t id = 0;
    std::uint32_t data = 0;
    std::string entries;

    std::uint64_t End() const { return offset + 12 + entries.size() + data; }
    bool operator==(const PlainT&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const PlainT& block)
{
    return stream << "block " << block.id << " at " << block.offset << ", " << block.entries.size() / 16
                  << " entries, " << block.data << " bytes of data";
}

PlainT PlainOf(const QsbBlockC& block)
{
    std::string entries;
    for (const QsbHeaderEntryC& entry : block)
        entries.append(entry.GetBytes(), 16);
    return {block.GetOffset(), block.GetId(), block.GetDataBytes(), entries};
}

std::string EntryOf(std::uint32_t type, std::uint32_t tag, std::uint64_t value)
{
    QsbHeaderEntryC entry = QsbHeaderEntryC::FromUInt32(type, tag, 0);
    entry.SetUInt64(value);
    return {entry.GetBytes(), 16};
}

class QsbPackedBlocks : public testing::Test
{
protected:
    /// A number from 0 to below `end`.
    std::uint32_t Below(std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); }

    /// Adds a block to the file.
    void Put(std::uint32_t id, std::uint32_t data, const std::string& entries = {})
    {
        char head[12];
        SIO::StoreLittleEndian(head, id);
        SIO::StoreLittleEndian(head + 4, static_cast<std::uint32_t>(entries.size()));
        SIO::StoreLittleEndian(head + 8, data);
        plain.push_back({file.size(), id, data, entries});
        file.append(head, 12).append(entries).append(data, 'd');
    }

    /// Shows the file to the list, so many bytes at a time.
    void Append(std::size_t window = 100000)
    {
        std::uint64_t offset = 0;
        for (std::size_t shown = window; offset < file.size();) {
            const std::uint64_t before = offset;
            const std::string view = file.substr(offset, shown); // so that looking beyond it is seen
            ASSERT_TRUE(blocks.AppendShown(view.data(), view.size(), offset));
            shown = offset == before ? 2 * shown : window;
            ASSERT_LT(shown, 4 * file.size() + 100000) << "stops at " << offset;
        }
    }

    /// Expects that the list says what was put, by all ways of asking.
    void ExpectAll(std::uint64_t step = 1)
    {
        ASSERT_EQ(blocks.GetCount(), plain.size());
        EXPECT_EQ(blocks.Get(plain.size()), nullptr);
        EXPECT_EQ(blocks.GetEndOffset(), plain.empty() ? 0 : plain.back().End());
        ExpectVisits();
        for (std::uint64_t i = 0; i < plain.size(); i += step) {
            const QsbBlockC& block = *blocks.Get(i);
            ASSERT_EQ(PlainOf(block), plain[i]) << i;
            ASSERT_TRUE(block.IsSealed());
            ASSERT_FALSE(block.IsHeaderDirty());
            ASSERT_EQ(block.GetRunLength(), 1u);
            ASSERT_EQ(&block, blocks.Get(i));
        }
        ExpectVisits();
        for (const std::uint32_t id : {0, 1, 2, 3, 4, 100, 101}) {
            const auto it =
                std::find_if(plain.begin(), plain.end(), [&](const PlainT& b) { return b.id == id; });
            EXPECT_EQ(blocks.Find(id), it == plain.end() ? -1 : it - plain.begin()) << id;
        }
    }

    /// Also that equal empty blocks are told once, while all are packed.
    void ExpectVisits()
    {
        const bool packed = atOnce && blocks.GetSingleBlocks().empty();
        std::uint64_t next = 0;
        blocks.ForEach([&](const QsbBlockC& block, std::uint64_t index) {
            EXPECT_EQ(index, next);
            PlainT told = PlainOf(block);
            for (std::uint64_t i = 0; i < block.GetRunLength(); ++i, ++next) {
                EXPECT_EQ(told, plain.at(next)) << next;
                told.offset += 12;
            }
            const bool goesOn =
                told.data == 0 && told.entries.empty() && next < plain.size() && told == plain[next];
            EXPECT_FALSE(packed && goesOn) << next;
            return !HasFailure();
        });
        EXPECT_EQ(next, plain.size());
    }

    /// How many bytes the blocks take in memory, packed.
    std::uint64_t PackedBytes()
    {
        SIO::QsbBlockTallyC tally;
        SIO::QsbPackedChainC chain;
        std::uint64_t offset = 0;
        EXPECT_TRUE(chain.AppendShown(tally, file.data(), file.size(), offset));
        std::uint64_t bytes = 0;
        for (const auto& chunk : chain.GetChunks()) {
            EXPECT_LE(chunk.nBytes, SIO::QsbPackedCode::s_nChunkBytes + SIO::QsbPackedCode::s_nMostCodeBytes);
            bytes += chunk.nBytes + sizeof chunk;
        }
        return bytes;
    }

    std::string file;
    std::vector<PlainT> plain;
    QsbBlockListC blocks;
    std::mt19937 random{1};
    bool atOnce = true; ///< the blocks come from one file that was shown from front to back
};

TEST_F(QsbPackedBlocks, EmptyBlocksWithIdentifiersOfTheirOwn)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(0xFFFFFFFF - 7 * i, 0);
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 4.2);
}

TEST_F(QsbPackedBlocks, BlocksOfTwoLengthsInTurn)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100 + i, i % 2);
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 4.2);
}

TEST_F(QsbPackedBlocks, BlocksOfTwoLengthsInTurnAndOneIdentifier)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100, i % 2);
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 1.1);
}

TEST_F(QsbPackedBlocks, BlocksThatAreAllTheSameTakeNoMemory)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100, 5, EntryOf(7, 30, 1) + EntryOf(9, 31, 2) + EntryOf(9, 32, 3));
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 200u);
}

TEST_F(QsbPackedBlocks, BlocksWhoseEntriesDifferInTheirValues)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100, 5, EntryOf(7, 30, i) + EntryOf(9, 31, ~std::uint64_t{i}) + EntryOf(9, 32, 3));
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 25.5);
}

TEST_F(QsbPackedBlocks, BlocksWithOneEntryOfAnyValue)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100 + i, 0, EntryOf(7, 30, i));
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 13.5);
}

TEST_F(QsbPackedBlocks, BlocksWithTwoEntriesOfAnyValue)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100, 3, EntryOf(7, 30, i) + EntryOf(9, 31, i));
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 17.5);
}

TEST_F(QsbPackedBlocks, BlocksWhoseEntriesDifferInTypesOrTags)
{
    for (std::uint32_t i = 0; i < 3000; ++i)
        Put(100, 5, EntryOf(i % 2, 30, 1) + EntryOf(9, i % 3, 2));
    Append();
    ExpectAll();
}

TEST_F(QsbPackedBlocks, BlocksWithAnyAmountOfData)
{
    for (std::uint32_t i = 0; i < 30000; ++i)
        Put(100 + i % 2, Below(50));
    Append();
    ExpectAll(97);
    EXPECT_LT(PackedBytes(), 30000 * 9);
}

TEST_F(QsbPackedBlocks, HeadersOfAnyLength)
{
    for (std::uint32_t i = 0; i < 2000; ++i) {
        std::string entries;
        for (std::uint32_t j = Below(260); j > 0; --j)
            entries += EntryOf(j % 10, j, random());
        if (entries.size() <= 4096) Put(100, i % 3, entries);
    }
    Append();
    ExpectAll();
}

TEST_F(QsbPackedBlocks, RunsOfEmptyBlocksAreToldOnceWhereverTheyStand)
{
    std::vector<std::uint64_t> runs;
    for (std::uint32_t i = 0; i < 6000; ++i) { // the codes fill several chunks, and runs are at their ends
        const std::uint32_t length = 1 + Below(300);
        for (std::uint32_t j = 0; j < length; ++j)
            Put(100 + i % 7, 0);
        runs.push_back(length);
        if (i % 5 == 0) {
            Put(200, 3);
            runs.push_back(1);
        }
    }
    Append(7000);
    std::vector<std::uint64_t> told;
    blocks.ForEach([&](const QsbBlockC& block, std::uint64_t) {
        told.push_back(block.GetRunLength());
        return true;
    });
    EXPECT_EQ(told, runs);
    EXPECT_LT(PackedBytes(), 6000 * 8);
}

TEST_F(QsbPackedBlocks, ARunAmongBlocksOfManyLengthsIsToldOnce)
{
    std::vector<std::uint64_t> runs;
    for (std::uint32_t i = 0; i < 2000; ++i) { // enough for runs where a chunk ends
        const std::uint32_t length = 1 + i % 4;
        for (std::uint32_t j = 0; j < length; ++j)
            Put(100, 0);
        runs.push_back(length);
        for (std::uint32_t j = 0; j <= i % 90; ++j) {
            Put(100, 1 + Below(500));
            runs.push_back(1);
        }
    }
    Append();
    std::vector<std::uint64_t> told;
    blocks.ForEach([&](const QsbBlockC& block, std::uint64_t) {
        told.push_back(block.GetRunLength());
        return true;
    });
    EXPECT_EQ(told, runs);
    ExpectAll(499);
}

TEST_F(QsbPackedBlocks, TheFirstBlocksOfSmallIdentifiersAreFoundAmongMany)
{
    for (std::uint32_t i = 0; i < 5000; ++i)
        Put(i == 4000 ? 0 : i == 1234 || i > 3000 ? 3 : i == 2345 ? 1 : 100 + i, i % 3);
    Append();
    EXPECT_EQ(blocks.Find(3), 1234);
    EXPECT_EQ(blocks.Find(1), 2345);
    EXPECT_EQ(blocks.Find(0), 4000);
    EXPECT_EQ(blocks.Find(2), -1);
    ExpectAll(97);
}

TEST_F(QsbPackedBlocks, TellingEndsWhenItIsTold)
{
    for (std::uint32_t i = 0; i < 10; ++i)
        Put(100 + i, 0);
    Append();
    int told = 0;
    blocks.ForEach([&](const QsbBlockC&, std::uint64_t) { return ++told < 4; });
    EXPECT_EQ(told, 4);
}

TEST_F(QsbPackedBlocks, MovingAListTakesThemAlong)
{
    for (std::uint32_t i = 0; i < 5000; ++i)
        Put(100 + i, i % 5);
    Append();
    QsbBlockListC other = std::move(blocks);
    EXPECT_TRUE(blocks.IsEmpty());
    EXPECT_EQ(blocks.Find(100), -1);
    std::swap(blocks, other);
    ExpectAll(97);
    ASSERT_TRUE(other.AppendReadEmpty(0, 60, 1));
    EXPECT_EQ(other.Get(0)->GetId(), 60u);
    other = std::move(blocks);
    const std::uint64_t end = plain.back().End();
    ASSERT_TRUE(other.AppendRead(end, 5099, 4, {}));
    EXPECT_EQ(other.GetEndOffset(), end + 16);
    EXPECT_EQ(other.Last().GetOffset(), end);
}

TEST_F(QsbPackedBlocks, TheLastOnesCanBeRemovedOneByOne)
{
    for (std::uint32_t i = 0; i < 300; ++i)
        Put(i % 40 < 20 ? 100 : 100 + i, i % 40 < 20 ? 0 : i % 4, i % 7 == 0 ? EntryOf(7, 30, i) : "");
    Append();
    for (; !plain.empty(); plain.pop_back()) {
        ExpectVisits();
        ASSERT_EQ(blocks.GetCount(), plain.size());
        ASSERT_EQ(blocks.GetEndOffset(), plain.back().End());
        if (plain.size() % 3 == 0) {
            ASSERT_EQ(PlainOf(blocks.Last()), plain.back());
        }
        blocks.RemoveLast();
    }
    EXPECT_TRUE(blocks.IsEmpty());
}

TEST_F(QsbPackedBlocks, OthersFollowWhereSomeWereRemoved)
{
    for (std::uint32_t i = 0; i < 10; ++i)
        Put(100, 0);
    Append();
    atOnce = false;
    for (int i = 0; i < 3; ++i) {
        blocks.RemoveLast();
        plain.pop_back();
    }
    ASSERT_TRUE(blocks.AppendReadEmpty(84, 100, 2));
    plain.push_back({84, 100, 0, ""});
    plain.push_back({96, 100, 0, ""});
    ASSERT_TRUE(blocks.AppendRead(108, 100, 9, {}));
    plain.push_back({108, 100, 9, ""});
    ExpectAll();
}

TEST_F(QsbPackedBlocks, StopsBeforeWhatIsNotShownWhole)
{
    Put(100, 5);
    Put(101, 0, EntryOf(7, 30, 1));
    const std::size_t end = file.size();
    for (std::size_t shown = 0; shown <= end; ++shown) {
        blocks.Clear();
        const std::string view = file.substr(0, shown);
        std::uint64_t offset = 0;
        ASSERT_TRUE(blocks.AppendShown(view.data(), shown, offset));
        EXPECT_EQ(offset, shown < 12 ? 0u : shown < end ? 17u : end) << shown;
        EXPECT_EQ(blocks.GetCount(), shown < 12 ? 0u : shown < end ? 1u : 2u) << shown;
    }
}

TEST_F(QsbPackedBlocks, GoesOnBehindDataThatAreNotShown)
{
    Put(100, 0);
    SIO::StoreLittleEndian(&file[8], std::uint32_t{4000000000});
    std::uint64_t offset = 1000;
    ASSERT_TRUE(blocks.AppendShown(file.data(), 12, offset));
    EXPECT_EQ(offset, 4000001012u);
    ASSERT_TRUE(blocks.AppendShown(file.data(), 12, offset));
    EXPECT_EQ(blocks.GetEndOffset(), 8000001024u);
    EXPECT_EQ(blocks.Get(1)->GetOffset(), 4000001012u);
    EXPECT_EQ(blocks.Get(1)->GetDataBytes(), 4000000000u);
}

TEST_F(QsbPackedBlocks, StopsBeforeAHeaderOfASizeThatIsNoneOrTooLong)
{
    for (const std::uint32_t header : {1u, 15u, 17u, 4112u, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
        for (const std::uint32_t data : {0u, 5u, 0xFFFFFFFFu}) {
            for (const int before : {0, 1, 50}) { // also where it meets a model, or none
                blocks.Clear();
                std::string bytes;
                for (int i = 0; i <= before; ++i) {
                    char head[12] = {100};
                    SIO::StoreLittleEndian(head + 4, i == before ? header : 0);
                    SIO::StoreLittleEndian(head + 8, i == before ? data : 0);
                    bytes.append(head, 12);
                }
                bytes.append(std::size_t{2} << 20, '\0'); // as if all of it were there
                std::uint64_t offset = 0;
                ASSERT_TRUE(blocks.AppendShown(bytes.data(), bytes.size(), offset));
                EXPECT_EQ(offset, 12u * static_cast<unsigned>(before)) << header << ' ' << data;
                EXPECT_EQ(blocks.GetCount(), static_cast<unsigned>(before));
            }
        }
    }
}

TEST_F(QsbPackedBlocks, AnyChainIsThatOfAPlainListHoweverItIsShown)
{
    for (unsigned int seed = 0; seed < 60; ++seed) {
        random.seed(seed);
        file.clear();
        plain.clear();
        blocks.Clear();
        while (plain.size() < (seed < 3 ? 60000 : 3000)) {
            const std::uint32_t length = Below(4) == 0 ? Below(400) : Below(6);
            const std::uint32_t id = Below(3) == 0 ? Below(6) : 100 + Below(4);
            const std::uint32_t data = Below(2) * Below(6) * Below(seed % 2 == 0 ? 30 : 3000);
            const std::uint32_t entries = Below(3) == 0 ? Below(5) : 0;
            const std::uint32_t kind = Below(6);
            for (std::uint32_t i = 0; i < length; ++i) {
                std::string header;
                for (std::uint32_t j = 0; j < entries; ++j)
                    header += EntryOf(7, 30 + j % 2 + (Below(50) == 0 ? 1 : 0),
                                      kind == 1   ? i
                                      : kind == 2 ? Below(2)
                                                  : 0);
                const std::uint32_t varied = kind == 3 ? Below(7) : kind == 4 ? i % 2 : kind == 5 ? i % 3 : 0;
                Put(kind == 0 || kind == 4 ? id + i : id, data + varied, header);
            }
        }
        Append(seed % 3 == 0 ? 500 : seed % 3 == 1 ? 65536 : 3000);
        ExpectAll(seed < 3 ? 499 : 7);
        if (HasFailure()) FAIL() << seed;
    }
}

TEST_F(QsbPackedBlocks, AnyOrderOfAppendingAndRemovingIsThatOfAPlainList)
{
    atOnce = false;
    for (unsigned int seed = 0; seed < 50; ++seed) {
        random.seed(seed);
        plain.clear();
        blocks.Clear();
        for (int step = 0; step < 400; ++step) {
            const std::uint64_t offset = plain.empty() ? 0 : plain.back().End();
            const std::uint32_t id = Below(4) == 0 ? Below(6) : 100 + Below(4);
            const std::uint32_t what = Below(20);
            if (what == 0) {
                ASSERT_TRUE(blocks.AppendRead(offset, id, 7, {}));
                plain.push_back({offset, id, 7, ""});
            } else if (what < 3 && !plain.empty()) {
                blocks.RemoveLast();
                plain.pop_back();
            } else if (what == 3) {
                const std::string entries(Below(2) == 0 ? 16 : 5008, 'e');
                QsbHeaderEntriesT header(entries.size() / 16);
                std::memcpy(header.data(), entries.data(), entries.size());
                ASSERT_TRUE(blocks.AppendRead(offset, id, 1, header));
                plain.push_back({offset, id, 1, entries});
            } else if (what == 4 && !plain.empty()) {
                const std::uint64_t index = Below(static_cast<std::uint32_t>(plain.size()));
                ASSERT_EQ(PlainOf(*blocks.Get(index)), plain[index]);
            } else {
                const std::uint32_t length = what == 5 ? 1 + Below(30) : 1 + Below(3);
                ASSERT_TRUE(blocks.AppendReadEmpty(offset, id, length));
                for (std::uint32_t i = 0; i < length; ++i)
                    plain.push_back({offset + 12 * i, id, 0, ""});
            }
            ASSERT_EQ(blocks.GetCount(), plain.size());
            ASSERT_EQ(blocks.GetEndOffset(), plain.empty() ? 0 : plain.back().End());
        }
        ExpectAll(3);
        if (HasFailure()) FAIL() << seed;
    }
}

TEST_F(QsbPackedBlocks, OneThatGrowsIsWhatItHasBecomeEverywhere)
{
    for (std::uint32_t i = 0; i < 3; ++i)
        Put(100 + i, 0);
    Append();
    QsbBlockC& last = blocks.Last();
    last.SetSealed(false);
    ASSERT_TRUE(last.AddEntry(QsbHeaderEntryC::FromUInt32(7, 30, 5)));
    last.SetDataBytes(4);
    EXPECT_EQ(blocks.GetEndOffset(), 36u + 16 + 4);
    QsbBlockC& added = blocks.AppendNew(blocks.GetEndOffset(), 60);
    EXPECT_EQ(blocks.Get(2), &last);
    EXPECT_EQ(&blocks.Last(), &added);
    EXPECT_FALSE(added.IsSealed());
    std::vector<std::uint32_t> headers;
    blocks.ForEach([&](const QsbBlockC& block, std::uint64_t) {
        headers.push_back(block.GetHeaderBytes());
        return true;
    });
    EXPECT_EQ(headers, (std::vector<std::uint32_t>{0, 0, 16, 0}));
}

} // namespace
