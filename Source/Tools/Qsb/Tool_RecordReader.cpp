// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One read per batch, one loop per field.
#include "Tools/Qsb/Tool_RecordReader.h"

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

namespace {

/// Bound of the buffer for one batch; records with very many fields come in smaller batches.
constexpr std::size_t s_nMaxBatchBytes = std::size_t{4} << 20;

} // namespace

RecordReaderC::RecordReaderC(const NamedInputC& input, const std::vector<SourceFieldC>& fields,
                             bool bBigEndian, std::uint64_t ullOffset, std::uint64_t ullRecords)
    : m_rInput(input), m_bBigEndian(bBigEndian), m_ullOffset(ullOffset), m_ullRecords(ullRecords)
{
    for (const SourceFieldC& field : fields) {
        m_vecFields.push_back({field.eType, m_nRecordBytes});
        m_nRecordBytes += SizeOf(field.eType);
    }
}

void RecordReaderC::Select(const std::vector<std::size_t>& fields)
{
    m_vecChosen.clear();
    for (const std::size_t nField : fields)
        m_vecChosen.push_back(m_vecFields[nField]);
    m_ullRead = 0;
}

std::size_t RecordReaderC::Read(std::vector<std::vector<double>>& columns)
{
    const std::size_t nMost =
        std::clamp(s_nMaxBatchBytes / m_nRecordBytes, std::size_t{1}, PointSourceI::s_nBatch);
    const auto nCount = static_cast<std::size_t>(std::min<std::uint64_t>(nMost, m_ullRecords - m_ullRead));
    columns.resize(m_vecChosen.size());
    if (nCount == 0) return 0; // A vector without elements has no address to read to.
    m_vecRaw.resize(nCount * m_nRecordBytes);
    const std::uint64_t ullOffset = m_ullOffset + m_ullRead * m_nRecordBytes;
    const std::size_t nHeld = m_rInput.poInput->ReadAt(ullOffset, m_vecRaw.data(), m_vecRaw.size());
    if (nHeld != m_vecRaw.size()) {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: ends at byte {}, in the middle of the points",
                                                 m_rInput.strName, ullOffset + nHeld));
    }
    for (std::size_t i = 0; i < m_vecChosen.size(); ++i) {
        columns[i].resize(nCount);
        LoadNumbers(m_vecChosen[i].eType, m_bBigEndian, m_vecRaw.data() + m_vecChosen[i].nOffset,
                    m_nRecordBytes, nCount, columns[i].data());
    }
    m_ullRead += nCount;
    return nCount;
}

} // namespace Tool
