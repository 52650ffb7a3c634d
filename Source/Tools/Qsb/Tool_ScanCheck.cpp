// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chain, blocks, points.
#include "Tools/Qsb/Tool_ScanCheck.h"

#include "Tools/Qsb/Tool_BlockPlace.h"
#include "Tools/Qsb/Tool_EntryCheck.h"
#include "Tools/Qsb/Tool_PointCheck.h"
#include "Tools/Qsb/Tool_ScanFactsCheck.h"
#include "Tools/Qsb/Tool_ScanInput.h"
#include "Tools/Qsb/Tool_StoredPoints.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

/// The batch that a host of the library reads unless it asks for another.
constexpr std::uint64_t s_ullReaderBatch = 10000;

bool IsPointCloud(std::uint32_t uiId)
{
    return uiId == Format::s_uiPointCloudId || uiId == Format::s_uiCountedPointCloudId;
}

/// Whether the reader delivers every point. Its batches begin at multiples of their size and go on to the end
/// of the data area, beyond a stated number of points; a first one is always read.
bool ReaderDelivers(const ScanHeaderC& header)
{
    const std::uint64_t ullBatches =
        std::max<std::uint64_t>((header.GetPoints() + s_ullReaderBatch - 1) / s_ullReaderBatch, 1);
    return header.GetHeld() >= std::min(ullBatches * s_ullReaderBatch, header.GetRoom());
}

class ScanCheckerC
{
public:
    ScanCheckerC(ScanInputI& input, ScanCheckC& check) : m_rInput(input), m_rCheck(check) {}

    void CheckBlocks()
    {
        const SIO::QsbBlockListC& blocks = m_rCheck.oChain.oBlocks;
        CheckHead();
        ChooseBlock();
        // The block that is read comes first: of each rule only the first findings are kept.
        if (m_rCheck.oReadBlock) CheckRead(PlaceOf(*blocks.Get(*m_rCheck.oReadBlock), *m_rCheck.oReadBlock));
        blocks.ForEach([&](const SIO::QsbBlockC& block, std::uint64_t ullIndex) {
            if (ullIndex != 0 && ullIndex != m_rCheck.oReadBlock) CheckOther(PlaceOf(block, ullIndex));
            return true;
        });
    }

    void CheckStoredPoints(const PassedT& passed)
    {
        if (!m_rCheck.CanReadPoints()) return;
        const ScanHeaderC* header = m_rCheck.pHeader.get();
        const BlockPlaceC place =
            PlaceOf(*m_rCheck.oChain.oBlocks.Get(*m_rCheck.oReadBlock), *m_rCheck.oReadBlock);
        m_rCheck.pStatistics = std::make_unique<ScanStatisticsC>(*header);
        StoredPointsC points(m_rInput, *header);
        while (points.Next()) {
            const std::vector<ScanPointC>& batch = points.GetPoints();
            for (std::size_t i = 0; i < batch.size(); ++i)
                m_rCheck.pStatistics->Take(batch[i], points.GetRecord(i));
            passed(batch.size() * header->ullRecordBytes);
        }
        CheckPoints(place, *header, *m_rCheck.pStatistics, m_rCheck.oFindings);
    }

private:
    BlockPlaceC PlaceOf(const SIO::QsbBlockC& block, std::uint64_t ullIndex) const
    {
        const bool bLast = ullIndex + 1 == m_rCheck.oChain.oBlocks.GetCount();
        return {block, ullIndex, ullIndex == m_rCheck.oReadBlock, !bLast || m_rCheck.oChain.bLastHeaderWhole};
    }

    void CheckHead()
    {
        const SIO::QsbBlockC* block = m_rCheck.oChain.oBlocks.Get(0);
        if (block == nullptr || block->GetId() != Format::s_uiFileHeaderId) return;
        BlockPlaceC place = PlaceOf(*block, 0);
        place.bRead = true;
        CheckFileHeader(place, m_rCheck.oFindings);
        const SIO::QsbHeaderEntryC* version = block->FindEntry(Format::s_uiTagVersion);
        if (version != nullptr) m_rCheck.oVersion = version->AsUInt32();
        CheckData(PlaceOf(*block, 0), nullptr);
    }

    void ChooseBlock()
    {
        const SIO::QsbBlockListC& blocks = m_rCheck.oChain.oBlocks;
        std::int64_t llFound = blocks.Find(Format::s_uiPointCloudId);
        if (llFound < 0) llFound = blocks.Find(Format::s_uiCountedPointCloudId);
        if (llFound >= 0) {
            m_rCheck.oReadBlock = static_cast<std::uint64_t>(llFound);
        } else if (m_rCheck.oChain.bWhole) {
            m_rCheck.oFindings.Add(
                {.eRule = RuleT::NoPointCloud,
                 .oOffset = m_rCheck.ullFileSize,
                 .strExpected = "a block with identifier 1 or 3",
                 .strFound = fmt::format("the end of the file after {} other block{}", blocks.GetCount(),
                                         blocks.GetCount() == 1 ? "" : "s"),
                 .strReadable = "nothing"});
        }
    }

