// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The blocks of an open file as they stand in memory: header entries and block records. A record stands for
// one block or for several empty ones, and is small, because files of millions of small blocks are opened as
// fast as memory is had. Without locks.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"

#include <array>
#include <cstdint>
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

template<typename T>
class StableListT;

using QsbHeaderEntriesT = std::vector<QsbHeaderEntryC>;

/// Entries that lie one behind the other, after this.
struct alignas(8) QsbEntryArrayT
{
    std::uint32_t uiCount;
    std::uint32_t uiCapacity; ///< 0: in memory that the list owns, so there they stay as many as they are

    QsbHeaderEntryC* First() noexcept { return reinterpret_cast<QsbHeaderEntryC*>(this + 1); }
};

/// One block, or several empty ones that follow one another: a run of identical ones, or a stretch of which
/// the list knows the identifiers.
class QsbBlockC
{
public:
    QsbBlockC(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes) noexcept
        : QsbBlockC(ullOffset, uiId, uiDataBytes, nullptr, 0)
    {}
    QsbBlockC(const QsbBlockC&) = delete;
    QsbBlockC& operator=(const QsbBlockC&) = delete;
    ~QsbBlockC() { FreeEntries(); }

    // Of several blocks, the first one's.
    std::uint64_t GetOffset() const noexcept { return m_ullOffset; } ///< of the head in the file
    std::uint32_t GetId() const noexcept { return m_uiId; }
    std::uint32_t GetHeaderBytes() const noexcept;
    std::uint32_t GetDataBytes() const noexcept { return m_uiDataBytes; }
    void SetDataBytes(std::uint32_t uiDataBytes) noexcept { m_uiDataBytes = uiDataBytes; }

    /// How many blocks the record stands for.
    std::uint64_t GetRunLength() const noexcept { return HasFlag(s_ullRun) ? m_ullRest >> s_nRunShift : 1; }

    /// Whether the blocks that it stands for have identifiers of their own.
    bool IsStretch() const noexcept { return HasFlag(s_ullRun) && HasFlag(s_ullStretch); }

    /// Offset of the data area.
    std::uint64_t GetDataOffset() const noexcept
    {
        return m_ullOffset + QsbFormat::s_nBlockHeadBytes + GetHeaderBytes();
    }

    /// Offset of the block that follows the last one.
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

    // Flags lie below what the word is for otherwise: the address of entries, or how many blocks there are
    // when they are several, which have none. Bit fields would do the same, but a record is then made in
    // steps that wait for one another.
    static constexpr int s_nFlags = 3;
    static constexpr std::uint64_t s_ullRun = 1;
    static constexpr std::uint64_t s_ullSealed = 2;
    static constexpr std::uint64_t s_ullHeaderDirty = 4;
    static constexpr std::uint64_t s_ullFlags = (1 << s_nFlags) - 1;
    static constexpr std::uint64_t s_ullStretch = 8; ///< means something beside s_ullRun alone
    static constexpr int s_nRunShift = 4;

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
    bool IsEmpty() const noexcept { return m_uiDataBytes == 0 && !HasEntries(); }
    void SetRunLength(std::uint64_t ullRunLength) noexcept;
    void MakeStretch(std::uint64_t ullRunLength) noexcept;
    /// Of one block, which then may get entries and data.
    void MakeSingle() noexcept { m_ullRest &= s_ullSealed | s_ullHeaderDirty; }
    void FreeEntries() noexcept;

    std::uint64_t m_ullOffset;
    std::uint64_t m_ullRest;
    std::uint32_t m_uiId;
    std::uint32_t m_uiDataBytes;
};

static_assert(sizeof(QsbBlockC) == 24, "a file of a million small blocks has a million of these");

} // namespace SIO
