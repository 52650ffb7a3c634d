// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Walks the stored points of a block, batch by batch in constant memory: those that the file really holds,
// whether or not the reader would accept the file. Positions come as stored.
#pragma once

#include "Tools/Qsb/Tool_ScanHeader.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <memory>
#include <vector>

namespace Tool {

class ScanInputI;

class StoredPointsC
{
public:
    /// `header` must have a record; it and the input must outlive this.
    StoredPointsC(ScanInputI& input, const ScanHeaderC& header);

    /// Reads the next batch; false, and the batch is empty, behind the last point that can be read.
    bool Next();

    const std::vector<ScanPointC>& GetPoints() const noexcept { return m_vecPoints; }

    /// The bytes of point `i` of the batch.
    const char* GetRecord(std::size_t i) const noexcept { return m_vecRaw.data() + i * m_nRecordBytes; }

    /// Index in the block of the batch's first point.
    std::uint64_t GetFirst() const noexcept { return m_ullFirst; }

private:
    struct ElementC
    {
        std::unique_ptr<SIO::PointDefinitionI> pDefinition;
        std::size_t nOffset; ///< in a stored point
    };

    ScanInputI& m_rInput;
    std::vector<ElementC> m_vecElements; ///< those whose values count
    std::size_t m_nRecordBytes;
    std::uint64_t m_ullDataOffset;
    std::uint64_t m_ullReadable;
    std::uint64_t m_ullFirst = 0;
    std::vector<char> m_vecRaw;
    std::vector<ScanPointC> m_vecPoints;
};

} // namespace Tool
