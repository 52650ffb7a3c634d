// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes the codes of packed blocks one behind the other. It is small and is copied: loops work on a copy of
// their own, because bytes that are stored could belong to any object that a loop does not have to itself.
#pragma once

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbPackedCode.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace SIO {

class QsbPackedWriterC
{
public:
    QsbPackedWriterC() = default;

    /// Writes from `pBegin` on, and is full behind `nBytes` of them; a code that begins before that must have
    /// room, s_nMostCodeBytes.
    QsbPackedWriterC(char* pBegin, std::size_t nBytes) noexcept : m_pNext(pBegin), m_pFull(pBegin + nBytes) {}

    bool IsFull() const noexcept { return m_pNext >= m_pFull; }

    /// Behind what has been written.
    char* GetEnd() const noexcept { return m_pNext; }
    std::size_t CountFrom(const char* pBegin) const noexcept
    {
        return static_cast<std::size_t>(m_pNext - pBegin);
    }

    /// Block `uiId` of model `uiNumber`, whose identifier is `uiModelId`, if it is equal to the last block
    /// and does not differ from its model, which is to say that `ullDifference` is 0. Needs no room.
    bool PutIfLast(std::uint8_t uiNumber, std::uint32_t uiId, std::uint64_t ullDifference = 0) noexcept
    {
        if (((Key(uiNumber, uiId) ^ m_ullLast) | ullDifference) != 0) return false;
        ++m_ullRepeats;
        return true;
    }

    /// The same when it is not.
    void PutOther(std::uint8_t uiNumber, std::uint32_t uiId, std::uint32_t uiModelId) noexcept
    {
        PutRepeats();
        PutCode(uiNumber, uiId, uiModelId);
        m_ullLast = Key(uiNumber, uiId);
    }

    /// The same for one that may have other data and other values. Its entries are at `pEntries`.
    void PutDifferent(std::uint8_t uiNumber, std::uint32_t uiId, std::uint32_t uiModelId,
                      std::uint32_t uiData, std::uint32_t uiModelData, bool bOtherValues,
                      const char* pEntries, std::size_t nEntries) noexcept
    {
        PutRepeats();
        const std::size_t nOtherData = uiData != uiModelData ? 1 : 0;
        const std::size_t nValues = bOtherValues ? nEntries : 0;
        PutCode(uiNumber + nOtherData * QsbPackedCode::s_uiOtherData +
                    (bOtherValues ? QsbPackedCode::s_uiOtherValues : 0),
                uiId, uiModelId);
        StoreLittleEndian(m_pNext, uiData);
        m_pNext += nOtherData * sizeof uiData;
        for (std::size_t i = 0; i < nValues; ++i, m_pNext += QsbPackedCode::s_nValueBytes)
            std::memcpy(m_pNext, pEntries + i * QsbFormat::s_nEntryBytes + QsbPackedCode::s_nTypeAndTagBytes,
                        QsbPackedCode::s_nValueBytes);
        m_ullLast = nOtherData + nValues == 0 ? Key(uiNumber, uiId) : s_ullNone;
    }

    /// Identifiers of blocks that follow the last block and are told by them alone.
    class IdsC
    {
    public:
        /// The writer is not full and is not repeating.
        explicit IdsC(const QsbPackedWriterC& writer) noexcept
            : m_pNext(writer.m_pNext + QsbPackedCode::s_nIdsHeadBytes),
              m_uiLast(static_cast<std::uint32_t>(writer.m_ullLast))
        {}

        /// False, and nothing has happened, when the block may be equal to the one before it or to its model,
        /// whose identifier is `uiModelId`, or there are enough.
        bool Put(std::uint32_t uiId, std::uint32_t uiModelId) noexcept
        {
            if (uiId == m_uiLast || uiId == uiModelId || m_uiLeft == 0) return false;
            StoreLittleEndian(m_pNext, uiId);
            m_pNext += sizeof uiId;
            m_uiLast = uiId;
            --m_uiLeft;
            return true;
        }

        std::uint32_t GetCount() const noexcept { return QsbPackedCode::s_nMostIds - m_uiLeft; }

    private:
        friend class QsbPackedWriterC;

        char* m_pNext;
        std::uint32_t m_uiLast;
        std::uint32_t m_uiLeft = QsbPackedCode::s_nMostIds;
    };

    /// Blocks of models `uiFirst` and `uiSecond` in turn, with the identifiers.
    void PutIds(std::uint8_t uiFirst, std::uint8_t uiSecond, const IdsC& ids) noexcept
    {
        const std::uint32_t uiIds = ids.GetCount();
        if (uiIds == 0) return;
        m_pNext[0] = static_cast<char>(QsbPackedCode::s_uiIds);
        m_pNext[1] = static_cast<char>(uiFirst);
        m_pNext[2] = static_cast<char>(uiSecond);
        m_pNext[3] = static_cast<char>(uiIds);
        m_pNext = ids.m_pNext;
        m_ullLast = Key(uiIds % 2 == 0 ? uiSecond : uiFirst, ids.m_uiLast);
    }

    /// A block that becomes model `uiNumber`, with its head and entries. Returns where these are kept.
    const char* PutModel(std::uint8_t uiNumber, std::uint32_t uiId, const char* pHead,
                         std::size_t nBytes) noexcept
    {
        PutRepeats();
        *m_pNext++ = static_cast<char>(QsbPackedCode::s_uiNewModel);
        *m_pNext++ = static_cast<char>(uiNumber);
        std::memcpy(m_pNext, pHead, nBytes);
        m_ullLast = Key(uiNumber, uiId);
        return std::exchange(m_pNext, m_pNext + nBytes);
    }

    /// Whether the last block has been repeated.
    bool IsRepeating() const noexcept { return m_ullRepeats != 0; }

    /// More blocks equal to the last one, which must have its model's values.
    void Repeat(std::uint64_t ullBlocks) noexcept { m_ullRepeats += ullBlocks; }

private:
    static constexpr std::uint64_t s_ullNone = ~std::uint64_t{0};

    static std::uint64_t Key(std::uint8_t uiNumber, std::uint32_t uiId) noexcept
    {
        return std::uint64_t{uiNumber} << 32 | uiId;
    }

    /// Without a branch: identifiers change at random.
    void PutCode(std::size_t uiCode, std::uint32_t uiId, std::uint32_t uiModelId) noexcept
    {
        const std::size_t nOther = uiId != uiModelId ? 1 : 0;
        *m_pNext = static_cast<char>(uiCode + nOther * QsbPackedCode::s_uiOtherId);
        StoreLittleEndian(m_pNext + 1, uiId);
        m_pNext += 1 + nOther * sizeof uiId;
    }

    void PutRepeats() noexcept
    {
        if (m_ullRepeats == 0) [[likely]]
            return;
        *m_pNext++ = static_cast<char>(QsbPackedCode::s_uiRepeat);
        for (; m_ullRepeats >= 0x80; m_ullRepeats >>= 7)
            *m_pNext++ = static_cast<char>(m_ullRepeats | 0x80);
        *m_pNext++ = static_cast<char>(m_ullRepeats);
        m_ullRepeats = 0;
    }

    char* m_pNext = nullptr;
    char* m_pFull = nullptr;
    std::uint64_t m_ullRepeats = 0;      ///< of the last block that have not been written
    std::uint64_t m_ullLast = s_ullNone; ///< the last block, unless it had other values
};

} // namespace SIO
