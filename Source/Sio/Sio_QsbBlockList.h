// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The list of the blocks of an open file. Empty blocks are many where there are any, so they share records: a
// run of identical ones takes one record, a stretch of others one record and four bytes for each of them. The
// list as a whole never passes a fixed limit: what a file claims cannot exhaust the host. Files of millions
// of small blocks are opened as fast as memory is had, so records are small and the entries that were read
// share their memory. Without locks.
#pragma once

#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_StableList.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace SIO {

/// Memory for the entries of many blocks, freed all at once.
class QsbEntryMemoryC
{
public:
    /// Entries that take more bytes have memory of their own.
    static constexpr std::size_t s_nLargestInCompany = 4096;

    /// An array of `nEntries` entries, which must be some, whose bytes are still to be filled in. Throws
    /// std::bad_alloc.
    QsbEntryArrayT& Take(std::size_t nEntries)
    {
        const std::size_t nBytes = sizeof(QsbEntryArrayT) + nEntries * sizeof(QsbHeaderEntryC);
        if (nBytes > m_nFree) return *MakeArray(TakeMore(nBytes), nEntries);
        m_nFree -= nBytes;
        return *MakeArray(std::exchange(m_pFree, m_pFree + nBytes), nEntries);
    }

    void Clear() noexcept;

private:
    static QsbEntryArrayT* MakeArray(char* pBytes, std::size_t nEntries) noexcept
    {
        return ::new (static_cast<void*>(pBytes)) QsbEntryArrayT{static_cast<std::uint32_t>(nEntries), 0};
    }
    char* TakeMore(std::size_t nBytes);
    char* TakeAlone(std::size_t nBytes);

    std::vector<LargeMemoryT> m_vecLarge;
    std::vector<std::unique_ptr<char[]>> m_vecSmall; ///< the first ones, and those that have many entries
    char* m_pFree = nullptr;
    std::size_t m_nFree = 0;
};

/// The blocks in file order. Blocks are addressed by their index in the file, records stay where they are.
class QsbBlockListC
{
public:
    /// What the records and entries that are read from one file may take in memory. The pieces of memory
    /// that were begun last are not full, which comes on top: a few MiB at the most.
    static constexpr std::uint64_t s_ullMemoryLimit = std::uint64_t{512} << 20;

    using RecordsT = StableListT<QsbBlockC>;

    QsbBlockListC() = default;

    /// Leaves the other list empty.
    QsbBlockListC(QsbBlockListC&& other) noexcept { Swap(other); }
    QsbBlockListC& operator=(QsbBlockListC&& other) noexcept
    {
        QsbBlockListC(std::move(other)).Swap(*this);
        return *this;
    }

    bool IsEmpty() const noexcept { return m_oRecords.empty(); }

    /// Number of blocks in the file.
    std::uint64_t GetCount() const noexcept { return m_ullCount; }

    /// The record of block `ullIndex`, null beyond the last one. It may stand for several blocks and then
    /// tells the identifier and the offset of the first of them.
    const QsbBlockC* Get(std::uint64_t ullIndex) const noexcept;
    QsbBlockC* Get(std::uint64_t ullIndex) noexcept;

    // The identifier and the offset of block `ullIndex`, which must be there.
    std::uint32_t GetId(std::uint64_t ullIndex) const noexcept;
    std::uint64_t GetOffset(std::uint64_t ullIndex) const noexcept;

    QsbBlockC& Last() noexcept { return m_oRecords.back(); }
    const QsbBlockC& Last() const noexcept { return m_oRecords.back(); }

    /// Index of the first block with `uiId`, -1 when there is none. The first point cloud of a kind is the
    /// first of its record.
    std::int64_t Find(std::uint32_t uiId) const noexcept;

    /// Calls `visit(block, ullIndex)` for the blocks in the order of the file until it returns false; for
    /// identical empty ones that follow one another once, with the index of the first of them. The block is
    /// valid during the call.
    template<typename VisitT>
    void ForEach(const VisitT& visit) const;

    /// The records: as many as there are distinct blocks, or fewer.
    const RecordsT& GetRecords() const noexcept { return m_oRecords; }
    RecordsT& GetRecords() noexcept { return m_oRecords; }

    /// Whether `nEntries` more entries and one more record stay within the limit.
    bool HasRoomFor(std::uint64_t nEntries) const noexcept
    {
        return HasRoomForBytes(s_ullRecordMemory + MemoryOf(nEntries)); // 2^28 at most, so no wrap
    }

