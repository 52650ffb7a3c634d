// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The walk itself, over a small reader that looks at the file through a window.
#include "Sio/Sio_QsbBlockWalk.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlock.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace SIO {

namespace {

namespace Hal = BSS::HAL;

/// Reads a stream front to back. After a seek the window starts small, and grows while the reading goes on
/// without one: files of large blocks are not read through, files of small ones not seeked through.
class ForwardReaderC
{
public:
    explicit ForwardReaderC(std::FILE* stream) : m_pStream(stream), m_pWindow(new char[s_nLargeWindow]) {}

    std::uint64_t GetPosition() const noexcept { return m_ullWindowEnd - (m_nFill - m_nUsed); }

    /// Reads up to `nBytes`; fewer only at the end of the file or after an error.
    std::size_t Read(void* destination, std::size_t nBytes)
    {
        std::size_t nDone = 0;
        while (nDone < nBytes && (m_nUsed < m_nFill || Refill())) {
            const std::size_t nPart = std::min(nBytes - nDone, m_nFill - m_nUsed);
            std::memcpy(static_cast<char*>(destination) + nDone, m_pWindow.get() + m_nUsed, nPart);
            m_nUsed += nPart;
            nDone += nPart;
        }
        return nDone;
    }

    /// Moves on by `ullBytes`, also beyond the end of the file. False when the system refuses.
    bool Skip(std::uint64_t ullBytes)
    {
        while (ullBytes > m_nFill - m_nUsed) {
            if (ullBytes > s_nLargeWindow) return SeekTo(GetPosition() + ullBytes);
            ullBytes -= m_nFill - m_nUsed;
            m_nUsed = m_nFill;
            if (!Refill()) return !HasFailed();
        }
        m_nUsed += static_cast<std::size_t>(ullBytes);
        return true;
    }

    bool SeekTo(std::uint64_t ullPosition)
    {
        if (!Hal::SeekStream(m_pStream, ullPosition)) return false;
        m_ullWindowEnd = ullPosition;
        m_nUsed = m_nFill = 0;
        m_nWindow = s_nSmallWindow;
        return true;
    }

    /// Whether a read ended in an error rather than at the end of the file.
    bool HasFailed() const noexcept { return std::ferror(m_pStream) != 0; }

private:
    static constexpr std::size_t s_nSmallWindow = 4096;
    static constexpr std::size_t s_nLargeWindow = 65536;

    bool Refill()
    {
        m_nFill = std::fread(m_pWindow.get(), 1, m_nWindow, m_pStream);
        m_nUsed = 0;
        m_ullWindowEnd += m_nFill;
        m_nWindow = std::min(2 * m_nWindow, s_nLargeWindow);
        return m_nFill != 0;
    }

    std::FILE* m_pStream;
    std::unique_ptr<char[]> m_pWindow;
    std::size_t m_nWindow = s_nSmallWindow;
    std::size_t m_nFill = 0;
    std::size_t m_nUsed = 0;
    std::uint64_t m_ullWindowEnd = 0; ///< file offset behind the window's last byte
};

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
    BlockWalkerC(std::FILE* stream, std::uint64_t ullFileSize, QsbBlockListC& blocks)
        : m_oReader(stream), m_pStream(stream), m_ullFileSize(ullFileSize), m_rBlocks(blocks)
    {
    }

    bool Walk()
    {
        for (;;) {
            const std::uint64_t ullOffset = m_oReader.GetPosition();
            BlockHeadT head;
            const std::size_t nRead = ReadHead(head);
            if (nRead == 0) return !m_oReader.HasFailed();
            if (nRead != QsbFormat::s_nBlockHeadBytes) return false;
            if (m_rBlocks.IsEmpty() && head.uiId != QsbFormat::s_uiFileHeaderId) return false;
            if (!AppendBlock(ullOffset, head)) return false;
            if (!(head.IsZero() ? PassUnstoredZeros(ullOffset) : m_oReader.Skip(head.uiDataBytes))) return false;
        }
    }

private:
    std::size_t ReadHead(BlockHeadT& head)
    {
        char acBytes[QsbFormat::s_nBlockHeadBytes];
        const std::size_t nRead = m_oReader.Read(acBytes, sizeof acBytes);
        if (nRead != sizeof acBytes) return nRead;
        head.uiId = LoadLittleEndian<std::uint32_t>(acBytes);
        head.uiHeaderBytes = LoadLittleEndian<std::uint32_t>(acBytes + 4);
        head.uiDataBytes = LoadLittleEndian<std::uint32_t>(acBytes + 8);
        return nRead;
    }

    bool AppendBlock(std::uint64_t ullOffset, const BlockHeadT& head)
    {
        if (head.uiHeaderBytes % QsbFormat::s_nEntryBytes != 0) return false;
        const std::uint64_t ullLeft = m_ullFileSize - std::min(m_ullFileSize, m_oReader.GetPosition());
        const std::size_t nEntries = head.uiHeaderBytes / QsbFormat::s_nEntryBytes;
        if (head.uiHeaderBytes > ullLeft || !m_rBlocks.HasRoomFor(nEntries)) return false;
        QsbHeaderEntriesT entries(nEntries);
        if (m_oReader.Read(entries.data(), head.uiHeaderBytes) != head.uiHeaderBytes) return false;
        return m_rBlocks.AppendRead(ullOffset, head.uiId, head.uiDataBytes, std::move(entries));
    }

    /// A stretch of zeros is a chain of empty blocks. Where the file system stores none of it, the walk jumps to the
    /// last block that begins in it. Asking costs a system call, so only now and then.
    bool PassUnstoredZeros(std::uint64_t ullOffset)
    {
        if (ullOffset < m_ullNextQuestion) return true;
        m_ullNextQuestion = ullOffset + s_ullQuestionDistance;
        const std::uint64_t ullPosition = m_oReader.GetPosition();
        std::uint64_t ullStored = 0;
        const bool bAnswered = Hal::NextStoredOffset(m_pStream, ullPosition, ullStored);
        std::uint64_t ullBlocks = 0;
        if (bAnswered && ullStored > ullPosition) ullBlocks = (ullStored - ullPosition) / QsbFormat::s_nBlockHeadBytes;
        if (ullBlocks != 0 && !m_rBlocks.AppendReadEmpty(ullPosition, 0, ullBlocks)) return false;
        return m_oReader.SeekTo(ullPosition + ullBlocks * QsbFormat::s_nBlockHeadBytes);
    }

    static constexpr std::uint64_t s_ullQuestionDistance = std::uint64_t{1} << 20;

    ForwardReaderC m_oReader;
    std::FILE* m_pStream;
    std::uint64_t m_ullFileSize;
    QsbBlockListC& m_rBlocks;
    std::uint64_t m_ullNextQuestion = 0;
};

} // namespace

bool WalkBlockChain(std::FILE* stream, QsbBlockListC& blocks)
{
    std::uint64_t ullFileSize = 0;
    if (!Hal::StreamSize(stream, ullFileSize) || !Hal::SeekStream(stream, 0)) return false;
    std::clearerr(stream);
    return BlockWalkerC(stream, ullFileSize, blocks).Walk();
}

} // namespace SIO
