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

void QsbBlockC::SetRunLength(std::uint64_t ullRunLength) noexcept
{
    m_ullRest = (ullRunLength << s_nFlags) | s_ullRun | (m_ullRest & (s_ullSealed | s_ullHeaderDirty));
}

void QsbBlockC::FreeEntries() noexcept
{
    if (HasEntries() && !HasSharedEntries()) ::operator delete(GetEntries());
}

std::uint32_t QsbBlockC::GetHeaderBytes() const noexcept
{
    return static_cast<std::uint32_t>(GetEntryCount() * QsbFormat::s_nEntryBytes);
}

std::uint64_t QsbBlockC::GetEndOffset() const noexcept
{
    // Only empty blocks form runs.
    return GetDataOffset() + m_uiDataBytes + (GetRunLength() - 1) * QsbFormat::s_nBlockHeadBytes;
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
    SetHeaderDirty(true);
    return GetEntries()->First() + (entry - begin());
}

bool QsbBlockC::AddEntry(const QsbHeaderEntryC& entry)
{
    if (IsSealed()) return false;
    const std::size_t nCount = GetEntryCount();
    if (!HasEntries() || nCount >= GetEntries()->uiCapacity) {
        const std::size_t nCapacity = std::max<std::size_t>(2 * nCount, 32);
        auto* const pGrown = static_cast<QsbEntryArrayT*>(
            ::operator new(sizeof(QsbEntryArrayT) + nCapacity * sizeof(QsbHeaderEntryC)));
        std::uninitialized_copy(begin(), end(), pGrown->First());
        pGrown->uiCapacity = static_cast<std::uint32_t>(nCapacity);
        FreeEntries();
        // Not sealed; and a run of one at the most, since a block that changes has a record of its own.
        m_ullRest = reinterpret_cast<std::uintptr_t>(pGrown);
    }
    std::construct_at(GetEntries()->First() + nCount, entry);
    GetEntries()->uiCount = static_cast<std::uint32_t>(nCount + 1);
    SetHeaderDirty(true);
    return true;
}

QsbEntryArrayT& QsbEntryMemoryC::Take(std::size_t nEntries)
{
    const std::size_t nBytes = nEntries * sizeof(QsbHeaderEntryC);
    auto* const pArray = reinterpret_cast<QsbEntryArrayT*>(TakeBytes(sizeof(QsbEntryArrayT) + nBytes));
    pArray->uiCount = static_cast<std::uint32_t>(nEntries);
    pArray->uiCapacity = 0;
    return *pArray;
}

char* QsbEntryMemoryC::TakeBytes(std::size_t nBytes)
{
    if (nBytes > m_nFree) {
        if (nBytes > s_nLargestInCompany) return TakeAlone(nBytes);
        if (m_pFree == nullptr) {
            m_pFree = TakeAlone(s_nLargestInCompany);
            m_nFree = s_nLargestInCompany;
        } else {
            m_vecLarge.push_back(MakeLargeMemory());
            m_pFree = static_cast<char*>(m_vecLarge.back().get());
            m_nFree = s_nLargeMemoryBytes;
        }
    }
    m_nFree -= nBytes;
    return std::exchange(m_pFree, m_pFree + nBytes);
}

char* QsbEntryMemoryC::TakeAlone(std::size_t nBytes)
{
    std::unique_ptr<char[]> pBytes(new char[nBytes]); // which stay as they are
    m_vecSmall.push_back(std::move(pBytes));
    return m_vecSmall.back().get();
}

void QsbEntryMemoryC::Clear() noexcept
{
    m_vecLarge.clear();
    m_vecSmall.clear();
    m_pFree = nullptr;
    m_nFree = 0;
}

const QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) const noexcept
{
    if (ullIndex >= m_ullCount) return nullptr;
    const auto behind =
        std::upper_bound(m_oRuns.begin(), m_oRuns.end(), ullIndex,
                         [](std::uint64_t i, const RunT& run) { return i < run.ullFirstIndex; });
    if (behind == m_oRuns.begin()) return &m_oRecords[static_cast<std::size_t>(ullIndex)];
    const RunT& run = *std::prev(behind);
    const std::uint64_t ullInRun = ullIndex - run.ullFirstIndex;
    const std::uint64_t ullLength = m_oRecords[run.nRecord].GetRunLength();
    if (ullInRun < ullLength) return &m_oRecords[run.nRecord];
    return &m_oRecords[run.nRecord + 1 + static_cast<std::size_t>(ullInRun - ullLength)];
}

QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) noexcept
{
    return const_cast<QsbBlockC*>(std::as_const(*this).Get(ullIndex));
}

std::int64_t QsbBlockListC::Find(std::uint32_t uiId) const noexcept
{
    if (uiId < s_nWatchedIds) return m_allFirst[uiId];
    std::uint64_t ullIndex = 0;
    for (const QsbBlockC& record : m_oRecords) {
        if (record.m_uiId == uiId) return static_cast<std::int64_t>(ullIndex);
        ullIndex += record.GetRunLength();
    }
    return -1;
}

bool QsbBlockListC::AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                               const QsbHeaderEntriesT& entries)
{
    return AppendRead(ullOffset, uiId, uiDataBytes, entries.data(), entries.size());
}

bool QsbBlockListC::AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullRunLength)
{
    if (ullRunLength == 0) return true;
    if (!IsEmpty()) {
        const QsbBlockC& last = Last();
        if (last.m_uiId == uiId && last.m_uiDataBytes == 0 && last.GetEntryCount() == 0) {
            if (!LastIsRun() && !HasRoomForBytes(s_ullRunMemory)) return false;
            LengthenLast(ullRunLength);
            return true;
        }
    }
    if (!HasRoomForBytes(s_ullRecordMemory + s_ullRunMemory)) return false;
    Append(ullOffset, uiId, 0, nullptr, QsbBlockC::s_ullSealed);
    if (ullRunLength > 1) LengthenLast(ullRunLength - 1);
    return true;
}

void QsbBlockListC::LengthenLast(std::uint64_t ullBlocks)
{
    QsbBlockC& last = Last();
    if (!LastIsRun()) {
        m_oRuns.emplace_back(m_oRecords.size() - 1, m_ullCount - 1);
        m_ullMemory += s_ullRunMemory;
    }
    last.SetRunLength(last.GetRunLength() + ullBlocks);
    m_ullCount += ullBlocks;
}

QsbBlockC& QsbBlockListC::AppendNew(std::uint64_t ullOffset, std::uint32_t uiId)
{
    return Append(ullOffset, uiId, 0, nullptr, 0);
}

QsbBlockC& QsbBlockListC::IsolateLast()
{
    QsbBlockC& last = Last();
    if (last.GetRunLength() == 1) return last;
    const std::uint64_t ullOffset = last.GetEndOffset() - QsbFormat::s_nBlockHeadBytes;
    const std::uint64_t ullFlags = last.IsSealed() ? QsbBlockC::s_ullSealed : 0;
    QsbBlockC& record = m_oRecords.emplace_back(ullOffset, last.m_uiId, std::uint32_t{0}, nullptr, ullFlags);
    m_ullMemory += s_ullRecordMemory;
    last.SetRunLength(last.GetRunLength() - 1);
    return record;
}

void QsbBlockListC::RemoveLast()
{
    IsolateLast();
    if (LastIsRun()) {
        m_oRuns.pop_back();
        m_ullMemory -= s_ullRunMemory;
    }
    m_oRecords.pop_back();
    m_ullMemory -= s_ullRecordMemory;
    --m_ullCount;
    ForgetFirstsFrom(m_ullCount);
}

void QsbBlockListC::Clear() noexcept
{
    m_oRecords.clear();
    m_oRuns.clear();
    m_oEntryMemory.Clear();
    m_ullCount = 0;
    m_ullMemory = 0;
    ForgetFirstsFrom(0);
}

void QsbBlockListC::Swap(QsbBlockListC& other) noexcept
{
    std::swap(m_oEntryMemory, other.m_oEntryMemory);
    m_oRecords.swap(other.m_oRecords);
    m_oRuns.swap(other.m_oRuns);
    std::swap(m_ullCount, other.m_ullCount);
    std::swap(m_ullMemory, other.m_ullMemory);
    std::swap(m_allFirst, other.m_allFirst);
}

void QsbBlockListC::ForgetFirstsFrom(std::uint64_t ullIndex) noexcept
{
    for (std::int64_t& llFirst : m_allFirst) {
        if (llFirst >= static_cast<std::int64_t>(ullIndex)) llFirst = -1;
    }
}

} // namespace SIO