    /// Appends a block that was read from a file: sealed, not dirty. False at the memory limit.
    [[nodiscard]] bool AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                                  const QsbHeaderEntriesT& entries);

    /// The same, with the `nEntries` entries as the bytes of the file at `pEntries`.
    [[nodiscard]] bool AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                                  const void* pEntries, std::size_t nEntries)
    {
        if (nEntries == 0 && uiDataBytes == 0) return AppendReadEmpty(ullOffset, uiId, 1);
        if (!HasRoomFor(nEntries)) return false;
        QsbEntryArrayT* pKept = nullptr;
        if (nEntries != 0) {
            pKept = &TakeEntries(nEntries);
            CopyEntries(pKept->First(), pEntries, nEntries);
        }
        Append(ullOffset, uiId, uiDataBytes, pKept, QsbBlockC::s_ullSealed);
        return true;
    }

    /// Memory for the entries of the block that is appended next, so that they need not lie in memory twice:
    /// the bytes are to be filled in. `nEntries` are some, and HasRoomFor them. What is taken counts against
    /// the limit and is kept until Clear, whether a block is made of it or not. Throws std::bad_alloc.
    QsbEntryArrayT& TakeEntries(std::size_t nEntries)
    {
        QsbEntryArrayT& entries = m_oEntryMemory.Take(nEntries);
        m_ullMemory += MemoryOf(nEntries);
        return entries;
    }

    /// Appends a block that was read from a file, with entries that TakeEntries gave. False at the memory
    /// limit.
    [[nodiscard]] bool AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                                  QsbEntryArrayT& entries)
    {
        if (!HasRoomForBytes(s_ullRecordMemory)) return false;
        Append(ullOffset, uiId, uiDataBytes, &entries, QsbBlockC::s_ullSealed);
        return true;
    }

    /// Appends `ullRunLength` blocks with neither header nor data that were read from a file.
    [[nodiscard]] bool AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId,
                                       std::uint64_t ullRunLength);

    /// The same for one that follows a block with content and is followed by one: in fewer steps.
    [[nodiscard]] bool AppendReadLone(std::uint64_t ullOffset, std::uint32_t uiId)
    {
        if (!HasRoomForBytes(s_ullRecordMemory + s_ullRunMemory)) return false;
        Append(ullOffset, uiId, 0, nullptr, QsbBlockC::s_ullSealed);
        return true;
    }

    /// Whether AppendReadStretch can go on where the list ends.
    bool CanTakeStretch() const noexcept
    {
        if (IsEmpty() || !Last().IsEmpty()) return false;
        return Last().IsStretch() || Last().GetRunLength() < s_nLongRun;
    }

    /// Whether a block with `uiId` needs a record that begins with it.
    bool NeedsRecord(std::uint32_t uiId) const noexcept
    {
        return uiId < s_nWatchedIds && m_allFirst[uiId] < 0;
    }

    /// Appends blocks with neither header nor data that were read from a file, which follow the last one of
    /// the list. Before that, CanTakeStretch; none of them NeedsRecord; and no s_nLongRun of them with the
    /// same identifier follow one another. False at the memory limit.
    [[nodiscard]] bool AppendReadStretch(const std::uint32_t* pIds, std::size_t nIds);

    /// Appends a block just created for writing: neither sealed nor dirty.
    QsbBlockC& AppendNew(std::uint64_t ullOffset, std::uint32_t uiId);

    /// Gives the last block a record of its own when it shares one, so that it can change alone.
    QsbBlockC& IsolateLast();

    /// Removes the last block. Entries of it that were read go on counting against the limit: they share
    /// their memory with those of other blocks, and it is freed by Clear alone.
    void RemoveLast();

    void Clear() noexcept;

    void Swap(QsbBlockListC& other) noexcept;

    /// So many identical blocks in a row are a run also where they follow a stretch: by then its record
    /// takes no more than their identifiers would.
    static constexpr std::size_t s_nLongRun = 10;