    void CheckRead(const BlockPlaceC& place)
    {
        m_rCheck.pHeader = std::make_unique<ScanHeaderC>(place.rBlock, m_rCheck.ullFileSize);
        CheckUnfinished(place);
        CheckPointCloudEntries(place, *m_rCheck.pHeader, m_rCheck.oFindings);
        if (place.bHeaderWhole) CheckScanFacts(place, *m_rCheck.pHeader, m_rCheck.oFindings);
        CheckData(place, m_rCheck.pHeader.get());
    }

    void CheckOther(const BlockPlaceC& place)
    {
        const SIO::QsbBlockC& block = place.rBlock;
        const bool bEmpty = block.GetEntryCount() == 0 && block.GetDataBytes() == 0;
        if (block.GetId() == 0 && bEmpty) {
            Report(RuleT::ZeroBlocks, place, [&] {
                return fmt::format("{} bytes of zeros, which readers step over as {} empty blocks",
                                   block.GetRunLength() * Format::s_nBlockHeadBytes, block.GetRunLength());
            });
        } else if (block.GetId() == Format::s_uiFileHeaderId) {
            Report(RuleT::SecondFileHeader, place,
                   [] { return "a further file header, which readers ignore"; });
        } else if (IsPointCloud(block.GetId())) {
            Report(RuleT::OtherPointCloud, place, [&] {
                return fmt::format("a point cloud of {} bytes; readers take block {}", block.GetDataBytes(),
                                   *m_rCheck.oReadBlock);
            });
            CheckUnfinished(place);
            CheckPointCloudEntries(place, ScanHeaderC(block, m_rCheck.ullFileSize), m_rCheck.oFindings);
        } else {
            Report(RuleT::UnknownBlock, place, [&] {
                return fmt::format("identifier {:#010x}, which readers step over", block.GetId());
            });
        }
        CheckData(place, nullptr);
    }

    void CheckUnfinished(const BlockPlaceC& place)
    {
        if (place.rBlock.GetEntryCount() != 0 || place.rBlock.GetDataBytes() != 0 || !place.bHeaderWhole)
            return;
        Report(RuleT::UnfinishedBlock, place, [] {
            return "an empty block; most likely the program that wrote it did not finish it, and its points "
                   "follow";
        });
    }

    /// Whether the file holds the data of the block; `pHeader` is that of the block that is read.
    void CheckData(const BlockPlaceC& place, const ScanHeaderC* pHeader)
    {
        const std::uint64_t ullEnd = place.rBlock.GetEndOffset();
        if (ullEnd <= m_rCheck.ullFileSize || !place.bHeaderWhole) return;
        const std::uint64_t ullPresent = m_rCheck.ullFileSize - place.rBlock.GetDataOffset();
        FindingC finding{.eRule = RuleT::DataTorn,
                         .eSeverity = SeverityT::Warning,
                         .oOffset = m_rCheck.ullFileSize,
                         .oBlock = place.ullIndex,
                         .strExpected =
                             fmt::format("{} bytes of data, to byte {}", place.rBlock.GetDataBytes(), ullEnd),
                         .strFound = fmt::format("the file ends after {} of them", ullPresent)};
        if (pHeader != nullptr && pHeader->HasRecord()) {
            finding.eSeverity = ReaderDelivers(*pHeader) ? SeverityT::Warning : SeverityT::Error;
            finding.strReadable =
                fmt::format("{} of {} points", pHeader->GetReadable(), pHeader->GetPoints());
        } else if (pHeader != nullptr) {
            finding.eSeverity = SeverityT::Error;
        }
        m_rCheck.oFindings.Add(std::move(finding));
    }

    template<typename MakeT>
    void Report(RuleT eRule, const BlockPlaceC& place, const MakeT& makeFound)
    {
        m_rCheck.oFindings.AddMade(eRule, SeverityT::Error, [&] {
            return FindingC{.oOffset = place.rBlock.GetOffset(),
                            .oBlock = place.ullIndex,
                            .strExpected = "a file header and one point cloud",
                            .strFound = makeFound()};
        });
    }

    ScanInputI& m_rInput;
    ScanCheckC& m_rCheck;
};

} // namespace

bool ScanCheckC::CanReadPoints() const noexcept
{
    if (pHeader == nullptr || !pHeader->HasRecord()) return false;
    return oChain.bLastHeaderWhole || *oReadBlock + 1 != oChain.oBlocks.GetCount();
}

ScanCheckC CheckScan(ScanInputI& input, bool bDeep, const PassedT& passed)
{
    ScanCheckC check;
    check.ullFileSize = input.GetSize();
    check.oChain = WalkChain(input, check.oFindings, passed);
    ScanCheckerC checker(input, check);
    checker.CheckBlocks();
    if (bDeep) checker.CheckStoredPoints(passed);
    check.oFindings.Sort();
    return check;
}

} // namespace Tool
