// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reading and decoding.
#include "Tools/Qsb/Tool_StoredPoints.h"

#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>

namespace Tool {

namespace {

constexpr std::uint64_t s_ullMaxBatchPoints = 10000;
constexpr std::uint64_t s_ullMaxBatchBytes = 1 << 20; ///< hostile headers make records of many megabytes

} // namespace

StoredPointsC::StoredPointsC(ScanInputI& input, const ScanHeaderC& header)
    : m_rInput(input), m_nRecordBytes(static_cast<std::size_t>(header.ullRecordBytes)),
      m_ullDataOffset(header.ullDataOffset), m_ullReadable(header.GetReadable())
{
    for (const auto& [element, ullOffset] : header.GetCountingElements()) {
        m_vecElements.push_back(
            {SIO::PointDefinitionC::CreateElement(element.uiKind, element.uiTypeCode, false),
             static_cast<std::size_t>(ullOffset)});
    }
}

bool StoredPointsC::Next()
{
    m_ullFirst += m_vecPoints.size();
    m_vecPoints.clear();
    const std::uint64_t ullBatch =
        std::clamp<std::uint64_t>(s_ullMaxBatchBytes / m_nRecordBytes, 1, s_ullMaxBatchPoints);
    const auto nWanted = static_cast<std::size_t>(std::min(ullBatch, m_ullReadable - m_ullFirst));
    if (nWanted == 0) return false;
    m_vecRaw.resize(nWanted * m_nRecordBytes);
    const std::size_t nBytes =
        m_rInput.ReadAt(m_ullDataOffset + m_ullFirst * m_nRecordBytes, m_vecRaw.data(), m_vecRaw.size());
    const std::size_t nRead = nBytes / m_nRecordBytes; // fewer when the file has become shorter
    m_vecPoints.resize(nRead);
    ScanPointIteratorC iterator(m_vecPoints.data());
    const GMAT::Matrix4C unused;
    for (std::size_t i = 0; i < nRead; ++i, iterator.Advance()) {
        SIO::QsbPointModifierI& modifier = iterator.Current();
        for (const ElementC& element : m_vecElements)
            element.pDefinition->Decode(modifier, GetRecord(i) + element.nOffset, unused);
    }
    return nRead != 0;
}

} // namespace Tool
