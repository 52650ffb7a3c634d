// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Points to columns, and the account.
#include "Tools/Qsb/Tool_ScanExport.h"

#include "Tools/Qsb/Tool_PointSink.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Tool {

namespace {

bool IsPosition(ScanValueT eValue)
{
    return eValue <= ScanValueT::Z;
}

} // namespace

ScanExportC::ScanExportC(ScanReaderC& reader, const ExportChoicesC& choices)
    : m_rReader(reader), m_bApplyPose(choices.bApplyPose)
{
    ChooseFields(choices);
    PrepareHeader();
    PrepareMoves();
}

void ScanExportC::ChooseFields(const ExportChoicesC& choices)
{
    const ScanFormatC& format = m_rReader.GetFormat();
    for (std::size_t i = 0; i < s_nScanValues; ++i) {
        const auto eValue = static_cast<ScanValueT>(i);
        if (!IsStored(format, eValue)) continue;
        const NumberTypeT eStored = StoredTypeOf(format, eValue);
        const bool bMapped = m_bApplyPose && IsPosition(eValue);
        const NumberTypeT eSource = bMapped ? NumberTypeT::Double : eStored;
        const NumberTypeT eWritten = IsPosition(eValue) ? choices.oPosition.value_or(eSource) : eStored;
        const std::size_t nOffset =
            m_rReader.GetOffsetOf(KindOf(eValue)) + IndexInElement(eValue) * SizeOf(eStored);
        m_vecFields.push_back({eValue, eStored, ValueConversionC(eSource, eWritten), nOffset});
        m_oHeader.vecFields.push_back({std::string(NameOf(eValue)), eWritten});
    }
}

void ScanExportC::PrepareMoves()
{
    m_bKeepsBytes =
        !m_bApplyPose && std::all_of(m_vecFields.begin(), m_vecFields.end(),
                                     [](const FieldT& field) { return field.oConversion.KeepsBytes(); });
    std::size_t nTarget = 0;
    for (const FieldT& field : m_vecFields) {
        m_oMoves.Add(field.nOffset, nTarget, SizeOf(field.eStored));
        nTarget += SizeOf(field.eStored);
    }
}

void ScanExportC::PrepareHeader()
{
    const SIO::QsbScanInfoC& info = m_rReader.GetInfo();
    m_oHeader.ullPoints = m_rReader.GetNumberOfReadablePoints();
    std::array<double, 16> adPose{};
    for (std::size_t i = 0; i < 16; ++i) {
        adPose[i] = info.oTransformation.At(static_cast<int>(i / 4), static_cast<int>(i % 4));
    }
    const bool bFinite = std::all_of(adPose.begin(), adPose.end(), [](double d) { return std::isfinite(d); });
    if (bFinite) (m_bApplyPose ? m_oHeader.oScan.oAppliedPose : m_oHeader.oScan.oPose) = adPose;
    if (std::isfinite(info.dInstrumentHeight)) m_oHeader.oScan.oInstrumentHeight = info.dInstrumentHeight;
    if (m_rReader.HasGridSize()) {
        m_oHeader.oScan.oGrid = {
            {std::uint64_t{info.auiGridSize[0]} + 1, std::uint64_t{info.auiGridSize[1]} + 1}};
    }
}

std::size_t ScanExportC::Read(std::vector<std::vector<double>>& columns)
{
    const ScanReaderC::StoredT stored = ReadStored();
    columns.resize(m_vecFields.size());
    for (auto& column : columns)
        column.resize(stored.nPoints);
    if (stored.nPoints == 0) return 0;
    for (std::size_t i = 0; i < m_vecFields.size(); ++i) {
        LoadNumbers(m_vecFields[i].eStored, false, stored.pFirst + m_vecFields[i].nOffset, stored.nStride,
                    stored.nPoints, columns[i].data());
    }
    if (m_bApplyPose) {
        const GMAT::Matrix4C pose = m_rReader.GetInfo().oTransformation;
        // Every scan has positions, and they are its first fields.
        for (std::size_t i = 0; i < stored.nPoints; ++i)
            GMAT::TransformPosition(pose, columns[0][i], columns[1][i], columns[2][i]);
    }
    for (std::size_t i = 0; i < m_vecFields.size(); ++i)
        m_vecFields[i].oConversion.Convert(columns[i]);
    return stored.nPoints;
}

