// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Blocks of a chain as they were read, packed into a byte or a few for each. A file of millions of small
// blocks is opened as fast as memory is had, and most of its blocks are never looked at again. They are
// packed in chunks, each of which is read by itself. Without locks.
#pragma once

#include "Sio/Sio_LargeMemory.h"
#include "Sio/Sio_QsbPackedCode.h"
#include "Sio/Sio_QsbPackedWriter.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace SIO {

class QsbBlockTallyC;

class QsbPackedChainC
{
public:
    /// Blocks that follow one another in the file and in the list.
    struct ChunkT
    {
        std::uint64_t ullFirstIndex; ///< in the list of all blocks
        std::uint64_t ullFirstOffset;
        std::uint64_t ullBlocks;
        const char* pBytes;
        std::size_t nBytes;
    };
    using ChunksT = std::vector<ChunkT>;

    QsbPackedChainC() = default;
    /// Leaves the other one empty.
    QsbPackedChainC(QsbPackedChainC&& other) noexcept { Swap(other); }
    QsbPackedChainC& operator=(QsbPackedChainC&& other) noexcept
    {
        QsbPackedChainC(std::move(other)).Swap(*this);
        return *this;
    }

    /// Appends blocks from the `nShown` bytes at `pShown`, which stand at `ullOffset` of the file, a block's
    /// head first, and moves `ullOffset` to the block that comes next, beyond the shown bytes maybe. It stops
    /// before a block whose head and header are not shown whole, whose header has a size that is not a
    /// multiple of an entry's, or is longer than s_nMostHeaderBytes. False at the memory limit, with
    /// `ullOffset` at the first block that found no room. Throws std::bad_alloc, and then the chain is to be
    /// cleared.
    [[nodiscard]] bool AppendShown(QsbBlockTallyC& tally, const char* pShown, std::size_t nShown,
                                   std::uint64_t& ullOffset);

    /// Appends more blocks equal to the last one, which must be here and empty, and no chunk ended since.
    void RepeatLast(QsbBlockTallyC& tally, std::uint64_t ullBlocks) noexcept;

    /// The next block does not follow the last one in the list, or the last one has changed.
    void EndChunk() noexcept { m_bOpen = false; }

    /// The last block of the list, which is here and stood at `ullOffset`, is no more.
    void RemoveLast(QsbBlockTallyC& tally, std::uint64_t ullOffset) noexcept;

    /// The last block of the list, which was not here and stood at `ullOffset`, is no more.
    void EndAt(std::uint64_t ullOffset) noexcept
    {
        EndChunk();
        m_ullEndOffset = ullOffset;
    }

    /// The chunk that block `ullIndex` of the list is in, null when it is in none.
    const ChunkT* Find(std::uint64_t ullIndex) const noexcept;

    const ChunksT& GetChunks() const noexcept { return m_vecChunks; }

    /// Offset behind the last block.
    std::uint64_t GetEndOffset() const noexcept { return m_ullEndOffset; }

    void Clear() noexcept { QsbPackedChainC().Swap(*this); }
    void Swap(QsbPackedChainC& other) noexcept;

private:
    struct ModelT
    {
        static constexpr std::uint16_t s_uiNone = 0xFFFF; ///< the entries of one that has not been told yet

        std::uint64_t ullSizes = ~std::uint64_t{0}; ///< of the header, below, and the data, above
        std::int64_t llBlockBytes = 0;
        const char* pEntries = nullptr; ///< in a chunk
        std::uint32_t uiId = 0;
        std::uint16_t uiEntries = s_uiNone;
        std::uint8_t uiNumber = 0;
    };
    using ModelsT = std::array<ModelT, QsbPackedCode::s_nModels>;

    struct ProgressT;

    void PackEqual(ProgressT& progress) noexcept;
    void PackAlike(ProgressT& progress, const QsbBlockTallyC& tally) noexcept;
    void PackHeadsAlike(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept;
    void PackKnown(ProgressT& progress, const QsbBlockTallyC& tally) noexcept;
    template<std::size_t nWanted>
    void PackKnownOf(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept;
    static void PackIds(ProgressT& rProgress, QsbPackedWriterC& rWriter, const ModelT& first,
                        const ModelT& second) noexcept;
    template<std::size_t nEntries>
    void PackEntriesAlike(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept;
    bool PackNext(ProgressT& progress, QsbBlockTallyC& tally) noexcept;
    static std::size_t NumberFor(std::uint64_t ullSizes) noexcept;
    void CountBlocks(QsbBlockTallyC& tally, std::uint64_t ullCount) noexcept;
    bool BeginChunk(QsbBlockTallyC& tally, std::uint64_t ullOffset);
    void TakePiece(std::size_t nBytes);
    void DropEmptyChunk(QsbBlockTallyC& tally) noexcept;

    static constexpr std::size_t s_nChunkBytes = QsbPackedCode::s_nChunkBytes;
    static constexpr std::size_t s_nChunkRoom = s_nChunkBytes + QsbPackedCode::s_nMostCodeBytes;
    static constexpr std::size_t s_nFirstPieceBytes = 16384;
    static_assert(s_nChunkRoom <= s_nFirstPieceBytes);

    ChunksT m_vecChunks;
    std::unique_ptr<char[]> m_pFirstPiece; ///< enough for most files
    std::vector<LargeMemoryT> m_vecPieces;
    char* m_pPieceEnd = nullptr; ///< of the one that is written to
    std::uint64_t m_ullEndOffset = 0;

    // Of the chunk that is being written.
    bool m_bOpen = false;
    std::unique_ptr<ModelsT> m_pModels;
    ModelT* m_pLike = nullptr;  ///< of the last block that differed in that from the one before
    ModelT* m_pOther = nullptr; ///< of the one before
    QsbPackedWriterC m_oWriter;
};

} // namespace SIO
