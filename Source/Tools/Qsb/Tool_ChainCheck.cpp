// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Block by block.
#include "Tools/Qsb/Tool_ChainCheck.h"

#include "Sio/Sio_LittleEndian.h"
#include "Tools/Qsb/Tool_Finding.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

constexpr char s_szRefused[] = "the blocks before it, if any; readers refuse the whole file";

// Telling costs more than passing a small block.
constexpr std::uint32_t s_uiBlocksToTell = 4096;
constexpr std::uint64_t s_ullBytesToTell = std::uint64_t{16} << 20;

struct BlockHeadC
{
    std::uint32_t uiId = 0;
    std::uint32_t uiHeaderBytes = 0;
    std::uint32_t uiDataBytes = 0;

    bool IsZero() const noexcept { return uiId == 0 && uiHeaderBytes == 0 && uiDataBytes == 0; }
};

class ChainWalkerC
{
public:
    ChainWalkerC(ScanInputI& input, FindingListC& findings, const PassedT& passed)
        : m_rInput(input), m_oWindow(input), m_rFindings(findings), m_rPassed(passed),
          m_ullSize(input.GetSize())
    {}

    ChainC Walk()
    {
        if (m_ullSize == 0) {
            m_rFindings.Add({.eRule = RuleT::EmptyFile,
                             .oOffset = 0,
                             .strExpected = "a QSB file",
                             .strFound = "0 bytes"});
            return std::move(m_oChain);
        }
        std::uint32_t nBlocks = 0;
        while (m_ullOffset < m_ullSize) {
            if (!TakeBlock()) return std::move(m_oChain);
            if (++nBlocks % s_uiBlocksToTell == 0 || m_ullOffset - m_ullTold > s_ullBytesToTell) Tell();
        }
        Tell();
        m_oChain.bWhole = m_bAccepted;
        return std::move(m_oChain);
    }

private:
    void Tell()
    {
        m_rPassed(m_ullOffset - m_ullTold);
        m_ullTold = m_ullOffset;
    }

    /// Takes the block at the offset and moves on behind it. False when the chain cannot be followed any
    /// further.
    bool TakeBlock()
    {
        BlockHeadC head;
        if (!ReadHead(head) || !CheckFirst(head)) return false;
        const std::uint64_t ullLeft = m_ullSize - m_ullOffset - Format::s_nBlockHeadBytes;
        const std::uint64_t ullHeaderPresent = std::min<std::uint64_t>(head.uiHeaderBytes, ullLeft);
        CheckHeaderSize(head, ullLeft);
        const auto nEntries = static_cast<std::size_t>(ullHeaderPresent / Format::s_nEntryBytes);
        // Whether there is room for a block that is packed, the list alone knows.
        const bool bLong = ullHeaderPresent > SIO::QsbPackedCode::s_nMostHeaderBytes;
        if (bLong && !m_oChain.oBlocks.HasRoomFor(nEntries)) return RefuseRoom();
        if (!Append(head, nEntries)) return RefuseRoom();
        if (!m_oChain.bLastHeaderWhole) return false;
        const std::uint64_t ullDataOffset = m_ullOffset + Format::s_nBlockHeadBytes + head.uiHeaderBytes;
        const std::uint64_t ullHead = m_ullOffset;
        m_ullOffset = ullDataOffset + head.uiDataBytes;
        return !head.IsZero() || PassUnstoredZeros(ullHead);
    }

    bool ReadHead(BlockHeadC& head)
    {
        char acBytes[Format::s_nBlockHeadBytes];
        const std::size_t nRead = m_oWindow.ReadAt(m_ullOffset, acBytes, sizeof acBytes);
        if (nRead != sizeof acBytes) {
            const bool bZeros = std::all_of(acBytes, acBytes + nRead, [](char c) { return c == 0; });
            m_rFindings.Add(
                {.eRule = RuleT::HeadTorn,
                 .oOffset = m_ullOffset,
                 .strExpected =
                     fmt::format("a block head of {} bytes, or the end of the file", sizeof acBytes),
                 .strFound = fmt::format("{} {}byte{}", nRead, bZeros ? "zero " : "", nRead == 1 ? "" : "s"),
                 .strReadable = s_szRefused});
            return false;
        }
        head.uiId = SIO::LoadLittleEndian<std::uint32_t>(acBytes);
        head.uiHeaderBytes = SIO::LoadLittleEndian<std::uint32_t>(acBytes + 4);
        head.uiDataBytes = SIO::LoadLittleEndian<std::uint32_t>(acBytes + 8);
        return true;
    }

