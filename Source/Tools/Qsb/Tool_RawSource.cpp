// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The points of the raw form: records of fixed size without gaps.
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Input.h"
#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_RecordReader.h"

#include <fmt/format.h>

namespace Tool {

namespace {

class RawSourceC final : public PointSourceI
{
public:
    RawSourceC(InputI& header, std::unique_ptr<InputI> poData)
        : m_oHeader(ReadRawHeader(header)), m_poData(std::move(poData)),
          m_oRecords(*m_poData, m_oHeader.vecFields, false, 0, m_oHeader.ullPoints)
    {
        CheckSize(header.GetName());
        Select({});
    }

    const std::vector<SourceFieldC>& GetFields() const override { return m_oHeader.vecFields; }
    const ScanHeaderC& GetHeader() const override { return m_oHeader.oScan; }
    const std::vector<SourceExtraC>& GetExtras() const override { return m_oHeader.vecExtras; }
    std::uint64_t GetNumberOfPoints() const override { return m_oHeader.ullPoints; }
    void Select(const std::vector<std::size_t>& fields) override { m_oRecords.Select(fields); }
    std::size_t Read(std::vector<std::vector<double>>& columns) override { return m_oRecords.Read(columns); }

private:
    void CheckSize(const std::string& header) const
    {
        const std::uint64_t ullSize = m_poData->GetSize();
        const std::uint64_t ullRecord = m_oHeader.GetRecordBytes();
        if (ullSize % ullRecord == 0 && ullSize / ullRecord == m_oHeader.ullPoints) return;
        throw ToolErrorC(s_iDamaged,
                         fmt::format("{}: its {} bytes are {} records of {} bytes and {} more, but {} says {} points",
                                     m_poData->GetName(), ullSize, ullSize / ullRecord, ullRecord, ullSize % ullRecord,
                                     header, m_oHeader.ullPoints));
    }

    RawHeaderC m_oHeader;
    std::unique_ptr<InputI> m_poData;
    RecordReaderC m_oRecords;
};

} // namespace

std::unique_ptr<PointSourceI> ReadRaw(InputI& header, std::unique_ptr<InputI> poData)
{
    return std::make_unique<RawSourceC>(header, std::move(poData));
}

} // namespace Tool
