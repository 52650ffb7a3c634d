// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A block of an open file as it is looked at and changed: its head and its header entries. Without locks.
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

using QsbHeaderEntriesT = std::vector<QsbHeaderEntryC>;

/// One block, or several identical ones that follow one another and have neither header nor data.
class QsbBlockC
{
public:
    QsbBlockC() noexcept : QsbBlockC(0, 0, 0) {}
    QsbBlockC(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes) noexcept
        : m_ullOffset(ullOffset), m_uiId(uiId), m_uiDataBytes(uiDataBytes)
    {}

    // Of several blocks, the first one's.
    std::uint64_t GetOffset() const noexcept { return m_ullOffset; } ///< of the head in the file
    std::uint32_t GetId() const noexcept { return m_uiId; }
    std::uint32_t GetHeaderBytes() const noexcept;
    std::uint32_t GetDataBytes() const noexcept { return m_uiDataBytes; }
    void SetDataBytes(std::uint32_t uiDataBytes) noexcept { m_uiDataBytes = uiDataBytes; }

    /// How many blocks it stands for.
    std::uint64_t GetRunLength() const noexcept { return m_ullRunLength; }

    /// Offset of the data area.
    std::uint64_t GetDataOffset() const noexcept
    {
        return m_ullOffset + QsbFormat::s_nBlockHeadBytes + GetHeaderBytes();
    }

    /// Offset of the block that follows the last one.
    std::uint64_t GetEndOffset() const noexcept;

    std::size_t GetEntryCount() const noexcept { return m_vecEntries.size(); }
    const QsbHeaderEntryC* begin() const noexcept { return m_vecEntries.data(); }
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
    friend class QsbPackedCursorC;

    std::uint64_t m_ullOffset;
    std::uint64_t m_ullRunLength = 1;
    QsbHeaderEntriesT m_vecEntries;
    std::uint32_t m_uiId;
    std::uint32_t m_uiDataBytes;
    bool m_bSealed = false;
    bool m_bHeaderDirty = false;
};

} // namespace SIO
