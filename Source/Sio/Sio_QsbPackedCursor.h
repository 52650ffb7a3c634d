// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Goes through the blocks of a packed chunk, from its first to its last. Without locks.
#pragma once

#include "Sio/Sio_QsbPackedChain.h"

#include <array>
#include <cstdint>

namespace SIO {

class QsbBlockC;

/// Stands at a run of equal blocks. Valid as long as its chunk is and nothing is appended to it.
class QsbPackedCursorC
{
public:
    /// Stands before the first one. The chunk is kept by reference.
    explicit QsbPackedCursorC(const QsbPackedChainC::ChunkT& chunk) noexcept
        : m_rChunk(chunk), m_pNext(chunk.pBytes), m_ullIndex(chunk.ullFirstIndex),
          m_ullOffset(chunk.ullFirstOffset)
    {}

    /// Goes to the next run, false behind the last one.
    bool Next() noexcept;

    /// Goes to the run that block `ullIndex` is in, which is not before this one and in the chunk.
    void SkipTo(std::uint64_t ullIndex) noexcept;

    // Of the run that it stands at.
    std::uint64_t GetFirstIndex() const noexcept { return m_ullIndex; } ///< in the list of all blocks
    std::uint64_t GetLength() const noexcept { return m_ullLength; }
    std::uint32_t GetId() const noexcept { return m_uiId; }

    /// Whether its blocks have neither header nor data.
    bool IsEmpty() const noexcept { return m_ullBlockBytes == QsbFormat::s_nBlockHeadBytes; }

    /// Offset of block `ullIndex`, which is in the run.
    std::uint64_t GetOffset(std::uint64_t ullIndex) const noexcept
    {
        return m_ullOffset + (ullIndex - m_ullIndex) * m_ullBlockBytes;
    }

    /// Makes `block` block `ullIndex`, which is in the run: sealed, not dirty. Throws std::bad_alloc.
    void CopyTo(QsbBlockC& block, std::uint64_t ullIndex) const;

private:
    std::uint64_t TakeRepeats() noexcept;
    void TakeBlock() noexcept;
    void TakeId() noexcept;
    std::uint32_t TakeNumber() noexcept;

    const QsbPackedChainC::ChunkT& m_rChunk;
    const char* m_pNext;
    std::uint64_t m_ullIndex;
    std::uint64_t m_ullOffset;
    std::uint64_t m_ullLength = 0;
    std::uint64_t m_ullBlockBytes = 0;  ///< of each block
    const char* m_pModel = nullptr;     ///< its head, and its entries behind that
    const char* m_pNextModel = nullptr; ///< of blocks of two models in turn, the other one
    const char* m_pValues = nullptr;    ///< null when they are the model's
    std::uint32_t m_uiId = 0;
    std::uint32_t m_uiDataBytes = 0;
    std::uint32_t m_uiIds = 0; ///< that many blocks more are told by their identifiers
    std::array<const char*, QsbPackedCode::s_nModels> m_apModels; ///< those that the chunk has told so far
};

} // namespace SIO
