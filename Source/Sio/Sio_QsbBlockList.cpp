// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The block list and the memory of its entries.
#include "Sio/Sio_QsbBlockList.h"

#include <algorithm>
#include <utility>

namespace SIO {

/// There is too little left.
char* QsbEntryMemoryC::TakeMore(std::size_t nBytes)
{
    if (nBytes > s_nLargestInCompany) return TakeAlone(nBytes);
    if (m_pFree == nullptr) {
        m_pFree = TakeAlone(s_nLargestInCompany);
        m_nFree = s_nLargestInCompany;
    } else {
        m_vecLarge.push_back(MakeLargeMemory());
        m_pFree = static_cast<char*>(m_vecLarge.back().get());
        m_nFree = s_nLargeMemoryBytes;
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

QsbBlockListC::PlaceT QsbBlockListC::PlaceOf(std::uint64_t ullIndex) const noexcept
{
    const auto behind =
        std::upper_bound(m_oRuns.begin(), m_oRuns.end(), ullIndex,
                         [](std::uint64_t i, const RunT& run) { return i < run.ullFirstIndex; });
    if (behind == m_oRuns.begin()) return {static_cast<std::size_t>(ullIndex), 0, 0};
    const RunT& run = *std::prev(behind);
    const std::uint64_t ullInRun = ullIndex - run.ullFirstIndex;
    const std::uint64_t ullLength = m_oRecords[run.uiRecord].GetRunLength();
    if (ullInRun < ullLength) return {run.uiRecord, ullInRun, run.uiFirstId};
    return {run.uiRecord + 1 + static_cast<std::size_t>(ullInRun - ullLength), 0, 0};
}

std::size_t QsbBlockListC::FirstIdOf(std::size_t nRecord) const noexcept
{
    return std::lower_bound(m_oRuns.begin(), m_oRuns.end(), nRecord,
                            [](const RunT& run, std::size_t n) { return run.uiRecord < n; })
        ->uiFirstId;
}

const QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) const noexcept
{
    return ullIndex < m_ullCount ? &m_oRecords[PlaceOf(ullIndex).nRecord] : nullptr;
}

QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) noexcept
{
    return const_cast<QsbBlockC*>(std::as_const(*this).Get(ullIndex));
}

std::uint32_t QsbBlockListC::GetId(std::uint64_t ullIndex) const noexcept
{
    const PlaceT place = PlaceOf(ullIndex);
    const QsbBlockC& record = m_oRecords[place.nRecord];
    return record.IsStretch() ? m_oIds[place.nFirstId + static_cast<std::size_t>(place.ullInRecord)]
                              : record.m_uiId;
}

std::uint64_t QsbBlockListC::GetOffset(std::uint64_t ullIndex) const noexcept
{
    const PlaceT place = PlaceOf(ullIndex);
    return m_oRecords[place.nRecord].m_ullOffset + place.ullInRecord * QsbFormat::s_nBlockHeadBytes;
}

std::int64_t QsbBlockListC::Find(std::uint32_t uiId) const noexcept
{
    if (uiId < s_nWatchedIds) return m_allFirst[uiId];
    std::int64_t llFound = -1;
    ForEach([&](const QsbBlockC& block, std::uint64_t ullIndex) {
        if (block.m_uiId == uiId) llFound = static_cast<std::int64_t>(ullIndex);
        return llFound < 0;
    });
    return llFound;
}

bool QsbBlockListC::AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                               const QsbHeaderEntriesT& entries)
{
    return AppendRead(ullOffset, uiId, uiDataBytes, entries.data(), entries.size());
}

bool QsbBlockListC::AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullRunLength)
{
    if (ullRunLength == 0) return true;
    const bool bBehindEmpty = !IsEmpty() && Last().IsEmpty();
    if (bBehindEmpty && !Last().IsStretch() && Last().m_uiId == uiId) {
        if (!LastIsRun() && !HasRoomForBytes(s_ullRunMemory)) return false;
        LengthenLast(ullRunLength);
        return true;
    }
    const std::size_t nBefore = bBehindEmpty ? CountAtEndOfStretch(uiId) : 0;
    if (ullRunLength + nBefore < s_nLongRun && CanTakeStretch() && !NeedsRecord(uiId)) {
        std::array<std::uint32_t, s_nLongRun> auiIds;
        auiIds.fill(uiId);
        return AppendReadStretch(auiIds.data(), static_cast<std::size_t>(ullRunLength));
    }
    if (!HasRoomForBytes(s_ullRecordMemory + s_ullRunMemory - nBefore * s_ullIdMemory)) return false;
    CutStretch(nBefore);
    AppendRun(ullOffset - nBefore * QsbFormat::s_nBlockHeadBytes, uiId, ullRunLength + nBefore);
    return true;
}