private:
    /// A record that stands for several blocks, or did so, and the index of the first of them.
    struct RunT
    {
        std::uint64_t ullFirstIndex;
        std::uint32_t uiRecord;
        std::uint32_t uiFirstId; ///< where its identifiers begin, when it is a stretch
    };

    /// Where a block is.
    struct PlaceT
    {
        std::size_t nRecord;
        std::uint64_t ullInRecord;
        std::size_t nFirstId;
    };

    PlaceT PlaceOf(std::uint64_t ullIndex) const noexcept;
    std::size_t FirstIdOf(std::size_t nRecord) const noexcept;

    QsbBlockC& Append(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                      QsbEntryArrayT* pEntries, std::uint64_t ullFlags)
    {
        QsbBlockC& record = m_oRecords.emplace_back(ullOffset, uiId, uiDataBytes, pEntries, ullFlags);
        if (uiId < s_nWatchedIds && m_allFirst[uiId] < 0)
            m_allFirst[uiId] = static_cast<std::int64_t>(m_ullCount);
        ++m_ullCount;
        m_ullMemory += s_ullRecordMemory;
        return record;
    }

    /// Most blocks have one or two, for which a call would cost more than the copy.
    static void CopyEntries(void* pTarget, const void* pEntries, std::size_t nEntries) noexcept
    {
        constexpr std::size_t nEntryBytes = sizeof(QsbHeaderEntryC);
        switch (nEntries) {
        case 1:
            std::memcpy(pTarget, pEntries, nEntryBytes);
            break;
        case 2:
            std::memcpy(pTarget, pEntries, 2 * nEntryBytes);
            break;
        default:
            std::memcpy(pTarget, pEntries, nEntries * nEntryBytes);
        }
    }

    static constexpr std::uint64_t s_ullRecordMemory = sizeof(QsbBlockC);
    static constexpr std::uint64_t s_ullRunMemory = sizeof(RunT);
    static constexpr std::uint64_t s_ullIdMemory = sizeof(std::uint32_t);
    static_assert(s_ullRecordMemory + s_ullRunMemory <= s_nLongRun * s_ullIdMemory);

    /// What an array of so many entries takes. One in memory of its own takes what the heap and the list of
    /// such memory need for it as well.
    static constexpr std::uint64_t MemoryOf(std::uint64_t nEntries)
    {
        constexpr std::uint64_t ullAlone = 64;
        if (nEntries == 0) return 0;
        const std::uint64_t ullBytes = sizeof(QsbEntryArrayT) + nEntries * sizeof(QsbHeaderEntryC);
        return ullBytes > QsbEntryMemoryC::s_nLargestInCompany ? ullBytes + ullAlone : ullBytes;
    }

    bool HasRoomForBytes(std::uint64_t ullBytes) const noexcept
    {
        return m_ullMemory + ullBytes <= s_ullMemoryLimit;
    }

    /// Whether the last record is, or once was, one of several blocks.
    bool LastIsRun() const noexcept
    {
        return !m_oRuns.empty() && m_oRuns.back().uiRecord + std::size_t{1} == m_oRecords.size();
    }
    void LengthenLast(std::uint64_t ullBlocks);
    void AppendRun(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullRunLength);
    void NoteRun();
    std::size_t CountAtEndOfStretch(std::uint32_t uiId) const noexcept;
    void CutStretch(std::size_t nBlocks) noexcept;
    void ForgetLastIds(std::size_t nIds) noexcept;
    void ForgetFirstsFrom(std::uint64_t ullIndex) noexcept;

    static constexpr std::uint32_t s_nWatchedIds = 4;

    QsbEntryMemoryC m_oEntryMemory; ///< before the records, which look at their entries when they go
    RecordsT m_oRecords;
    StableListT<RunT> m_oRuns;         ///< in the order of the file
    StableListT<std::uint32_t> m_oIds; ///< of the blocks of all stretches, in the order of the file
    std::uint64_t m_ullCount = 0;
    /// The first blocks with the small identifiers, which point clouds have: with a million blocks it takes
    /// long to look for one.
    std::array<std::int64_t, s_nWatchedIds> m_allFirst = {-1, -1, -1, -1};
    /// What records, runs, identifiers and the entries that were read take. Not beside the count: compilers
    /// then change both as one number of 16 bytes, which for a block with entries waits for the 8 bytes that
    /// were written just before.
    std::uint64_t m_ullMemory = 0;
};

template<typename VisitT>
void QsbBlockListC::ForEach(const VisitT& visit) const
{
    std::uint64_t ullIndex = 0;
    for (std::size_t nRecord = 0; nRecord < m_oRecords.size(); ++nRecord) {
        const QsbBlockC& record = m_oRecords[nRecord];
        const std::uint64_t ullLength = record.GetRunLength();
        if (!record.IsStretch()) {
            if (!visit(record, ullIndex)) return;
            ullIndex += ullLength;
            continue;
        }
        const std::size_t nFirstId = FirstIdOf(nRecord);
        for (std::size_t i = 0, nSame = 1; i < ullLength; i += nSame, nSame = 1) {
            const std::uint32_t uiId = m_oIds[nFirstId + i];
            while (i + nSame < ullLength && m_oIds[nFirstId + i + nSame] == uiId)
                ++nSame;
            QsbBlockC block(record.GetOffset() + i * QsbFormat::s_nBlockHeadBytes, uiId, 0, nullptr,
                            QsbBlockC::s_ullSealed);
            if (nSame > 1) block.SetRunLength(nSame);
            if (!visit(std::as_const(block), ullIndex)) return;
            ullIndex += nSame;
        }
    }
}

} // namespace SIO
