// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The points of the raw form: records of fixed size without gaps.
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_RecordReader.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <fmt/format.h>

namespace Tool {

namespace {

class RawSourceC final : public PointSourceI
{
public:
    RawSourceC(const NamedInputC& header, NamedInputC data)
        : m_oHeader(ReadRawHeader(header)), m_oData(std::move(data)),
          m_oRecords(m_oData, m_oHeader.vecFields, false, 0, m_oHeader.ullPoints)
    {
        CheckSize(header.strName);
        Select({});
    }

    const std::string& GetName() const override { return m_oData.strName; }
    const std::vector<SourceFieldC>& GetFields() const override { return m_oHeader.vecFields; }
    const ScanFrameC& GetHeader() const override { return m_oHeader.oScan; }
    const std::vector<SourceExtraC>& GetExtras() const override { return m_oHeader.vecExtras; }
    std::uint64_t GetNumberOfPoints() const override { return m_oHeader.ullPoints; }
    void Select(const std::vector<std::size_t>& fields) override { m_oRecords.Select(fields); }
    std::size_t Read(std::vector<std::vector<double>>& columns) override { return m_oRecords.Read(columns); }

private:
    void CheckSize(const std::string& header) const
    {
        const std::uint64_t ullSize = m_oData.poInput->GetSize();
        const std::uint64_t ullRecord = m_oHeader.GetRecordBytes();
        if (ullSize % ullRecord == 0 && ullSize / ullRecord == m_oHeader.ullPoints) return;
        throw ToolErrorC(
            s_iDamaged,
            fmt::format("{}: its {} bytes are {} records of {} bytes and {} more, but {} says {} points",
                        m_oData.strName, ullSize, ullSize / ullRecord, ullRecord, ullSize % ullRecord, header,
                        m_oHeader.ullPoints));
    }

    RawHeaderC m_oHeader;
    NamedInputC m_oData;
    RecordReaderC m_oRecords;
};

} // namespace

std::unique_ptr<PointSourceI> ReadRaw(const NamedInputC& header, NamedInputC data)
{
    return std::make_unique<RawSourceC>(header, std::move(data));
}

} // namespace Tool