    /// A first block that is no file header is followed only when it otherwise looks like a block: a single
    /// damaged byte should not hide the scan, and a file of another kind should give one finding and not ten.
    bool CheckFirst(const BlockHeadC& head)
    {
        if (m_ullOffset != 0 || head.uiId == Format::s_uiFileHeaderId) return true;
        const std::uint64_t ullEnd =
            std::uint64_t{Format::s_nBlockHeadBytes} + head.uiHeaderBytes + head.uiDataBytes;
        const bool bLooksLikeBlock = head.uiHeaderBytes % Format::s_nEntryBytes == 0 && ullEnd <= m_ullSize;
        m_rFindings.Add(
            {.eRule = RuleT::FirstBlock,
             .oOffset = 0,
             .oBlock = 0,
             .strExpected = fmt::format("the identifier {:#010x}", Format::s_uiFileHeaderId),
             .strFound = fmt::format("{:#010x}", head.uiId),
             .strReadable = bLooksLikeBlock ? s_szRefused : "nothing; this is most likely no QSB file"});
        m_bAccepted = false;
        return bLooksLikeBlock;
    }

    void CheckHeaderSize(const BlockHeadC& head, std::uint64_t ullLeft)
    {
        const std::uint64_t ullBlock = m_oChain.oBlocks.GetCount();
        if (head.uiHeaderBytes % Format::s_nEntryBytes != 0) {
            m_rFindings.Add({.eRule = RuleT::HeaderSize,
                             .oOffset = m_ullOffset + 4,
                             .oBlock = ullBlock,
                             .strExpected = fmt::format("a multiple of {}", Format::s_nEntryBytes),
                             .strFound = fmt::format("{}", head.uiHeaderBytes),
                             .strReadable = s_szRefused});
            m_oChain.bLastHeaderWhole = false;
        }
        if (head.uiHeaderBytes > ullLeft) {
            m_rFindings.Add({.eRule = RuleT::HeaderTorn,
                             .oOffset = m_ullSize,
                             .oBlock = ullBlock,
                             .strExpected = fmt::format("{} bytes of header, to byte {}", head.uiHeaderBytes,
                                                        m_ullSize - ullLeft + head.uiHeaderBytes),
                             .strFound = fmt::format("the file ends after {} of them", ullLeft),
                             .strReadable = s_szRefused});
            m_oChain.bLastHeaderWhole = false;
        }
    }

    bool Append(const BlockHeadC& head, std::size_t nEntries)
    {
        SIO::QsbHeaderEntriesT entries(nEntries);
        auto* const pBytes = reinterpret_cast<char*>(entries.data());
        const std::size_t nBytes = nEntries * Format::s_nEntryBytes;
        const std::size_t nRead = m_oWindow.ReadAt(m_ullOffset + Format::s_nBlockHeadBytes, pBytes, nBytes);
        if (nRead != nBytes) { // the file has become shorter
            std::memset(pBytes + nRead, 0, nBytes - nRead);
            m_oChain.bLastHeaderWhole = false;
        }
        return m_oChain.oBlocks.AppendRead(m_ullOffset, head.uiId, head.uiDataBytes, std::move(entries));
    }

    bool RefuseRoom()
    {
        m_rFindings.Add(
            {.eRule = RuleT::TooManyEntries,
             .oOffset = m_ullOffset,
             .oBlock = m_oChain.oBlocks.GetCount(),
             .strExpected = fmt::format("blocks and entries that take no more than {} MiB of memory",
                                        SIO::QsbBlockListC::s_ullMemoryLimit >> 20),
             .strFound = "more, from here on",
             .strReadable = s_szRefused});
        m_oChain.bLastHeaderWhole = true; // this block is not in the list, and the one before it was whole
        return false;
    }

    /// A stretch of zeros is a chain of empty blocks; what the file system does not store of it is passed at
    /// once.
    bool PassUnstoredZeros(std::uint64_t ullHead)
    {
        constexpr std::uint64_t ullQuestionDistance = std::uint64_t{1} << 20;
        if (ullHead < m_ullNextQuestion) return true;
        m_ullNextQuestion = ullHead + ullQuestionDistance;
        std::uint64_t ullStored = 0;
        if (!m_rInput.NextStoredOffset(m_ullOffset, ullStored)) return true;
        ullStored = std::min(ullStored, m_ullSize);
        if (ullStored <= m_ullOffset) return true;
        const std::uint64_t ullBlocks = (ullStored - m_ullOffset) / Format::s_nBlockHeadBytes;
        if (ullBlocks == 0) return true;
        if (!m_oChain.oBlocks.AppendReadEmpty(m_ullOffset, 0, ullBlocks)) return RefuseRoom();
        m_ullOffset += ullBlocks * Format::s_nBlockHeadBytes;
        return true;
    }

    ScanInputI& m_rInput;
    InputWindowC m_oWindow;
    FindingListC& m_rFindings;
    const PassedT& m_rPassed;
    std::uint64_t m_ullSize;
    ChainC m_oChain;
    std::uint64_t m_ullOffset = 0;
    std::uint64_t m_ullTold = 0; ///< offset when progress was told last
    std::uint64_t m_ullNextQuestion = 0;
    bool m_bAccepted = true;
};

} // namespace

ChainC WalkChain(ScanInputI& input, FindingListC& findings, const PassedT& passed)
{
    return ChainWalkerC(input, findings, passed).Walk();
}

} // namespace Tool
