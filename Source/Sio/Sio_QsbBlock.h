// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The blocks of an open file as they stand in memory: header entries, block records and the list of them.
// Runs of identical empty blocks share one record, so a file of nothing but such blocks takes no memory to
// speak of, and the list as a whole never passes a fixed limit: what a file claims cannot exhaust the host.
// Without locks.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
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

/// One block, or a run of identical empty ones.
class QsbBlockC
{
public:
    QsbBlockC(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes) noexcept
        : m_ullOffset(ullOffset), m_uiId(uiId), m_uiDataBytes(uiDataBytes)
    {}

    /// Offset of the block's head in the file; of the first one, in a run.
    std::uint64_t GetOffset() const noexcept { return m_ullOffset; }
    std::uint32_t GetId() const noexcept { return m_uiId; }
    std::uint32_t GetHeaderBytes() const noexcept;
    std::uint32_t GetDataBytes() const noexcept { return m_uiDataBytes; }
    void SetDataBytes(std::uint32_t uiDataBytes) noexcept { m_uiDataBytes = uiDataBytes; }

    /// How many blocks the record stands for.
    std::uint64_t GetRunLength() const noexcept { return m_ullRunLength; }

    /// Offset of the data area.
    std::uint64_t GetDataOffset() const noexcept
    {
        return m_ullOffset + QsbFormat::s_nBlockHeadBytes + GetHeaderBytes();
    }

    /// Offset of the block that follows.
    std::uint64_t GetEndOffset() const noexcept;

    std::size_t GetEntryCount() const noexcept { return m_pEntries ? m_pEntries->size() : 0; }
    const QsbHeaderEntryC* begin() const noexcept { return m_pEntries ? m_pEntries->data() : nullptr; }
    const QsbHeaderEntryC* end() const noexcept { return begin() + GetEntryCount(); }

    /// The first entry with `tag`, null when there is none.
    const QsbHeaderEntryC* FindEntry(std::uint32_t tag) const noexcept;

    /// The first entry with `tag` for changing its value, which marks the header dirty; null when there is
    /// none.
    QsbHeaderEntryC* ChangeEntry(std::uint32_t tag) noexcept;

    /// Adds an entry and marks the header dirty. Refused (false) while the block is sealed.
    [[nodiscard]] bool AddEntry(const QsbHeaderEntryC& entry);

    /// While set, no entry can be added.
    bool IsSealed() const noexcept { return m_bSealed; }
    void SetSealed(bool bSealed) noexcept { m_bSealed = bSealed; }

    /// While set, head and entries must be written again.
    bool IsHeaderDirty() const noexcept { return m_bHeaderDirty; }
    void SetHeaderDirty(bool bDirty) noexcept { m_bHeaderDirty = bDirty; }

private:
    friend class QsbBlockListC;

    std::uint64_t m_ullOffset;
    std::uint64_t m_ullRunLength = 1;
    std::uint64_t m_ullFirstIndex = 0; ///< index in the file of the block, or of the first one of the run
    std::unique_ptr<QsbHeaderEntriesT> m_pEntries; ///< null while there are none
    std::uint32_t m_uiId;
    std::uint32_t m_uiDataBytes;
    bool m_bSealed = false;
    bool m_bHeaderDirty = false;
};

static_assert(sizeof(QsbBlockC) <= 48, "a file of a million small blocks has a million of these");

/// The blocks in file order. Blocks are addressed by their index in the file, records stay where they are.
class QsbBlockListC
{
public:
    /// What the records and entries that are read from one file may take in memory, counted with what
    /// allocating them costs.
    static constexpr std::uint64_t s_ullMemoryLimit = std::uint64_t{512} << 20;

    bool IsEmpty() const noexcept { return m_dqRecords.empty(); }

    /// Number of blocks in the file.
    std::uint64_t GetCount() const noexcept { return m_ullCount; }

    /// The record of block `ullIndex`, null beyond the last one. A record of a run stands for several
    /// indices.
    const QsbBlockC* Get(std::uint64_t ullIndex) const noexcept;
    QsbBlockC* Get(std::uint64_t ullIndex) noexcept;

    QsbBlockC& Last() noexcept { return m_dqRecords.back(); }
    const QsbBlockC& Last() const noexcept { return m_dqRecords.back(); }

    /// Index of the first block with `uiId`, -1 when there is none.
    std::int64_t Find(std::uint32_t uiId) const noexcept;

    /// The records: as many as there are distinct blocks.
    const std::deque<QsbBlockC>& GetRecords() const noexcept { return m_dqRecords; }
    std::deque<QsbBlockC>& GetRecords() noexcept { return m_dqRecords; }

    /// Whether `nEntries` more entries and one more record stay within the limit.
    bool HasRoomFor(std::uint64_t nEntries) const noexcept;

    /// Appends a block that was read from a file: sealed, not dirty. False at the memory limit.
    [[nodiscard]] bool AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                                  QsbHeaderEntriesT entries);

    /// Appends `ullRunLength` blocks with neither header nor data that were read from a file.
    [[nodiscard]] bool AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId,
                                       std::uint64_t ullRunLength);

    /// Appends a block just created for writing: neither sealed nor dirty.
    QsbBlockC& AppendNew(std::uint64_t ullOffset, std::uint32_t uiId);

    /// Gives the last block a record of its own when it is part of a run, so that it can change alone.
    QsbBlockC& IsolateLast();

    /// Removes the last block.
    void RemoveLast();

    void Clear() noexcept;

private:
    std::deque<QsbBlockC> m_dqRecords;
    std::uint64_t m_ullCount = 0;
    std::uint64_t m_ullMemory = 0; ///< what the records and entries read from a file take, about
};

} // namespace SIO
