// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Packed blocks and single ones, as one list.
#include "Sio/Sio_QsbBlockList.h"

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbPackedCursor.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace SIO {

namespace {

/// A block's head, and its entries behind that as long as it can be packed.
class PackableBytesC
{
public:
    PackableBytesC(std::uint32_t uiId, std::uint32_t uiDataBytes, const QsbHeaderEntriesT& entries) noexcept
        : m_nBytes(QsbFormat::s_nBlockHeadBytes + entries.size() * QsbFormat::s_nEntryBytes)
    {
        StoreLittleEndian(m_acBytes.data(), uiId);
        StoreLittleEndian(m_acBytes.data() + 4,
                          static_cast<std::uint32_t>(entries.size() * QsbFormat::s_nEntryBytes));
        StoreLittleEndian(m_acBytes.data() + 8, uiDataBytes);
        if (!entries.empty())
            std::memcpy(m_acBytes.data() + QsbFormat::s_nBlockHeadBytes, entries.data(),
                        entries.size() * QsbFormat::s_nEntryBytes);
    }

    const char* Get() const noexcept { return m_acBytes.data(); }
    std::size_t Count() const noexcept { return m_nBytes; }

private:
    std::array<char, QsbFormat::s_nBlockHeadBytes + QsbPackedCode::s_nMostHeaderBytes> m_acBytes;
    std::size_t m_nBytes;
};

} // namespace

QsbBlockC* QsbBlockListC::GetSingle(std::uint64_t ullIndex) const
{
    if (ullIndex >= GetCount()) return nullptr;
    const auto it = m_mapSingle.lower_bound(ullIndex);
    if (it != m_mapSingle.end() && it->first == ullIndex) return &it->second;
    const QsbPackedChainC::ChunkT* const pChunk = m_oPacked.Find(ullIndex);
    QsbPackedCursorC cursor(*pChunk);
    cursor.SkipTo(ullIndex);
    QsbBlockC block;
    cursor.CopyTo(block, ullIndex);
    return &m_mapSingle.emplace_hint(it, ullIndex, std::move(block))->second;
}

const QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex) const
{
    return GetSingle(ullIndex);
}

QsbBlockC* QsbBlockListC::Get(std::uint64_t ullIndex)
{
    return GetSingle(ullIndex);
}

std::uint64_t QsbBlockListC::GetEndOffset() const noexcept
{
    if (m_mapSingle.empty() || m_mapSingle.rbegin()->first + 1 != GetCount()) return m_oPacked.GetEndOffset();
    return m_mapSingle.rbegin()->second.GetEndOffset();
}

std::int64_t QsbBlockListC::Find(std::uint32_t uiId) const
{
    if (QsbBlockTallyC::IsWatched(uiId)) return m_oTally.First(uiId);
    std::int64_t llFound = -1;
    ForEach([&](const QsbBlockC& block, std::uint64_t ullIndex) {
        if (block.m_uiId == uiId) llFound = static_cast<std::int64_t>(ullIndex);
        return llFound < 0;
    });
    return llFound;
}

void QsbBlockListC::ForEach(const VisitT& visit) const
{
    auto single = m_mapSingle.begin();
    const auto singleIndex = [&] { return single != m_mapSingle.end() ? single->first : GetCount(); };
    QsbBlockC block; // its memory for entries serves all of them
    for (const QsbPackedChainC::ChunkT& chunk : m_oPacked.GetChunks()) {
        for (; single != m_mapSingle.end() && single->first < chunk.ullFirstIndex; ++single) {
            if (!visit(single->second, single->first)) return;
        }
        for (QsbPackedCursorC cursor(chunk); cursor.Next();) {
            const std::uint64_t ullEnd = cursor.GetFirstIndex() + cursor.GetLength();
            for (std::uint64_t ullIndex = cursor.GetFirstIndex(); ullIndex < ullEnd;) {
                if (ullIndex == singleIndex()) {
                    if (!visit(single->second, ullIndex)) return;
                    ++single;
                    ++ullIndex;
                    continue;
                }
                cursor.CopyTo(block, ullIndex);
                if (cursor.IsEmpty()) block.m_ullRunLength = std::min(ullEnd, singleIndex()) - ullIndex;
                const std::uint64_t ullNext = ullIndex + block.m_ullRunLength;
                if (!visit(block, ullIndex)) return;
                ullIndex = ullNext;
            }
        }
    }
    for (; single != m_mapSingle.end(); ++single) {
        if (!visit(single->second, single->first)) return;
    }
}

bool QsbBlockListC::AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                               QsbHeaderEntriesT entries)
{
    if (entries.size() * QsbFormat::s_nEntryBytes <= QsbPackedCode::s_nMostHeaderBytes) {
        const PackableBytesC bytes(uiId, uiDataBytes, entries);
        return AppendShown(bytes.Get(), bytes.Count(), ullOffset);
    }
    if (!m_oTally.Take(SingleMemory(entries.size()))) return false;
    QsbBlockC block(ullOffset, uiId, uiDataBytes);
    block.m_bSealed = true;
    block.m_vecEntries = std::move(entries);
    AppendSingle(std::move(block));
    return true;
}

bool QsbBlockListC::AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullBlocks)
{
    if (ullBlocks == 0) return true;
    if (!AppendRead(ullOffset, uiId, 0, {})) return false;
    m_oPacked.RepeatLast(m_oTally, ullBlocks - 1);
    return true;
}

QsbBlockC& QsbBlockListC::AppendNew(std::uint64_t ullOffset, std::uint32_t uiId)
{
    return AppendSingle(QsbBlockC(ullOffset, uiId, 0));
}

QsbBlockC& QsbBlockListC::AppendSingle(QsbBlockC&& block)
{
    const std::uint64_t ullIndex = GetCount();
    QsbBlockC& kept = m_mapSingle.emplace_hint(m_mapSingle.end(), ullIndex, std::move(block))->second;
    m_oPacked.EndChunk();
    m_oTally.Note(kept.m_uiId, ullIndex);
    m_oTally.SetCount(ullIndex + 1);
    return kept;
}

void QsbBlockListC::RemoveLast() noexcept
{
    const std::uint64_t ullLast = GetCount() - 1;
    if (const QsbPackedChainC::ChunkT* const pChunk = m_oPacked.Find(ullLast)) {
        QsbPackedCursorC cursor(*pChunk);
        cursor.SkipTo(ullLast);
        m_oPacked.RemoveLast(m_oTally, cursor.GetOffset(ullLast));
    } else {
        m_oPacked.EndAt(m_mapSingle.rbegin()->second.GetOffset());
    }
    m_mapSingle.erase(ullLast);
    m_oTally.CountDown();
}

void QsbBlockListC::Clear() noexcept
{
    m_oTally = QsbBlockTallyC();
    m_oPacked.Clear();
    m_mapSingle.clear();
}

void QsbBlockListC::Swap(QsbBlockListC& other) noexcept
{
    std::swap(m_oTally, other.m_oTally);
    m_oPacked.Swap(other.m_oPacked);
    m_mapSingle.swap(other.m_mapSingle);
}

} // namespace SIO
