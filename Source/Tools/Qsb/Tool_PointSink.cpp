// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The sinks: what is written once, and what for each batch.
#include "Tools/Qsb/Tool_PointSink.h"

#include "Tools/Qsb/Tool_Numerals.h"
#include "Tools/Qsb/Tool_OutputStream.h"
#include "Tools/Qsb/Tool_PlyHeader.h"

#include <fmt/format.h>
#include <stdexcept>

namespace Tool {

namespace {

using ColumnsT = std::vector<std::vector<double>>;

void WriteWhole(const OutputFileC& file, const std::string& text)
{
    OutputStreamC stream(file);
    stream.Buffer() = text;
    stream.Close();
}

/// Records after a header of text; the header may be empty.
class RecordSinkC final : public PointSinkI
{
public:
    RecordSinkC(const OutputFileC& file, const RawHeaderC& header, const std::string& text)
        : m_oHeader(header), m_oStream(file)
    {
        m_oStream.Buffer() = text;
    }

    void Write(const ColumnsT& columns, std::size_t nPoints) override
    {
        Tool::AppendRecords(m_oStream.Buffer(), m_oHeader, columns, nPoints);
        m_oStream.Written();
    }

    bool TakesRecords() const override { return true; }

    char* AppendRecords(std::size_t nPoints) override
    {
        m_oStream.Written(); // the records of the last call
        std::string& bytes = m_oStream.Buffer();
        const std::size_t nOffset = bytes.size();
        bytes.resize(nOffset + nPoints * m_oHeader.GetRecordBytes());
        return bytes.data() + nOffset;
    }

    void Finish() override { m_oStream.Close(); }

private:
    RawHeaderC m_oHeader;
    OutputStreamC m_oStream;
};

class CsvSinkC final : public PointSinkI
{
public:
    CsvSinkC(const OutputFileC& file, const RawHeaderC& header) : m_oHeader(header), m_oStream(file)
    {
        std::string& text = m_oStream.Buffer();
        for (const SourceFieldC& field : header.vecFields)
            text.append(text.empty() ? "" : ",").append(field.strName);
        text += '\n';
    }

    void Write(const ColumnsT& columns, std::size_t nPoints) override
    {
        std::string& text = m_oStream.Buffer();
        for (std::size_t i = 0; i < nPoints; ++i) {
            for (std::size_t j = 0; j < columns.size(); ++j) {
                if (j != 0) text += ',';
                AppendNumber(text, columns[j][i], m_oHeader.vecFields[j].eType);
            }
            text += '\n';
        }
        m_oStream.Written();
    }

    void Finish() override { m_oStream.Close(); }

private:
    RawHeaderC m_oHeader;
    OutputStreamC m_oStream;
};

std::string PlyHeaderText(const RawHeaderC& header)
{
    std::string text = "ply\nformat binary_little_endian 1.0\n" + PlyScanComments(header.oScan);
    text += fmt::format("element vertex {}\n", header.ullPoints);
    for (const SourceFieldC& field : header.vecFields) {
        text += fmt::format("property {} {}\n", PlyName(field.eType), field.strName);
    }
    return text + "end_header\n";
}

} // namespace

char* PointSinkI::AppendRecords(std::size_t)
{
    throw std::logic_error("this form has no records");
}

void AppendRecords(std::string& bytes, const RawHeaderC& header, const ColumnsT& columns, std::size_t nPoints)
{
    const std::size_t nRecordBytes = header.GetRecordBytes();
    std::size_t nOffset = bytes.size();
    bytes.resize(nOffset + nPoints * nRecordBytes);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const NumberTypeT eType = header.vecFields[i].eType;
        StoreNumbers(eType, columns[i].data(), nPoints, bytes.data() + nOffset, nRecordBytes);
        nOffset += SizeOf(eType);
    }
}

std::unique_ptr<PointSinkI> MakePlySink(const OutputFileC& file, const RawHeaderC& header)
{
    return std::make_unique<RecordSinkC>(file, header, PlyHeaderText(header));
}

std::unique_ptr<PointSinkI> MakeCsvSink(const OutputFileC& table, const OutputFileC& sidecar,
                                        const RawHeaderC& header, const std::string& name)
{
    WriteWhole(sidecar, SidecarText(header, name));
    return std::make_unique<CsvSinkC>(table, header);
}

std::unique_ptr<PointSinkI> MakeRawSink(const OutputFileC& data, const OutputFileC& jsonHeader,
                                        const RawHeaderC& header, const std::string& name)
{
    WriteWhole(jsonHeader, RawHeaderText(header, name));
    return std::make_unique<RecordSinkC>(data, header, "");
}

} // namespace Tool