ScanReaderC::StoredT ScanExportC::ReadStored()
{
    // Whether there are points beyond the readable ones is known, so the reader need not stumble over it.
    if (m_ullRead == m_oHeader.ullPoints) return {};
    const ScanReaderC::StoredT stored = m_rReader.ReadStored();
    m_ullRead += stored.nPoints;
    return stored;
}

std::size_t ScanExportC::Forward(PointSinkI& sink)
{
    if (m_bKeepsBytes && sink.TakesRecords()) return ForwardStored(sink);
    const std::size_t nPoints = Read(m_vecColumns);
    if (nPoints != 0) sink.Write(m_vecColumns, nPoints);
    return nPoints;
}

std::size_t ScanExportC::ForwardStored(PointSinkI& sink)
{
    const ScanReaderC::StoredT stored = ReadStored();
    if (stored.nPoints == 0) return 0;
    char* const pRecords = sink.AppendRecords(stored.nPoints);
    m_oMoves.Move(stored.pFirst, stored.nStride, pRecords, m_oHeader.GetRecordBytes(), stored.nPoints);
    for (FieldT& field : m_vecFields)
        field.oConversion.NoteKept(stored.pFirst + field.nOffset, stored.nStride, stored.nPoints);
    return stored.nPoints;
}

void ScanExportC::AddTo(ConversionReportC& report) const
{
    for (const FieldT& field : m_vecFields) {
        ReportRowC row = field.oConversion.GetReportRow(std::string(NameOf(field.eValue)));
        row.strSourceType = NameOf(field.eStored);
        if (m_bApplyPose && IsPosition(field.eValue)) {
            row.eOutcome = OutcomeT::Changed;
            row.strNote = row.strNote.empty() ? "mapped by the pose" : "mapped by the pose; " + row.strNote;
        }
        report.Add(row);
    }
    AddScanHeader(report);
    AddWhatIsHidden(report);
}

void ScanExportC::AddScanHeader(ConversionReportC& report) const
{
    const ScanFrameC& scan = m_oHeader.oScan;
    if (scan.oAppliedPose) {
        report.Add(PartRow("pose", OutcomeT::Kept, "as the applied one"));
    } else {
        report.Add(scan.oPose
                       ? PartRow("pose", OutcomeT::Kept, "")
                       : PartRow("pose", OutcomeT::Dropped, "it has numbers that are not finite", true));
    }
    const auto& auiGrid = m_rReader.GetInfo().auiGridSize;
    if (scan.oGrid) {
        report.Add(PartRow("grid", OutcomeT::Kept,
                           fmt::format("{} rows, {} columns", (*scan.oGrid)[0], (*scan.oGrid)[1])));
    } else if (auiGrid[0] != 0 || auiGrid[1] != 0) {
        report.Add(PartRow("grid", OutcomeT::Dropped,
                           fmt::format("the largest indices are stored as {} and {}, which makes no grid",
                                       auiGrid[0], auiGrid[1])));
    } else {
        report.Add(PartRow("grid", OutcomeT::Absent, ""));
    }
    report.Add(scan.oInstrumentHeight
                   ? PartRow("instrument_height", OutcomeT::Kept, "")
                   : PartRow("instrument_height", OutcomeT::Dropped, "it is not finite", true));
}

void ScanExportC::AddWhatIsHidden(ConversionReportC& report) const
{
    if (const std::size_t nHidden = m_rReader.GetNumberOfHiddenElements(); nHidden != 0) {
        report.Add(PartRow("repeated elements", OutcomeT::Dropped,
                           fmt::format("{} stand beside another one of their kind, which counts", nHidden),
                           true));
    }
    if (const std::uint64_t ullClouds = m_rReader.GetNumberOfPointClouds(); ullClouds > 1) {
        report.Add(PartRow("point clouds", OutcomeT::Dropped, fmt::format("one of {} is exported", ullClouds),
                           true));
    }
    if (IsTorn()) {
        report.Add(PartRow("points", OutcomeT::Dropped,
                           fmt::format("{} are missing, the file is torn",
                                       m_rReader.GetNumberOfPoints() - m_oHeader.ullPoints),
                           true));
    }
}

} // namespace Tool
