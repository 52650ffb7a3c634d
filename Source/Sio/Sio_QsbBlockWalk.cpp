// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Window by window.
#include "Sio/Sio_QsbBlockWalk.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockList.h"
#include "Sio/Sio_StreamWindow.h"

#include <algorithm>
#include <utility>

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

    std::uint64_t BlockBytes() const noexcept
    {
        return QsbFormat::s_nBlockHeadBytes + std::uint64_t{uiHeaderBytes} + uiDataBytes;
    }
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
            std::size_t nRead = 0;
            const char* const pHead = View(ullOffset, QsbFormat::s_nBlockHeadBytes, nRead);
            if (nRead == 0) return !m_rWindow.HasFailed();
            if (nRead != QsbFormat::s_nBlockHeadBytes) return false;
            const BlockHeadT head(pHead);
            if (m_rBlocks.IsEmpty() && head.uiId != QsbFormat::s_uiFileHeaderId) return false;
            if (!IsHeaderThere(ullOffset, head)) return false;
            const bool bLong = head.uiHeaderBytes > QsbPackedCode::s_nMostHeaderBytes;
            if (!(bLong ? AppendLongBlock(ullOffset, head) : AppendShownBlocks(ullOffset, head)))
                return false;
        }
    }

private:
    bool IsHeaderThere(std::uint64_t ullOffset, const BlockHeadT& head) const noexcept
    {
        const std::uint64_t ullBehind = ullOffset + QsbFormat::s_nBlockHeadBytes;
        return head.uiHeaderBytes % QsbFormat::s_nEntryBytes == 0 &&
               head.uiHeaderBytes <= m_ullFileSize - std::min(m_ullFileSize, ullBehind);
    }

    /// Appends the block, and those that follow as far as they are shown but for their data. What is to be
    /// treated in another way, or refused, is left.
    bool AppendShownBlocks(std::uint64_t& ullOffset, const BlockHeadT& head)
    {
        const std::size_t nWanted = QsbFormat::s_nBlockHeadBytes + head.uiHeaderBytes;
        std::size_t nRead = 0;
        const char* const pShown = View(ullOffset, nWanted, nRead);
        if (nRead != nWanted) return false;
        const std::size_t nShown = m_nShown - static_cast<std::size_t>(ullOffset - m_ullShownBegin);
        const std::uint64_t ullBefore = ullOffset;
        if (!m_rBlocks.AppendShown(pShown, nShown, ullOffset) || ullOffset == ullBefore) return false;
        return !head.IsZero() || PassUnstoredZeros(ullOffset);
    }

    /// Its entries are read to where they stay, so that they do not lie in memory twice.
    bool AppendLongBlock(std::uint64_t& ullOffset, const BlockHeadT& head)
    {
        const std::size_t nEntries = head.uiHeaderBytes / QsbFormat::s_nEntryBytes;
        if (!m_rBlocks.HasRoomFor(nEntries)) return false;
        QsbHeaderEntriesT entries(nEntries);
        if (!m_rWindow.Read(ullOffset + QsbFormat::s_nBlockHeadBytes, head.uiHeaderBytes, entries.data()))
            return false;
        const std::uint64_t ullBlock = std::exchange(ullOffset, ullOffset + head.BlockBytes());
        return m_rBlocks.AppendRead(ullBlock, head.uiId, head.uiDataBytes, std::move(entries));
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
