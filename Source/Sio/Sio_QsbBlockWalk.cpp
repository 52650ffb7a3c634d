// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Head by head.
#include "Sio/Sio_QsbBlockWalk.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockList.h"
#include "Sio/Sio_StreamWindow.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace SIO {

namespace {

struct BlockHeadT
{
    std::uint32_t uiId;
    std::uint32_t uiHeaderBytes;
    std::uint32_t uiDataBytes;

    explicit BlockHeadT(const char* pBytes) noexcept
        : uiId(LoadLittleEndian<std::uint32_t>(pBytes)),
          uiHeaderBytes(LoadLittleEndian<std::uint32_t>(pBytes + 4)),
          uiDataBytes(LoadLittleEndian<std::uint32_t>(pBytes + 8))
    {}
    BlockHeadT() noexcept = default;

    std::uint64_t BlockBytes() const noexcept
    {
        return QsbFormat::s_nBlockHeadBytes + std::uint64_t{uiHeaderBytes} + uiDataBytes;
    }
    bool IsEmpty() const noexcept { return uiHeaderBytes == 0 && uiDataBytes == 0; }
    bool IsZero() const noexcept { return uiId == 0 && uiHeaderBytes == 0 && uiDataBytes == 0; }
};

class BlockWalkerC
{
public:
    BlockWalkerC(std::FILE* stream, std::uint64_t ullFileSize, StreamWindowC& window, QsbBlockListC& blocks)
        : m_pStream(stream), m_ullFileSize(ullFileSize), m_rWindow(window), m_rBlocks(blocks)
    {}

    bool Walk()
    {
        for (std::uint64_t ullOffset = 0;;) {
            BlockHeadT head;
            const std::size_t nRead = ReadHead(ullOffset, head);
            if (nRead == 0) return !m_rWindow.HasFailed();
            if (nRead != QsbFormat::s_nBlockHeadBytes) return false;
            if (m_rBlocks.IsEmpty() && head.uiId != QsbFormat::s_uiFileHeaderId) return false;
            if (head.IsEmpty()) {
                if (!AppendEmptyBlocks(ullOffset, head)) return false;
            } else {
                if (!AppendBlock(ullOffset, head)) return false;
                ullOffset += head.BlockBytes();
                if (!AppendShownBlocks(ullOffset)) return false;
            }
        }
    }

private:
    std::size_t ReadHead(std::uint64_t ullOffset, BlockHeadT& head)
    {
        std::size_t nRead = 0;
        const char* pBytes = View(ullOffset, QsbFormat::s_nBlockHeadBytes, nRead);
        if (nRead == QsbFormat::s_nBlockHeadBytes) head = BlockHeadT(pBytes);
        return nRead;
    }

    bool AppendEmptyBlocks(std::uint64_t& ullOffset, const BlockHeadT& head)
    {
        const std::uint64_t ullSame = CountSameHeads(ullOffset);
        if (!m_rBlocks.AppendReadEmpty(ullOffset, head.uiId, ullSame)) return false;
        ullOffset += ullSame * QsbFormat::s_nBlockHeadBytes;
        if (head.IsZero()) return PassUnstoredZeros(ullOffset);
        return !m_rBlocks.CanTakeStretch() || AppendUnlikeHeads(ullOffset, head.uiId, ullSame);
    }

    /// Appends the empty blocks that follow as far as they are shown, many at a time; not those that are
    /// better a run, of which the last ones had the same identifier.
    bool AppendUnlikeHeads(std::uint64_t& ullOffset, std::uint32_t uiLastId, std::uint64_t ullSame)
    {
        std::array<std::uint32_t, 512> auiIds;
        std::size_t nIds = 0;
        do {
            const char* pHead = m_pShown + (ullOffset - m_ullShownBegin);
            const std::size_t nShown = static_cast<std::size_t>(m_pShown + m_nShown - pHead);
            const std::size_t nMost = std::min(nShown / QsbFormat::s_nBlockHeadBytes, auiIds.size());
            for (nIds = 0; nIds < nMost; ++nIds, pHead += QsbFormat::s_nBlockHeadBytes) {
                const auto uiId = LoadLittleEndian<std::uint32_t>(pHead);
                if (LoadLittleEndian<std::uint64_t>(pHead + 4) != 0 || m_rBlocks.NeedsRecord(uiId)) break;
                ullSame = uiId == uiLastId ? ullSame + 1 : 1;
                if (ullSame == QsbBlockListC::s_nLongRun) break;
                auiIds[nIds] = uiLastId = uiId;
            }
            if (nIds != 0 && !m_rBlocks.AppendReadStretch(auiIds.data(), nIds)) return false;
            ullOffset += nIds * QsbFormat::s_nBlockHeadBytes;
        } while (nIds == auiIds.size());
        return true;
    }

    /// How many heads equal to the one at the offset follow one another there, itself included, as far as is
    /// shown.
    std::uint64_t CountSameHeads(std::uint64_t ullOffset) const
    {
        const std::size_t nBefore = static_cast<std::size_t>(ullOffset - m_ullShownBegin);
        const char* const pFirst = m_pShown + nBefore;
        const char* const pEnd = pFirst + (m_nShown - nBefore);
        const char* pNext = pFirst + QsbFormat::s_nBlockHeadBytes;
        while (pEnd - pNext >= static_cast<std::ptrdiff_t>(QsbFormat::s_nBlockHeadBytes) &&
               std::memcmp(pNext, pFirst, QsbFormat::s_nBlockHeadBytes) == 0) {
            pNext += QsbFormat::s_nBlockHeadBytes;
        }
        return static_cast<std::uint64_t>(pNext - pFirst) / QsbFormat::s_nBlockHeadBytes;
    }

