// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What check finds in the chain of blocks.
#include "Support/ScanFolder.h"
#include "Tools/CheckTest.h"
#include "Tools/Qsb/Tool_Error.h"

#include <algorithm>

namespace {

using namespace CheckTest;
using Support::Bytes;

TEST(CheckChain, NothingIsFoundInACleanScan)
{
    EXPECT_TRUE(FindsOnly(Check(CleanScan()), ""));
}

TEST(CheckChain, AnEmptyFileIsAnError)
{
    EXPECT_TRUE(FindsOnly(Check(BytesT{}), "error QSB-001"));
}

TEST(CheckChain, AFileOfAnotherKindGivesOneErrorOnly)
{
    const BytesT other(1000, 0x5A);
    EXPECT_TRUE(FindsOnly(Check(other), "error QSB-002"));
}

TEST(CheckChain, AWrongFirstIdentifierIsAnErrorAndTheScanIsStillFound)
{
    const auto check = Check(Support::WithByte(CleanScan(3).Get(), 2, 0));
    EXPECT_TRUE(FindsOnly(check, "error QSB-002"));
    EXPECT_EQ(Find(check, "QSB-002")->strExpected, "the identifier 0x12879054");
    EXPECT_EQ(Find(check, "QSB-002")->strFound, "0x12009054");
    EXPECT_EQ(check.GetReadable(), 3u);
}

TEST(CheckChain, EveryLengthOfATornHeadIsAnErrorAtItsOffset)
{
    const BytesT whole = CleanScan(3).Get();
    for (std::size_t n = 1; n < 12; ++n) {
        BytesT bytes = whole;
        bytes.insert(bytes.end(), n, 1);
        const auto check = Check(bytes);
        ASSERT_TRUE(FindsOnly(check, "error QSB-003")) << n;
        EXPECT_EQ(Find(check, "QSB-003")->oOffset, whole.size());
        EXPECT_EQ(check.GetReadable(), 3u);
    }
}

TEST(CheckChain, UnlikeEmptyBlocksAreFoundEachWhereItStands)
{
    QsbBytes file = CleanScan();
    const std::size_t first = file.Get().size();
    const auto check = Check(file.Block(50).Block(51).Block(51).Block(0).Block(0).Block(3));
    const Tool::FindingC* zeros = Find(check, "QSB-008");
    ASSERT_NE(zeros, nullptr) << Found(check);
    EXPECT_EQ(zeros->oOffset, first + 36);
    EXPECT_EQ(zeros->oBlock, 5u);
}

TEST(CheckChain, ZerosInATornHeadAreNamed)
{
    EXPECT_EQ(Find(Check(CleanScan().Raw(BytesT(5, 0))), "QSB-003")->strFound, "5 zero bytes");
}

TEST(CheckChain, AHeaderSizeThatIsNoMultipleOf16IsAnErrorAtItsField)
{
    const QsbBytes file = CleanScan().ClaimHeaderBytes(16 * 30 + 1);
    const auto check = Check(file);
    EXPECT_TRUE(FindsOnly(check, "error QSB-004"));
    EXPECT_EQ(Find(check, "QSB-004")->oOffset, file.BlockOffset() + 4);
    EXPECT_EQ(Find(check, "QSB-004")->strFound, "481");
    EXPECT_EQ(check.GetReadable(), 0u);
}

TEST(CheckChain, ATornHeaderIsAnErrorAndItsWholeEntriesAreTaken)
{
    const QsbBytes file = CleanScan();
    const auto check = Check(Support::Truncated(file.Get(), file.BlockOffset() + 12 + 16 * 24 + 15));
    EXPECT_TRUE(FindsOnly(check, "error QSB-005"));
    EXPECT_EQ(check.oChain.oBlocks.Last().GetEntryCount(), 24u);
    EXPECT_EQ(check.pHeader->oInfo.auiGridSize[0], 1u);
}

TEST(CheckChain, AHeaderOf4GiBInASmallFileIsAnErrorAndTakesNoMemory)
{
    const auto check = Check(QsbBytes().Block(1).ClaimHeaderBytes(0xFFFFFFF0));
    EXPECT_TRUE(FindsOnly(check, "error QSB-005"));
    EXPECT_EQ(check.oChain.oBlocks.Last().GetEntryCount(), 0u);
}

TEST(CheckChain, TornDataAreAnErrorThatSaysHowManyPointsAreReadable)
{
    const BytesT whole = CleanScan(10).Get();
    const auto check = Check(Support::Truncated(whole, whole.size() - 3 * s_nCleanPointBytes - 1));
    EXPECT_TRUE(FindsOnly(check, "error QSB-007"));
    EXPECT_EQ(Find(check, "QSB-007")->strReadable, "6 of 10 points");
    EXPECT_EQ(Find(check, "QSB-007")->oOffset, whole.size() - 3 * s_nCleanPointBytes - 1);
    EXPECT_EQ(check.pStatistics->ullPoints, 6u);
}

TEST(CheckChain, DataTornBehindTheLastWholePointAreAWarning)
{
    const BytesT bytes = CleanScan(3).Data({1, 2, 3}).Get();
    EXPECT_TRUE(
        FindsOnly(Check(Support::Truncated(bytes, bytes.size() - 1)), "warning QSB-007 note QSB-218"));
}

TEST(CheckChain, TornDataOfABlockThatIsNotReadAreAWarning)
{
    QsbBytes file = CleanScan();
    file.Block(9).ClaimDataBytes(100);
    EXPECT_TRUE(FindsOnly(Check(file), "warning QSB-007 note QSB-009"));
}

TEST(CheckChain, ZerosBehindTheLastBlockAreAWarningThatSaysHowMany)
{
    const auto check = Check(CleanScan().Raw(BytesT(12 * 100, 0)));
    EXPECT_TRUE(FindsOnly(check, "warning QSB-008"));
    EXPECT_EQ(Find(check, "QSB-008")->strFound,
              "1200 bytes of zeros, which readers step over as 100 empty blocks");
}

TEST(CheckChain, AnUnknownBlockIsANote)
{
    QsbBytes file = CleanScan();
    file.Block(77).Entry(7, 1, 1).Data({1, 2, 3});
    EXPECT_TRUE(FindsOnly(Check(file), "note QSB-009"));
}

TEST(CheckChain, ThePointCloudOfAnUnfinishedWriterIsNamed)
{
    QsbBytes file;
    file.Block(1);
    EXPECT_TRUE(
        FindsOnly(Check(file), "error QSB-207 warning QSB-010 note QSB-205 note QSB-219 note QSB-307"));
}

TEST(CheckChain, OfManyFindingsOfARuleTheFirstTenAreKeptAndAllCounted)
{
    QsbBytes file = CleanScan();
    for (std::uint32_t i = 0; i < 1000; ++i)
        file.Block(100 + i).Data({0});
    const auto check = Check(file);
    EXPECT_EQ(check.oFindings.GetKept().size(), 10u);
    EXPECT_EQ(check.oFindings.CountOf(Tool::RuleT::UnknownBlock), 1000u);
    EXPECT_EQ(check.oFindings.CountOf(SeverityT::Note), 1000u);
}

TEST(CheckChain, AMillionEmptyBlocksAreOneFinding)
{
    const auto check = Check(CleanScan().Raw(BytesT(12 * 1000000, 0)));
    EXPECT_TRUE(FindsOnly(check, "warning QSB-008"));
    EXPECT_EQ(check.oChain.oBlocks.GetCount(), 1000002u);
}

TEST(CheckChain, AHoleBeyond4GiBIsPassedAtOnce)
{
    const Support::ScanFolder folder;
    const std::string path = folder.Write("sparse.qsb", CleanScan());
    const std::uint64_t ullBlocks = (std::uint64_t{9} << 30) / 12;
    if (!Support::Resize(path, Support::FileSize(path) + ullBlocks * 12))
        GTEST_SKIP() << "no files of 9 GiB here";
    Tool::FileInputC input(path);
    const auto check = Tool::CheckScan(input, true, [](std::uint64_t) {});
    EXPECT_TRUE(FindsOnly(check, "warning QSB-008"));
    EXPECT_EQ(check.oChain.oBlocks.GetCount(), ullBlocks + 2);
}

TEST(CheckChain, ABlockBeyond4GiBIsFoundAtItsOffset)
{
    const Support::ScanFolder folder;
    QsbBytes file;
    file.Block(50).ClaimDataBytes(0xFFFFFFFF).Block(51).ClaimDataBytes(0xFFFFFFFF);
    const BytesT heads = file.Get();
    const std::string path = folder.Write("large.qsb", Support::Truncated(heads, 28 + 12));
    const std::uint64_t ullSecond = 28 + 12 + std::uint64_t{0xFFFFFFFF};
    Support::WriteAt(path, ullSecond, Support::Slice(heads, 28 + 12, 12));
    const BytesT scan = CleanScan(3).Get();
    const std::uint64_t ullScan = ullSecond + 12 + 0xFFFFFFFF;
    Support::WriteAt(path, ullScan, Support::Slice(scan, 28, scan.size() - 28));
    Tool::FileInputC input(path);
    const auto check = Tool::CheckScan(input, true, [](std::uint64_t) {});
    EXPECT_TRUE(FindsOnly(check, "note QSB-009 note QSB-009"));
    EXPECT_EQ(check.oChain.oBlocks.Last().GetOffset(), ullScan);
    EXPECT_EQ(check.pStatistics->ullPoints, 3u);
}

/// A file header with an enormous header of its own, no byte of which is anywhere.
class HugeHeaderInputC final : public Tool::ScanInputI
{
public:
    std::uint64_t GetSize() const override { return std::uint64_t{1} << 32; }
    std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes) override
    {
        const BytesT head = Bytes(Support::s_uiFileHeader, std::uint32_t{0x20000000}, std::uint32_t{0});
        for (std::size_t i = 0; i < nBytes; ++i)
            static_cast<char*>(pDestination)[i] =
                ullOffset + i < head.size() ? static_cast<char>(head[ullOffset + i]) : '\0';
        return nBytes;
    }
    bool NextStoredOffset(std::uint64_t, std::uint64_t&) override { return false; }
};

