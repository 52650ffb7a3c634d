// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reads chosen fields of records of fixed size, batch by batch: the data of the raw form and of most binary
// PLY files. One thread at a time.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"

namespace Tool {

class RecordReaderC
{
public:
    /// The records of `fields` begin at `ullOffset` of `input`, which must outlive the reader.
    RecordReaderC(const NamedInputC& input, const std::vector<SourceFieldC>& fields, bool bBigEndian,
                  std::uint64_t ullOffset, std::uint64_t ullRecords);

    std::size_t GetRecordBytes() const noexcept { return m_nRecordBytes; }

    /// As PointSourceI::Select.
    void Select(const std::vector<std::size_t>& fields);

    /// As PointSourceI::Read.
    std::size_t Read(std::vector<std::vector<double>>& columns);

private:
    struct ColumnT
    {
        NumberTypeT eType;
        std::size_t nOffset;
    };

    const NamedInputC& m_rInput;
    bool m_bBigEndian;
    std::uint64_t m_ullOffset;
    std::uint64_t m_ullRecords;
    std::uint64_t m_ullRead = 0;
    std::vector<ColumnT> m_vecFields;
    std::vector<ColumnT> m_vecChosen;
    std::size_t m_nRecordBytes = 0;
    std::vector<char> m_vecRaw;
};

} // namespace Tool
