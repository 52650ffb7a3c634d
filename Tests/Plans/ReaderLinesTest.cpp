// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two live readers of the exported interface, opened and used in turn so that their memory lies as close
// together as it ever will, and the cache lines of what each of them has.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Plans/PlanCases.h"
#include "ScanReader/QsbReader.h"
#include "Sio/Sio_CacheLine.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Sio/Sio_StreamWindow.h"
#include "Support/AllocationLog.h"
#include "Support/TemporaryDirectory.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace {

using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;
using Support::AllocationsFor;
using Support::BlockT;

/// A reader with its iterators, and what they allocate.
class OneReaderC
{
public:
    OneReaderC(int iOwner, std::string strPath) : m_iOwner(iOwner), m_strPath(std::move(strPath)) {}

    void MakeReader()
    {
        Do([this] { m_oReader.emplace(); });
    }
    void MakeIterators()
    {
        Do([this] {
            m_oBatch.emplace(10u);
            m_oSecondBatch.emplace(10u);
        });
    }
    void Open()
    {
        Do([this] { m_iResult = m_oReader->Open(m_strPath.c_str()); });
        ASSERT_EQ(m_iResult, 0) << m_oReader->RetMsg();
    }
    void Read() { ReadInto(*m_oBatch); }

    /// The iterator is bound to the reader then, which counts it.
    void ReadIntoSecond() { ReadInto(*m_oSecondBatch); }

    std::vector<BlockT> Blocks() const { return Support::BlocksOf(m_iOwner); }

    /// What every batch sets, even when it stays as it was.
    std::vector<BlockT> MessageAndRecords()
    {
        return {{m_oReader->RetMsg(), 1},
                {reinterpret_cast<const char*>(m_oBatch->GetPoints()), 10 * sizeof(SIO::QsbPointC)}};
    }

private:
    template<typename ActionT>
    void Do(const ActionT& action)
    {
        const AllocationsFor owner(m_iOwner);
        action();
    }

    void ReadInto(QsbReadIterator& batch)
    {
        std::uint64_t ullCount = 0;
        Do([&] { m_iResult = m_oReader->Read(batch, ullCount); });
        ASSERT_EQ(m_iResult, 0) << m_oReader->RetMsg();
        ASSERT_EQ(ullCount, 10u);
    }

    int m_iOwner;
    std::string m_strPath;
    std::optional<QsbReader> m_oReader;
    std::optional<QsbReadIterator> m_oBatch;
    std::optional<QsbReadIterator> m_oSecondBatch;
    int m_iResult = -1;
};

std::set<std::uintptr_t> LinesOf(const std::vector<BlockT>& blocks)
{
    std::set<std::uintptr_t> lines;
    for (const BlockT& block : blocks) {
        const auto uFirst = reinterpret_cast<std::uintptr_t>(block.pFirst);
        for (std::uintptr_t u = uFirst / SIO::s_nCacheLineBytes;
             u <= (uFirst + block.nBytes - 1) / SIO::s_nCacheLineBytes; ++u)
            lines.insert(u);
    }
    return lines;
}

/// The contents of blocks, to see later which lines of them have changed.
class SnapshotC
{
public:
    explicit SnapshotC(std::vector<BlockT> blocks) : m_vecBlocks(std::move(blocks))
    {
        for (const BlockT& block : m_vecBlocks)
            m_vecContents.emplace_back(block.pFirst, block.nBytes);
    }

    /// All blocks must still be there.
    std::set<std::uintptr_t> ChangedLines() const
    {
        std::set<std::uintptr_t> lines;
        for (std::size_t i = 0; i < m_vecBlocks.size(); ++i) {
            for (std::size_t j = 0; j < m_vecBlocks[i].nBytes; ++j) {
                const char* const pByte = m_vecBlocks[i].pFirst + j;
                if (*pByte != m_vecContents[i][j]) lines.merge(LinesOf({{pByte, 1}}));
            }
        }
        return lines;
    }

private:
    std::vector<BlockT> m_vecBlocks;
    std::vector<std::string> m_vecContents;
};

bool HaveNoneInCommon(const std::set<std::uintptr_t>& a, const std::set<std::uintptr_t>& b)
{
    return std::none_of(a.begin(), a.end(), [&](std::uintptr_t u) { return b.count(u) != 0; });
}

class ReaderLines : public testing::Test
{
protected:
    void SetUp() override
    {
        PlanTest::LayoutT{{{SIO::PD_POSITION, SIO::QsbFormat::s_uiTypeFloatTriple},
                           {SIO::PD_INTENSITY, SIO::QsbFormat::s_uiTypeUInt16}}}
            .Define(m_oDefinition);
        std::vector<SIO::QsbPointC> points(1000);
        for (std::size_t i = 0; i < points.size(); ++i)
            points[i].x = static_cast<double>(i + 1);
        SIO::QsbC container;
        SIO::QsbStrategyC strategy;
        strategy.SetPointDefinition(&m_oDefinition);
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), false, true));
        ASSERT_TRUE(container.WritePoints(points.data(), 1000, strategy));
        ASSERT_TRUE(container.Close());
    }

    std::string Path() const { return m_oDirectory.Narrow("scan.qsb"); }

    SIO::PointDefinitionC m_oDefinition;
    Support::TemporaryDirectory m_oDirectory;
};

TEST_F(ReaderLines, WhatABatchWritesSharesNoLineWithAnotherReader)
{
    OneReaderC one(1, Path()), two(2, Path());
    for (OneReaderC* const pEach : {&one, &two})
        pEach->MakeReader();
    for (OneReaderC* const pEach : {&one, &two})
        pEach->MakeIterators();
    for (OneReaderC* const pEach : {&one, &two})
        ASSERT_NO_FATAL_FAILURE(pEach->Open());
    for (OneReaderC* const pEach : {&one, &two})
        ASSERT_NO_FATAL_FAILURE(pEach->Read());

    for (const auto& [pReads, pOther] : {std::pair(&one, &two), std::pair(&two, &one)}) {
        const SnapshotC before(pReads->Blocks());
        ASSERT_NO_FATAL_FAILURE(pReads->Read());
        ASSERT_NO_FATAL_FAILURE(pReads->ReadIntoSecond());
        std::set<std::uintptr_t> written = before.ChangedLines();
        EXPECT_GE(written.size(), 6u); // positions, counts, records, stored points
        written.merge(LinesOf(pReads->MessageAndRecords()));
        EXPECT_TRUE(HaveNoneInCommon(written, LinesOf(pOther->Blocks())));
    }
}

TEST_F(ReaderLines, AWindowOnTheFileFillsLinesOfItsOwn)
{
    OneReaderC one(1, Path()), two(2, Path());
    one.MakeReader();
    two.MakeReader();
    ASSERT_NO_FATAL_FAILURE(one.Open());
    ASSERT_NO_FATAL_FAILURE(two.Open());
    std::size_t nWindows = 0;
    for (const BlockT& block : one.Blocks()) {
        if (block.nBytes != SIO::StreamWindowC::s_nLargest) continue;
        ++nWindows;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.pFirst) % SIO::s_nCacheLineBytes, 0u);
        EXPECT_TRUE(HaveNoneInCommon(LinesOf({block}), LinesOf(two.Blocks())));
    }
    EXPECT_EQ(nWindows, 1u);
}

} // namespace