TEST(CheckChain, MoreEntriesThanAReaderKeepsAreAnErrorAndAreNotRead)
{
    HugeHeaderInputC input;
    const auto check = Tool::CheckScan(input, true, [](std::uint64_t) {});
    EXPECT_TRUE(FindsOnly(check, "error QSB-006"));
    EXPECT_TRUE(check.oChain.oBlocks.IsEmpty());
}

TEST(CheckChain, ProgressIsToldUpToTheSizeOfTheFile)
{
    const BytesT bytes = CleanScan().Raw(BytesT(12 * 10000, 0)).Get();
    Tool::MemoryInputC input(bytes.data(), bytes.size());
    std::uint64_t ullPassed = 0;
    Tool::CheckScan(input, false, [&](std::uint64_t ullBytes) { ullPassed += ullBytes; });
    EXPECT_EQ(ullPassed, bytes.size());
}

TEST(CheckChain, WhoIsToldOfProgressMayEndTheCheck)
{
    const BytesT bytes = CleanScan().Get();
    Tool::MemoryInputC input(bytes.data(), bytes.size());
    const auto stop = [](std::uint64_t) { throw Tool::ToolErrorC(Tool::s_iInterrupted, "interrupted"); };
    EXPECT_THROW(Tool::CheckScan(input, false, stop), Tool::ToolErrorC);
}

TEST(CheckChain, AFolderIsNoInput)
{
    const Support::ScanFolder folder;
    EXPECT_THROW(Tool::FileInputC(folder.Path("")), Tool::ToolErrorC);
}

} // namespace