    bool AppendBlock(std::uint64_t ullOffset, const BlockHeadT& head)
    {
        if (head.uiHeaderBytes == 0)
            return m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes, nullptr, 0);
        if (head.uiHeaderBytes % QsbFormat::s_nEntryBytes != 0) return false;
        const std::uint64_t ullHeader = ullOffset + QsbFormat::s_nBlockHeadBytes;
        const std::uint64_t ullLeft = m_ullFileSize - std::min(m_ullFileSize, ullHeader);
        const std::size_t nEntries = head.uiHeaderBytes / QsbFormat::s_nEntryBytes;
        if (head.uiHeaderBytes > ullLeft || !m_rBlocks.HasRoomFor(nEntries)) return false;
        if (head.uiHeaderBytes > StreamWindowC::s_nLargest) return AppendLongBlock(ullOffset, head);
        std::size_t nRead = 0;
        const char* pBytes = View(ullHeader, head.uiHeaderBytes, nRead);
        return nRead == head.uiHeaderBytes &&
               m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes, pBytes, nEntries);
    }

    /// Behind a block with content: appends those with content that follow, and single empty ones between
    /// them, as far as they are shown but for their data. What is to be treated in another way, or refused,
    /// is left.
    bool AppendShownBlocks(std::uint64_t& ullOffset)
    {
        const char* const pShown = m_pShown;
        const std::uint64_t ullShownBegin = m_ullShownBegin;
        const std::uint64_t ullShown = m_nShown;
        for (;;) {
            const std::uint64_t ullBefore = ullOffset - ullShownBegin;
            if (ullBefore + QsbFormat::s_nBlockHeadBytes > ullShown) return true;
            const char* const pHead = pShown + ullBefore;
            const BlockHeadT head(pHead);
            if (head.IsEmpty()) {
                if (ullBefore + 2 * QsbFormat::s_nBlockHeadBytes > ullShown) return true;
                if (BlockHeadT(pHead + QsbFormat::s_nBlockHeadBytes).IsEmpty()) return true;
                if (!m_rBlocks.AppendReadLone(ullOffset, head.uiId)) return false;
                ullOffset += QsbFormat::s_nBlockHeadBytes;
                continue;
            }
            if (head.uiHeaderBytes % QsbFormat::s_nEntryBytes != 0) return true;
            if (ullBefore + QsbFormat::s_nBlockHeadBytes + head.uiHeaderBytes > ullShown) return true;
            if (!m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes,
                                      pHead + QsbFormat::s_nBlockHeadBytes,
                                      head.uiHeaderBytes / QsbFormat::s_nEntryBytes)) {
                return false;
            }
            ullOffset += head.BlockBytes();
        }
    }

    bool AppendLongBlock(std::uint64_t ullOffset, const BlockHeadT& head)
    {
        QsbEntryArrayT& entries = m_rBlocks.TakeEntries(head.uiHeaderBytes / QsbFormat::s_nEntryBytes);
        return m_rWindow.Read(ullOffset + QsbFormat::s_nBlockHeadBytes, head.uiHeaderBytes,
                              entries.First()) &&
               m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes, entries);
    }

    /// As the window's own View. What the window showed last is looked at here: small blocks are many.
    const char* View(std::uint64_t ullOffset, std::size_t nBytes, std::size_t& nShown)
    {
        const std::uint64_t ullSkipped = ullOffset - m_ullShownBegin; // never behind: the walk goes forward
        if (ullSkipped > m_nShown || nBytes > m_nShown - ullSkipped) {
            m_pShown = m_rWindow.ViewAll(ullOffset, nBytes, m_nShown);
            m_ullShownBegin = ullOffset;
        }
        const std::size_t nBefore = static_cast<std::size_t>(ullOffset - m_ullShownBegin);
        nShown = std::min(nBytes, m_nShown - nBefore);
        return m_pShown + nBefore;
    }

    /// A stretch of zeros is a chain of empty blocks. Where the file system stores none of it, `ullOffset`
    /// jumps to the last block that begins in it. Asking costs a system call, so only now and then.
    bool PassUnstoredZeros(std::uint64_t& ullOffset)
    {
        if (ullOffset < m_ullNextQuestion) return true;
        m_ullNextQuestion = ullOffset + s_ullQuestionDistance;
        std::uint64_t ullStored = 0;
        const bool bAnswered = BSS::HAL::NextStoredOffset(m_pStream, ullOffset, ullStored);
        if (!bAnswered || ullStored <= ullOffset) return true;
        const std::uint64_t ullBlocks = (ullStored - ullOffset) / QsbFormat::s_nBlockHeadBytes;
        if (ullBlocks == 0) return true;
        if (!m_rBlocks.AppendReadEmpty(ullOffset, 0, ullBlocks)) return false;
        ullOffset += ullBlocks * QsbFormat::s_nBlockHeadBytes;
        m_ullNextQuestion = ullOffset + s_ullQuestionDistance;
        return true;
    }

    static constexpr std::uint64_t s_ullQuestionDistance = 4096;

    std::FILE* m_pStream;
    std::uint64_t m_ullFileSize;
    StreamWindowC& m_rWindow;
    QsbBlockListC& m_rBlocks;
    std::uint64_t m_ullNextQuestion = 0;
    const char* m_pShown = nullptr;
    std::size_t m_nShown = 0;
    std::uint64_t m_ullShownBegin = 0;
};

} // namespace

bool WalkBlockChain(std::FILE* stream, StreamWindowC& window, QsbBlockListC& blocks)
{
    std::uint64_t ullFileSize = 0;
    if (!BSS::HAL::StreamSize(stream, ullFileSize)) return false;
    return BlockWalkerC(stream, ullFileSize, window, blocks).Walk();
}

} // namespace SIO