void QsbBlockListC::AppendRun(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullRunLength)
{
    Append(ullOffset, uiId, 0, nullptr, QsbBlockC::s_ullSealed);
    if (ullRunLength > 1) LengthenLast(ullRunLength - 1);
}

void QsbBlockListC::LengthenLast(std::uint64_t ullBlocks)
{
    QsbBlockC& last = Last();
    NoteRun();
    last.SetRunLength(last.GetRunLength() + ullBlocks);
    m_ullCount += ullBlocks;
}

void QsbBlockListC::NoteRun()
{
    if (LastIsRun()) return;
    m_oRuns.emplace_back(m_ullCount - 1, static_cast<std::uint32_t>(m_oRecords.size() - 1),
                         static_cast<std::uint32_t>(m_oIds.size()));
    m_ullMemory += s_ullRunMemory;
}

bool QsbBlockListC::AppendReadStretch(const std::uint32_t* pIds, std::size_t nIds)
{
    QsbBlockC& last = Last();
    const std::size_t nOld = last.IsStretch() ? 0 : static_cast<std::size_t>(last.GetRunLength());
    const std::uint64_t ullRun = LastIsRun() ? 0 : s_ullRunMemory;
    if (!HasRoomForBytes(ullRun + (nOld + nIds) * s_ullIdMemory)) return false;
    if (nOld != 0) {
        NoteRun();
        for (std::size_t i = 0; i < nOld; ++i)
            m_oIds.emplace_back(last.m_uiId);
        last.MakeStretch(nOld);
    }
    m_oIds.append(pIds, nIds);
    LengthenLast(nIds);
    m_ullMemory += (nOld + nIds) * s_ullIdMemory;
    return true;
}

/// How many blocks with the identifier a stretch ends in, its first one and more than a few not counted.
std::size_t QsbBlockListC::CountAtEndOfStretch(std::uint32_t uiId) const noexcept
{
    if (!Last().IsStretch()) return 0;
    const std::uint64_t ullMost = std::min<std::uint64_t>(Last().GetRunLength(), s_nLongRun) - 1;
    std::size_t nSame = 0;
    while (nSame < ullMost && m_oIds[m_oIds.size() - 1 - nSame] == uiId)
        ++nSame;
    return nSame;
}

void QsbBlockListC::CutStretch(std::size_t nBlocks) noexcept
{
    if (nBlocks == 0) return;
    Last().SetRunLength(Last().GetRunLength() - nBlocks);
    m_ullCount -= nBlocks;
    ForgetLastIds(nBlocks);
}

void QsbBlockListC::ForgetLastIds(std::size_t nIds) noexcept
{
    for (std::size_t i = 0; i < nIds; ++i)
        m_oIds.pop_back();
    m_ullMemory -= nIds * s_ullIdMemory;
}

QsbBlockC& QsbBlockListC::AppendNew(std::uint64_t ullOffset, std::uint32_t uiId)
{
    return Append(ullOffset, uiId, 0, nullptr, 0);
}

QsbBlockC& QsbBlockListC::IsolateLast()
{
    QsbBlockC& last = Last();
    if (last.GetRunLength() == 1) {
        if (!last.HasEntries()) last.MakeSingle();
        return last;
    }
    const std::uint64_t ullOffset = last.GetEndOffset() - QsbFormat::s_nBlockHeadBytes;
    const std::uint64_t ullFlags = last.IsSealed() ? QsbBlockC::s_ullSealed : 0;
    const std::uint32_t uiId = last.IsStretch() ? m_oIds.back() : last.m_uiId;
    QsbBlockC& record = m_oRecords.emplace_back(ullOffset, uiId, std::uint32_t{0}, nullptr, ullFlags);
    m_ullMemory += s_ullRecordMemory;
    last.SetRunLength(last.GetRunLength() - 1);
    if (last.IsStretch()) ForgetLastIds(1);
    return record;
}

void QsbBlockListC::RemoveLast()
{
    IsolateLast();
    if (LastIsRun()) {
        ForgetLastIds(m_oIds.size() - m_oRuns.back().uiFirstId);
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
    m_oIds.clear();
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
    m_oIds.swap(other.m_oIds);
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
