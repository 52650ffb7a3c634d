// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Head by head.
#include "Sio/Sio_QsbBlockWalk.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_StreamWindow.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace SIO {

namespace {

struct BlockHeadT
{
    std::uint32_t uiId;
    std::uint32_t uiHeaderBytes;
    std::uint32_t uiDataBytes;

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
            if (!AppendBlock(ullOffset, head)) return false;
            ullOffset += QsbFormat::s_nBlockHeadBytes + head.uiHeaderBytes + std::uint64_t{head.uiDataBytes};
            if (head.IsZero() && !PassUnstoredZeros(ullOffset)) return false;
        }
    }

private:
    std::size_t ReadHead(std::uint64_t ullOffset, BlockHeadT& head)
    {
        std::size_t nRead = 0;
        const char* pBytes = m_rWindow.View(ullOffset, QsbFormat::s_nBlockHeadBytes, nRead);
        if (nRead != QsbFormat::s_nBlockHeadBytes) return nRead;
        head.uiId = LoadLittleEndian<std::uint32_t>(pBytes);
        head.uiHeaderBytes = LoadLittleEndian<std::uint32_t>(pBytes + 4);
        head.uiDataBytes = LoadLittleEndian<std::uint32_t>(pBytes + 8);
        return nRead;
    }

    bool AppendBlock(std::uint64_t ullOffset, const BlockHeadT& head)
    {
        if (head.uiHeaderBytes % QsbFormat::s_nEntryBytes != 0) return false;
        const std::uint64_t ullHeader = ullOffset + QsbFormat::s_nBlockHeadBytes;
        const std::uint64_t ullLeft = m_ullFileSize - std::min(m_ullFileSize, ullHeader);
        const std::size_t nEntries = head.uiHeaderBytes / QsbFormat::s_nEntryBytes;
        if (head.uiHeaderBytes > ullLeft || !m_rBlocks.HasRoomFor(nEntries)) return false;
        QsbHeaderEntriesT entries(nEntries);
        if (nEntries != 0 && !ReadEntries(ullHeader, entries)) return false;
        return m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes, std::move(entries));
    }

    bool ReadEntries(std::uint64_t ullOffset, QsbHeaderEntriesT& entries)
    {
        const std::size_t nBytes = entries.size() * QsbFormat::s_nEntryBytes;
        if (nBytes > StreamWindowC::s_nLargest) return m_rWindow.Read(ullOffset, nBytes, entries.data());
        std::size_t nRead = 0;
        const char* pBytes = m_rWindow.View(ullOffset, nBytes, nRead);
        if (nRead != nBytes) return false;
        std::memcpy(entries.data(), pBytes, nBytes);
        return true;
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
};

} // namespace

bool WalkBlockChain(std::FILE* stream, StreamWindowC& window, QsbBlockListC& blocks)
{
    std::uint64_t ullFileSize = 0;
    if (!BSS::HAL::StreamSize(stream, ullFileSize)) return false;
    return BlockWalkerC(stream, ullFileSize, window, blocks).Walk();
}

} // namespace SIO
