// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The blocks of an open file as they stand in memory: header entries, block records and the list of them.
// Runs of identical empty blocks share one record, so a file of nothing but such blocks takes no memory to
// speak of, and the list as a whole never passes a fixed limit: what a file claims cannot exhaust the host.
// Files of millions of small blocks are opened as fast as memory is had, so records are small and the entries
// that were read share their memory. Without locks.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_StableList.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace SIO {

/// A header entry, as its 16 bytes in the file.
class QsbHeaderEntryC
{
public:
    QsbHeaderEntryC() noexcept = default;

    static QsbHeaderEntryC FromUInt32(std::uint32_t type, std::uint32_t tag, std::uint32_t value) noexcept;
    static QsbHeaderEntryC FromDouble(std::uint32_t tag, double value) noexcept;

    std::uint32_t GetType() const noexcept;
    std::uint32_t GetTag() const noexcept;

    // The value, read from as many of its eight bytes as the name says.
    std::uint8_t AsByte() const noexcept;
    std::uint32_t AsUInt32() const noexcept;
    std::uint64_t AsUInt64() const noexcept;
    double AsDouble() const noexcept;

    // Replace the value; the type and the tag stay.
    void SetByte(std::uint8_t value) noexcept;
    void SetUInt32(std::uint32_t value) noexcept;
    void SetUInt64(std::uint64_t value) noexcept;
    void SetDouble(double value) noexcept;

    const char* GetBytes() const noexcept { return m_acBytes.data(); }

private:
    std::array<char, QsbFormat::s_nEntryBytes> m_acBytes{};
};

static_assert(sizeof(QsbHeaderEntryC) == QsbFormat::s_nEntryBytes, "read from the file as an array");

using QsbHeaderEntriesT = std::vector<QsbHeaderEntryC>;

/// Entries that lie one behind the other, after this.
struct alignas(8) QsbEntryArrayT
{
    std::uint32_t uiCount;
    std::uint32_t uiCapacity; ///< 0: in memory that the list owns, so there they stay as many as they are

    QsbHeaderEntryC* First() noexcept { return reinterpret_cast<QsbHeaderEntryC*>(this + 1); }
};

/// One block, or a run of identical empty ones.
class QsbBlockC
{
public:
    QsbBlockC(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes) noexcept
        : QsbBlockC(ullOffset, uiId, uiDataBytes, nullptr, 0)
    {}
    QsbBlockC(const QsbBlockC&) = delete;
    QsbBlockC& operator=(const QsbBlockC&) = delete;
    ~QsbBlockC() { FreeEntries(); }

    /// Offset of the block's head in the file; of the first one, in a run.
    std::uint64_t GetOffset() const noexcept { return m_ullOffset; }
    std::uint32_t GetId() const noexcept { return m_uiId; }
    std::uint32_t GetHeaderBytes() const noexcept;
    std::uint32_t GetDataBytes() const noexcept { return m_uiDataBytes; }
    void SetDataBytes(std::uint32_t uiDataBytes) noexcept { m_uiDataBytes = uiDataBytes; }

    /// How many blocks the record stands for.
    std::uint64_t GetRunLength() const noexcept { return HasFlag(s_ullRun) ? m_ullRest >> s_nFlags : 1; }

    /// Offset of the data area.
    std::uint64_t GetDataOffset() const noexcept
    {
        return m_ullOffset + QsbFormat::s_nBlockHeadBytes + GetHeaderBytes();
    }

    /// Offset of the block that follows.
    std::uint64_t GetEndOffset() const noexcept;

    std::size_t GetEntryCount() const noexcept { return HasEntries() ? GetEntries()->uiCount : 0; }
    const QsbHeaderEntryC* begin() const noexcept { return HasEntries() ? GetEntries()->First() : nullptr; }
    const QsbHeaderEntryC* end() const noexcept { return begin() + GetEntryCount(); }

    /// The first entry with `tag`, null when there is none.
    const QsbHeaderEntryC* FindEntry(std::uint32_t tag) const noexcept;

    /// The first entry with `tag` for changing its value, which marks the header dirty; null when there is
    /// none.
    QsbHeaderEntryC* ChangeEntry(std::uint32_t tag) noexcept;

    /// Adds an entry and marks the header dirty. Refused (false) while the block is sealed.
    [[nodiscard]] bool AddEntry(const QsbHeaderEntryC& entry);

    /// While set, no entry can be added.
    bool IsSealed() const noexcept { return HasFlag(s_ullSealed); }
    void SetSealed(bool bSealed) noexcept { SetFlag(s_ullSealed, bSealed); }

    /// While set, head and entries must be written again.
    bool IsHeaderDirty() const noexcept { return HasFlag(s_ullHeaderDirty); }
    void SetHeaderDirty(bool bDirty) noexcept { SetFlag(s_ullHeaderDirty, bDirty); }

private:
    friend class QsbBlockListC;

    friend class StableListT<QsbBlockC>;

