// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Unpacking.
#include "Sio/Sio_QsbPackedCursor.h"

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlock.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace SIO {

using namespace QsbPackedCode;

namespace {

// Of a head.
std::uint32_t HeaderBytes(const char* pHead) noexcept
{
    return LoadLittleEndian<std::uint32_t>(pHead + 4);
}
std::uint32_t DataBytes(const char* pHead) noexcept
{
    return LoadLittleEndian<std::uint32_t>(pHead + 8);
}

} // namespace

bool QsbPackedCursorC::Next() noexcept
{
    m_ullOffset += m_ullLength * m_ullBlockBytes;
    m_ullIndex += std::exchange(m_ullLength, 0);
    const std::uint64_t ullLeft = m_rChunk.ullBlocks - (m_ullIndex - m_rChunk.ullFirstIndex);
    if (ullLeft == 0) return false;
    if (m_uiIds == 0 && static_cast<std::uint8_t>(*m_pNext) == s_uiIds) {
        m_pModel = m_apModels[static_cast<std::uint8_t>(m_pNext[2])];
        m_pNextModel = m_apModels[static_cast<std::uint8_t>(m_pNext[1])];
        m_uiIds = static_cast<std::uint8_t>(m_pNext[3]);
        m_pNext += s_nIdsHeadBytes;
    }
    if (m_uiIds != 0)
        TakeId();
    else
        TakeBlock();
    m_ullLength = 1;
    if (m_uiIds != 0) return true;
    const char* const pEnd = m_rChunk.pBytes + m_rChunk.nBytes;
    if (m_pNext == pEnd)
        m_ullLength = ullLeft; // equal ones at the end are not written
    else if (static_cast<std::uint8_t>(*m_pNext) == s_uiRepeat)
        m_ullLength = std::min(1 + TakeRepeats(), ullLeft);
    return true;
}

/// The next one of blocks of two models in turn.
void QsbPackedCursorC::TakeId() noexcept
{
    --m_uiIds;
    std::swap(m_pModel, m_pNextModel);
    m_uiId = TakeNumber();
    m_uiDataBytes = DataBytes(m_pModel);
    m_pValues = nullptr;
    m_ullBlockBytes = QsbFormat::s_nBlockHeadBytes + std::uint64_t{m_uiDataBytes};
}

void QsbPackedCursorC::TakeBlock() noexcept
{
    const auto uiCode = static_cast<std::uint8_t>(*m_pNext++);
    if (uiCode == s_uiNewModel) {
        const auto uiModel = static_cast<std::uint8_t>(*m_pNext++);
        m_pModel = m_apModels[uiModel] = m_pNext;
        m_pNext += QsbFormat::s_nBlockHeadBytes + HeaderBytes(m_pModel);
    } else {
        m_pModel = m_apModels[uiCode & s_uiNumberMask];
    }
    const bool bAsModel = uiCode == s_uiNewModel;
    const auto hasFlag = [&](std::uint8_t uiFlag) { return !bAsModel && (uiCode & uiFlag) != 0; };
    m_uiId = hasFlag(s_uiOtherId) ? TakeNumber() : LoadLittleEndian<std::uint32_t>(m_pModel);
    m_uiDataBytes = hasFlag(s_uiOtherData) ? TakeNumber() : DataBytes(m_pModel);
    m_pValues = hasFlag(s_uiOtherValues) ? m_pNext : nullptr;
    if (m_pValues != nullptr) m_pNext += HeaderBytes(m_pModel) / QsbFormat::s_nEntryBytes * s_nValueBytes;
    m_ullBlockBytes = QsbFormat::s_nBlockHeadBytes + std::uint64_t{HeaderBytes(m_pModel)} + m_uiDataBytes;
}

std::uint32_t QsbPackedCursorC::TakeNumber() noexcept
{
    const auto uiNumber = LoadLittleEndian<std::uint32_t>(m_pNext);
    m_pNext += sizeof uiNumber;
    return uiNumber;
}

std::uint64_t QsbPackedCursorC::TakeRepeats() noexcept
{
    std::uint64_t ullRepeats = 0;
    std::uint8_t uiByte = 0x80;
    ++m_pNext;
    for (int nShift = 0; (uiByte & 0x80) != 0; nShift += 7) {
        uiByte = static_cast<std::uint8_t>(*m_pNext++);
        ullRepeats |= std::uint64_t{uiByte & 0x7Fu} << nShift;
    }
    return ullRepeats;
}

void QsbPackedCursorC::SkipTo(std::uint64_t ullIndex) noexcept
{
    while (ullIndex >= m_ullIndex + m_ullLength)
        Next();
}

void QsbPackedCursorC::CopyTo(QsbBlockC& block, std::uint64_t ullIndex) const
{
    const char* const pEntries = m_pModel + QsbFormat::s_nBlockHeadBytes;
    const std::size_t nEntries = HeaderBytes(m_pModel) / QsbFormat::s_nEntryBytes;
    block.m_ullOffset = GetOffset(ullIndex);
    block.m_ullRunLength = 1;
    block.m_uiId = m_uiId;
    block.m_uiDataBytes = m_uiDataBytes;
    block.m_bSealed = true;
    block.m_bHeaderDirty = false;
    block.m_vecEntries.resize(nEntries);
    if (nEntries != 0) std::memcpy(block.m_vecEntries.data(), pEntries, HeaderBytes(m_pModel));
    if (m_pValues == nullptr) return;
    for (std::size_t i = 0; i < nEntries; ++i)
        block.m_vecEntries[i].SetUInt64(LoadLittleEndian<std::uint64_t>(m_pValues + i * s_nValueBytes));
}

} // namespace SIO
