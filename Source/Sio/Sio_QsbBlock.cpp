// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Block records and the block list.
#include "Sio/Sio_QsbBlock.h"

#include "Sio/Sio_LittleEndian.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace SIO {

namespace {

constexpr std::size_t s_nTypeOffset = 0;
constexpr std::size_t s_nTagOffset = 4;
constexpr std::size_t s_nValueOffset = 8;

/// What a block of so many entries takes: its record and its array, each with what allocating it costs.
constexpr std::uint64_t MemoryOf(std::uint64_t nEntries)
{
    constexpr std::uint64_t ullRecord = 64;
    constexpr std::uint64_t ullArray = 64;
    return ullRecord + (nEntries == 0 ? 0 : ullArray + nEntries * sizeof(QsbHeaderEntryC));
}

} // namespace

QsbHeaderEntryC QsbHeaderEntryC::FromUInt32(std::uint32_t type, std::uint32_t tag,
                                            std::uint32_t value) noexcept
{
    QsbHeaderEntryC entry;
    StoreLittleEndian(entry.m_acBytes.data() + s_nTypeOffset, type);
    StoreLittleEndian(entry.m_acBytes.data() + s_nTagOffset, tag);
    entry.SetUInt32(value);
    return entry;
}

QsbHeaderEntryC QsbHeaderEntryC::FromDouble(std::uint32_t tag, double value) noexcept
{
    QsbHeaderEntryC entry = FromUInt32(QsbFormat::s_uiType64Bit, tag, 0);
    entry.SetDouble(value);
    return entry;
}

std::uint32_t QsbHeaderEntryC::GetType() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nTypeOffset);
}

std::uint32_t QsbHeaderEntryC::GetTag() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nTagOffset);
}

std::uint8_t QsbHeaderEntryC::AsByte() const noexcept
{
    return LoadLittleEndian<std::uint8_t>(m_acBytes.data() + s_nValueOffset);
}

std::uint32_t QsbHeaderEntryC::AsUInt32() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nValueOffset);
}

std::uint64_t QsbHeaderEntryC::AsUInt64() const noexcept
{
    return LoadLittleEndian<std::uint64_t>(m_acBytes.data() + s_nValueOffset);
}

double QsbHeaderEntryC::AsDouble() const noexcept
{
    return LoadLittleEndian<double>(m_acBytes.data() + s_nValueOffset);
}

void QsbHeaderEntryC::SetByte(std::uint8_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetUInt32(std::uint32_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetUInt64(std::uint64_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetDouble(double value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

std::uint32_t QsbBlockC::GetHeaderBytes() const noexcept
{
    return static_cast<std::uint32_t>(GetEntryCount() * QsbFormat::s_nEntryBytes);
}

std::uint64_t QsbBlockC::GetEndOffset() const noexcept
{
    // Only empty blocks form runs.
    return GetDataOffset() + m_uiDataBytes + (m_ullRunLength - 1) * QsbFormat::s_nBlockHeadBytes;
}

const QsbHeaderEntryC* QsbBlockC::FindEntry(std::uint32_t tag) const noexcept
{
    const auto* it =
        std::find_if(begin(), end(), [&](const QsbHeaderEntryC& e) { return e.GetTag() == tag; });
    return it == end() ? nullptr : it;
}

QsbHeaderEntryC* QsbBlockC::ChangeEntry(std::uint32_t tag) noexcept
{
    const QsbHeaderEntryC* entry = FindEntry(tag);
    if (entry == nullptr) return nullptr;
    m_bHeaderDirty = true;
    return m_pEntries->data() + (entry - begin());
}

bool QsbBlockC::AddEntry(const QsbHeaderEntryC& entry)
{
    if (m_bSealed) return false;
    if (!m_pEntries) m_pEntries = std::make_unique<QsbHeaderEntriesT>();
    m_pEntries->push_back(entry);
    m_bHeaderDirty = true;
    return true;
}

const QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) const noexcept
{
    if (ullIndex >= m_ullCount) return nullptr;
    const auto behind =
        std::upper_bound(m_dqRecords.begin(), m_dqRecords.end(), ullIndex,
                         [](std::uint64_t i, const QsbBlockC& record) { return i < record.m_ullFirstIndex; });
    return &*std::prev(behind);
}

QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) noexcept
{
    return const_cast<QsbBlockC*>(std::as_const(*this).Get(ullIndex));
}

std::int64_t QsbBlockListC::Find(std::uint32_t uiId) const noexcept
{
    for (const QsbBlockC& record : m_dqRecords) {
        if (record.m_uiId == uiId) return static_cast<std::int64_t>(record.m_ullFirstIndex);
    }
    return -1;
}

bool QsbBlockListC::HasRoomFor(std::uint64_t nEntries) const noexcept
{
    return m_ullMemory + MemoryOf(nEntries) <= s_ullMemoryLimit; // entries number 2^28 at most, so no wrap
}

bool QsbBlockListC::AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                               QsbHeaderEntriesT entries)
{
    if (entries.empty() && uiDataBytes == 0) return AppendReadEmpty(ullOffset, uiId, 1);
    if (!HasRoomFor(entries.size())) return false;
    const std::size_t nEntries = entries.size();
    QsbBlockC& record = AppendNew(ullOffset, uiId);
    record.m_uiDataBytes = uiDataBytes;
    record.m_bSealed = true;
    if (nEntries != 0) record.m_pEntries = std::make_unique<QsbHeaderEntriesT>(std::move(entries));
    m_ullMemory += MemoryOf(nEntries);
    return true;
}

bool QsbBlockListC::AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullRunLength)
{
    if (!IsEmpty()) {
        QsbBlockC& last = Last();
        if (last.m_uiId == uiId && last.m_uiDataBytes == 0 && last.GetEntryCount() == 0) {
            last.m_ullRunLength += ullRunLength;
            m_ullCount += ullRunLength;
            return true;
        }
    }
    if (!HasRoomFor(0)) return false;
    QsbBlockC& record = AppendNew(ullOffset, uiId);
    record.m_bSealed = true;
    record.m_ullRunLength = ullRunLength;
    m_ullMemory += MemoryOf(0);
    m_ullCount += ullRunLength - 1;
    return true;
}

QsbBlockC& QsbBlockListC::AppendNew(std::uint64_t ullOffset, std::uint32_t uiId)
{
    QsbBlockC& record = m_dqRecords.emplace_back(ullOffset, uiId, std::uint32_t{0});
    record.m_ullFirstIndex = m_ullCount;
    ++m_ullCount;
    return record;
}

QsbBlockC& QsbBlockListC::IsolateLast()
{
    QsbBlockC& last = Last();
    if (last.m_ullRunLength == 1) return last;
    const std::uint64_t ullOffset = last.GetEndOffset() - QsbFormat::s_nBlockHeadBytes;
    QsbBlockC& record = m_dqRecords.emplace_back(ullOffset, last.m_uiId, std::uint32_t{0});
    QsbBlockC& run = *std::prev(m_dqRecords.end(), 2);
    record.m_ullFirstIndex = run.m_ullFirstIndex + run.m_ullRunLength - 1;
    record.m_bSealed = run.m_bSealed;
    --run.m_ullRunLength;
    return record;
}

void QsbBlockListC::RemoveLast()
{
    const QsbBlockC& last = IsolateLast();
    m_ullMemory -= std::min(m_ullMemory, MemoryOf(last.GetEntryCount()));
    m_dqRecords.pop_back();
    --m_ullCount;
}

void QsbBlockListC::Clear() noexcept
{
    m_dqRecords.clear();
    m_ullCount = 0;
    m_ullMemory = 0;
}

} // namespace SIO
