// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writing while the nth call of the C library, or the nth allocation, fails: for every n. What is reported as
// written is there; what was there before stays.
#include "FaultInjection.h"
#include "Sio/WriteTest.h"

#include <boost/filesystem/operations.hpp>

namespace {

using Support::BytesT;
using Support::Call;
using Support::Fault;
using Support::QsbBytes;

class WriteFault : public SioTest::WriteTest, public testing::WithParamInterface<Call>
{
protected:
    /// The points of the file's point-cloud block, as bytes; empty when it has none that can be read.
    BytesT StoredPoints()
    {
        SioTest::Scan other;
        if (!other.Open(Path())) return {};
        const std::uint32_t read = other.Read(1000);
        return read == 0xFFFFFFFF ? BytesT{} : Support::Slice(other.buffer, 0, 14 * std::size_t{read});
    }

    static bool IsPrefix(const BytesT& prefix, const BytesT& whole)
    {
        return prefix.size() <= whole.size() && Support::Slice(whole, 0, prefix.size()) == prefix;
    }
};

TEST_P(WriteFault, WhileCreatingAFileIsReportedAndWhatIsReportedAsWrittenIsThere)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        SCOPED_TRACE(n);
        SioTest::Scan writer;
        SioTest::PlainSource source = SioTest::SmallSource(6);
        const std::wstring path = BSS::HAL::WidePath(Path());
        writer.strategy.SetPointDefinition(&small);
        bool done = false;
        {
            const Fault fault(GetParam(), n);
            done = writer.container.Open(path, false, true);
            for (int batch = 0; batch < 3; ++batch) {
                done = done && writer.container.WritePoints(source, 2, writer.strategy);
            }
            done = writer.container.Close() && done;
            happened = fault.Happened();
        }
        EXPECT_FALSE(writer.container.IsOpen());
        EXPECT_TRUE(done || happened);
        if (done) {
            EXPECT_EQ(File(), SioTest::WrittenSmallScan(6).Get());
        } else if (boost::filesystem::exists(Path())) {
            EXPECT_TRUE(IsPrefix(StoredPoints(), Support::SmallPoints(6)));
        }
        boost::filesystem::remove(Path());
        ASSERT_LT(n, 10000u);
    }
}

TEST_P(WriteFault, WhileWritingABatchCanBeTriedAgainAndThePointsAreReadBack)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        SCOPED_TRACE(n);
        SioTest::Scan writer;
        writer.strategy.SetPointDefinition(&small);
        ASSERT_TRUE(writer.Open(Path(), false, true));
        SioTest::PlainSource source = SioTest::SmallSource(4);
        SioTest::PlainSource again = SioTest::SmallSource(4);
        bool written = false;
        {
            const Fault fault(GetParam(), n);
            written = writer.container.WritePoints(source, 4, writer.strategy);
            happened = fault.Happened();
        }
        if (!written) {
            EXPECT_TRUE(happened);
            ASSERT_TRUE(writer.container.WritePoints(again, 4, writer.strategy));
        }
        ASSERT_TRUE(writer.container.Close());
        EXPECT_EQ(StoredPoints(), Support::SmallPoints(4));
        ASSERT_LT(n, 10000u);
    }
}

TEST_P(WriteFault, WhileAppendingLeavesThePointsThatWereThere)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        SCOPED_TRACE(n);
        folder.Write("scan.qsb", Support::SmallScan(3));
        SioTest::Scan writer;
        SioTest::PlainSource source = SioTest::SmallSource(2, 3);
        const std::wstring path = BSS::HAL::WidePath(Path());
        bool done = false;
        {
            const Fault fault(GetParam(), n);
            done = writer.container.Open(path, true, true);
            done = done && writer.container.CreateReadStrategyData(writer.strategy, true, -1);
            done = done && writer.strategy.Seek(3);
            done = done && writer.container.WritePoints(source, 2, writer.strategy);
            done = writer.container.Close() && done;
            happened = fault.Happened();
        }
        EXPECT_TRUE(done || happened);
        // A header that could not be rewritten hides what follows, but not a byte of what was there is lost.
        const BytesT before = Support::SmallScan(3).Get();
        EXPECT_EQ(Support::Slice(File(), 0, 36), Support::Slice(before, 0, 36));
        EXPECT_EQ(Support::Slice(File(), 40, before.size() - 40),
                  Support::Slice(before, 40, before.size() - 40));
        if (done) {
            EXPECT_EQ(File(), Support::SmallScan(5).Get());
        }
        ASSERT_LT(n, 10000u);
    }
}

TEST_P(WriteFault, WhileAppendingABlockGivesMinusOneAndChangesNothing)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        SCOPED_TRACE(n);
        ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(1)), true, true));
        constexpr int blocks = 40;
        int appended = 0;
        std::uint64_t count = 0;
        {
            const Fault fault(GetParam(), n);
            while (appended < blocks && scan.container.AppendBlock(9) >= 0)
                ++appended;
            count = scan.container.GetBlocks().GetCount();
            happened = fault.Happened();
        }
        EXPECT_EQ(appended == blocks, !happened);
        EXPECT_EQ(count, 2u + static_cast<unsigned>(appended));
        EXPECT_EQ(scan.container.AppendBlock(10), 2 + appended);
        EXPECT_TRUE(scan.container.Close());
        ASSERT_TRUE(scan.Open(Path()));
        EXPECT_EQ(scan.container.GetBlocks().GetCount(), 3u + static_cast<unsigned>(appended));
        scan.container.Close();
        ASSERT_LT(n, 10000u);
    }
}