    // Flags lie below what the word is for otherwise: the address of entries, or the length of a run, which
    // has none. Bit fields would do the same, but a record is then made in steps that wait for one another.
    static constexpr int s_nFlags = 3;
    static constexpr std::uint64_t s_ullRun = 1;
    static constexpr std::uint64_t s_ullSealed = 2;
    static constexpr std::uint64_t s_ullHeaderDirty = 4;
    static constexpr std::uint64_t s_ullFlags = (1 << s_nFlags) - 1;

    QsbBlockC(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
              QsbEntryArrayT* pEntries, std::uint64_t ullFlags) noexcept
        : m_ullOffset(ullOffset), m_ullRest(reinterpret_cast<std::uintptr_t>(pEntries) | ullFlags),
          m_uiId(uiId), m_uiDataBytes(uiDataBytes)
    {}

    bool HasFlag(std::uint64_t ullFlag) const noexcept { return (m_ullRest & ullFlag) != 0; }
    void SetFlag(std::uint64_t ullFlag, bool bSet) noexcept
    {
        m_ullRest = bSet ? m_ullRest | ullFlag : m_ullRest & ~ullFlag;
    }

    bool HasEntries() const noexcept { return !HasFlag(s_ullRun) && m_ullRest > s_ullFlags; }

    /// Whether its entries lie in memory that the list owns: they were read, and none was added since.
    bool HasSharedEntries() const noexcept { return HasEntries() && GetEntries()->uiCapacity == 0; }
    QsbEntryArrayT* GetEntries() const noexcept
    {
        return reinterpret_cast<QsbEntryArrayT*>(static_cast<std::uintptr_t>(m_ullRest & ~s_ullFlags));
    }
    void SetRunLength(std::uint64_t ullRunLength) noexcept;
    void FreeEntries() noexcept;

    std::uint64_t m_ullOffset;
    std::uint64_t m_ullRest;
    std::uint32_t m_uiId;
    std::uint32_t m_uiDataBytes;
};

static_assert(sizeof(QsbBlockC) == 24, "a file of a million small blocks has a million of these");

/// Memory for the entries of many blocks, freed all at once.
class QsbEntryMemoryC
{
public:
    /// Entries that take more bytes have memory of their own.
    static constexpr std::size_t s_nLargestInCompany = 4096;

    /// An array of `nEntries` entries, which must be some, whose bytes are still to be filled in. Throws
    /// std::bad_alloc.
    QsbEntryArrayT& Take(std::size_t nEntries);

    void Clear() noexcept;

private:
    char* TakeBytes(std::size_t nBytes);
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

    /// The record of block `ullIndex`, null beyond the last one. A record of a run stands for several
    /// indices.
    const QsbBlockC* Get(std::uint64_t ullIndex) const noexcept;
    QsbBlockC* Get(std::uint64_t ullIndex) noexcept;

    QsbBlockC& Last() noexcept { return m_oRecords.back(); }
    const QsbBlockC& Last() const noexcept { return m_oRecords.back(); }

    /// Index of the first block with `uiId`, -1 when there is none.
    std::int64_t Find(std::uint32_t uiId) const noexcept;

    /// The records: as many as there are distinct blocks.
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
            std::memcpy(static_cast<void*>(pKept->First()), pEntries, nEntries * sizeof(QsbHeaderEntryC));
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

    /// Appends a block just created for writing: neither sealed nor dirty.
    QsbBlockC& AppendNew(std::uint64_t ullOffset, std::uint32_t uiId);

    /// Gives the last block a record of its own when it is part of a run, so that it can change alone.
    QsbBlockC& IsolateLast();

    /// Removes the last block. Entries of it that were read go on counting against the limit: they share
    /// their memory with those of other blocks, and it is freed by Clear alone.
    void RemoveLast();

    void Clear() noexcept;

    void Swap(QsbBlockListC& other) noexcept;

private:
    /// A record that stands for several blocks, and the index of the first of them.
    struct RunT
    {
        std::size_t nRecord;
        std::uint64_t ullFirstIndex;
    };

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

    static constexpr std::uint64_t s_ullRecordMemory = sizeof(QsbBlockC);
    static constexpr std::uint64_t s_ullRunMemory = sizeof(RunT);

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
        return !m_oRuns.empty() && m_oRuns.back().nRecord + 1 == m_oRecords.size();
    }
    void LengthenLast(std::uint64_t ullBlocks);
    void ForgetFirstsFrom(std::uint64_t ullIndex) noexcept;

    static constexpr std::uint32_t s_nWatchedIds = 4;

    QsbEntryMemoryC m_oEntryMemory; ///< before the records, which look at their entries when they go
    RecordsT m_oRecords;
    StableListT<RunT> m_oRuns; ///< in the order of the file
    std::uint64_t m_ullCount = 0;
    std::uint64_t m_ullMemory = 0; ///< what all records and runs and the entries read from a file take
    /// The first blocks with the small identifiers, which point clouds have: with a million blocks it takes
    /// long to look for one.
    std::array<std::int64_t, s_nWatchedIds> m_allFirst = {-1, -1, -1, -1};
};

} // namespace SIO