TEST_P(WriteFault, WhileTheLastOfARunOfBlocksGrowsIsReportedAndTheFileStaysWhole)
{
    // Runs at every place of the list, since only some of them make it allocate.
    for (std::uint32_t others = 0; others < 24; ++others) {
        QsbBytes before;
        for (std::uint32_t i = 0; i < others; ++i)
            before.Block(5 + i % 2);
        before.Block(9).Block(9);
        bool happened = true;
        for (unsigned n = 1; happened; ++n) {
            ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", before), true, true));
            const char byte = 7;
            bool written = false;
            {
                const Fault fault(GetParam(), n);
                written = scan.container.WriteBytesIntoBlock(others + 2, 0, 1, &byte);
                happened = fault.Happened();
            }
            EXPECT_EQ(written, !happened);
            EXPECT_TRUE(scan.container.Close());
            EXPECT_EQ(File(), written ? QsbBytes(before).Data({7}).Get() : before.Get());
            ASSERT_LT(n, 10000u);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, WriteFault, testing::ValuesIn(Support::s_allCalls));

class HeaderFault : public SioTest::WriteTest
{};

TEST_F(HeaderFault, ARewriteWhoseEntriesCannotAllBeWrittenLeavesTheBlockDirty)
{
    Create();
    {
        const Fault fault(Call::Fwrite, 2); // the head is the first
        EXPECT_FALSE(scan.container.RewriteBlockHeader(0));
        EXPECT_TRUE(fault.Happened());
    }
    EXPECT_TRUE(Block(0).IsHeaderDirty());
    EXPECT_TRUE(scan.container.RewriteBlockHeader(0));
    EXPECT_FALSE(Block(0).IsHeaderDirty());
}

TEST_F(HeaderFault, ARewriteWhoseHeadCannotBeWrittenLeavesTheBlockDirty)
{
    Create();
    for (const Call call : {Call::Fseeko, Call::Fwrite}) {
        const Fault fault(call, 1);
        EXPECT_FALSE(scan.container.RewriteBlockHeader(0));
        EXPECT_TRUE(Block(0).IsHeaderDirty());
    }
}

TEST_F(HeaderFault, ACloseThatCannotWriteAHeaderSaysSoAndClosesAllTheSame)
{
    for (const Call call : {Call::Fseeko, Call::Fwrite, Call::Fclose}) {
        Create();
        const Fault fault(call, 1);
        EXPECT_FALSE(scan.container.Close());
        EXPECT_TRUE(fault.Happened());
        EXPECT_FALSE(scan.container.IsOpen());
    }
}

TEST_F(HeaderFault, AFileWhoseFirstTwelveBytesCannotBeWrittenDoesNotOpen)
{
    const std::wstring path = BSS::HAL::WidePath(Path());
    const Fault fault(Call::Fwrite, 1);
    EXPECT_FALSE(scan.container.Open(path, false, true));
    EXPECT_FALSE(scan.container.IsOpen());
}

TEST_F(HeaderFault, DroppingTheLastBlockWithoutMemoryIsRefusedAndNothingThrown)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        Reopen(Support::SmallScan(3).Block(9).Data(BytesT(5)));
        bool dropped = false;
        {
            const Fault fault(Call::Allocation, n);
            dropped = scan.container.DropLastBlock();
            happened = fault.Happened();
        }
        EXPECT_EQ(dropped, !happened);
        scan.container.Close();
        ASSERT_LT(n, 1000u);
    }
}

TEST_F(HeaderFault, DroppingTheLastBlockWithoutMemoryForTheOneBeforeLosesNothing)
{
    const Support::QsbBytes file = Support::SmallScan(3).Block(9).Block(10).Data(BytesT(5));
    Reopen(file);
    {
        const Fault fault(Call::Allocation, 2); // the first one is for the path
        EXPECT_FALSE(scan.container.DropLastBlock());
        EXPECT_TRUE(fault.Happened());
    }
    EXPECT_EQ(scan.container.GetBlocks().GetCount(), 4u);
    EXPECT_EQ(scan.container.AppendBlock(77), 4);
    EXPECT_TRUE(scan.container.Close());
    EXPECT_EQ(File(), Support::QsbBytes(file).Block(77).Get());
}

TEST_F(HeaderFault, AppendingABlockWithoutMemoryLeavesTheListAsItIs)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        Reopen(Support::SmallScan(3).Block(9));
        std::int64_t index = 0;
        {
            const Fault fault(Call::Allocation, n);
            index = scan.container.AppendBlock(10);
            happened = fault.Happened();
        }
        EXPECT_EQ(index, happened ? -1 : 3);
        EXPECT_EQ(scan.container.GetBlocks().GetCount(), happened ? 3u : 4u);
        scan.container.Close();
        ASSERT_LT(n, 1000u);
    }
}

TEST_F(HeaderFault, DroppingTheLastBlockCutsTheFileTwelveBytesBeforeTheEndOfTheOneBefore)
{
    Reopen(Support::SmallScan(3).Block(9).Data(BytesT(5)));
    const std::uint64_t length = Block(1).GetOffset() + Block(1).GetHeaderBytes() + Block(1).GetDataBytes();
    {
        const Fault fault(Call::Open, 1); // so that re-opening does not empty what was cut
        EXPECT_FALSE(scan.container.DropLastBlock());
        EXPECT_TRUE(fault.Happened());
    }
    EXPECT_EQ(length, Support::SmallScan(3).Get().size() - 12);
    EXPECT_EQ(File(), Support::Truncated(Support::SmallScan(3).Get(), length));
    EXPECT_FALSE(scan.container.IsOpen());
}

} // namespace
