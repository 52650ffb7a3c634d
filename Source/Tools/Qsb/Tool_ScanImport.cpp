// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Columns to points, and the account.
#include "Tools/Qsb/Tool_ScanImport.h"

#include "Tools/Qsb/Tool_Printable.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

ScanImportC::ScanImportC(PointSourceI& source, const ImportChoicesC& choices, const BatchDoneT& batchDone)
    : m_oSource(source), m_oEncodings(source, choices, batchDone),
      m_bScaledIntensity(choices.dIntensityScale != 1.0)
{
    std::vector<std::size_t> fields;
    for (std::size_t i = 0; i < s_nScanValues; ++i) {
        const auto& oField = m_oEncodings.GetFields()[i];
        if (!oField) continue;
        const auto eValue = static_cast<ScanValueT>(i);
        m_vecCarried.push_back({eValue, *oField, m_oEncodings.MakeConversion(eValue)});
        fields.push_back(*oField);
    }
    PrepareHeader();
    m_oSource.Select(fields);
}

void ScanImportC::PrepareHeader()
{
    const ScanFrameC& header = m_oSource.GetHeader();
    if (header.oPose) {
        for (int i = 0; i < 16; ++i)
            m_oInfo.oTransformation.At(i / 4, i % 4) = (*header.oPose)[static_cast<std::size_t>(i)];
    }
    m_oInfo.dInstrumentHeight = header.oInstrumentHeight.value_or(0.0);
    m_oGrid = header.oGrid ? header.oGrid : m_oEncodings.GetGridOfIndices();
    // The file stores the largest index of each direction.
    for (std::size_t i = 0; m_oGrid && i < 2; ++i) {
        m_oInfo.auiGridSize[i] = static_cast<std::uint32_t>((*m_oGrid)[i] - 1);
    }
}

void ScanImportC::Read(std::vector<ScanPointC>& points)
{
    points.resize(m_oSource.Read(m_vecColumns));
    for (std::size_t i = 0; i < m_vecCarried.size(); ++i) {
        std::vector<double>& column = m_vecColumns[i];
        const ScanValueT eValue = m_vecCarried[i].eValue;
        m_vecCarried[i].oConversion.Convert(column);
        for (std::size_t j = 0; j < column.size(); ++j)
            ValueIn(points[j], eValue) = column[j];
        if (eValue != ScanValueT::Intensity) continue;
        for (const double dValue : column)
            m_dGreatestIntensity = std::max(m_dGreatestIntensity, dValue);
    }
    CountOutside(points);
}

void ScanImportC::CountOutside(const std::vector<ScanPointC>& points)
{
    if (!m_oGrid || GetFormat().uiGrid == 0) return;
    for (const ScanPointC& point : points) {
        const bool bOutside =
            point.adGrid[0] > m_oInfo.auiGridSize[0] || point.adGrid[1] > m_oInfo.auiGridSize[1];
        m_ullOutsideGrid += bOutside ? 1 : 0;
    }
}

void ScanImportC::AddTo(ConversionReportC& report) const
{
    AddFields(report);
    for (const SourceExtraC& extra : m_oSource.GetExtras()) {
        report.Add(PartRow(extra.strName, OutcomeT::Dropped, "a scan file has no place for it", extra.bData));
    }
    AddHeader(report);
}

void ScanImportC::AddFields(ConversionReportC& report) const
{
    const auto& fields = m_oSource.GetFields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto found = std::find_if(m_vecCarried.begin(), m_vecCarried.end(),
                                        [&](const CarriedT& carried) { return carried.nField == i; });
        if (found != m_vecCarried.end()) {
            report.Add(RowOf(*found));
            continue;
        }
        ReportRowC row = PartRow(Printable(fields[i].strName), OutcomeT::Dropped,
                                 m_oEncodings.GetReasonForDropping(i), m_oSource.GetNumberOfPoints() != 0);
        row.strSourceType = NameOf(fields[i].eType);
        report.Add(row);
    }
    if (m_oEncodings.GetFields()[static_cast<std::size_t>(ScanValueT::Intensity)]) return;
    ReportRowC row =
        PartRow("intensity", OutcomeT::Added, "the source has none, and readers require it; 0 everywhere",
                m_oSource.GetNumberOfPoints() != 0);
    row.strStoredType = NameOf(StoredTypeOf(GetFormat(), ScanValueT::Intensity));
    report.Add(row);
}

ReportRowC ScanImportC::RowOf(const CarriedT& carried) const
{
    const std::string& field = m_oSource.GetFields()[carried.nField].strName;
    ReportRowC row = carried.oConversion.GetReportRow(Printable(field));
    const auto note = [&](const std::string& text) {
        row.strNote += (row.strNote.empty() ? "" : "; ") + text;
    };
    if (field != NameOf(carried.eValue)) note(fmt::format("as {}", NameOf(carried.eValue)));
    const bool bFraction = carried.eValue == ScanValueT::Intensity && !m_bScaledIntensity &&
                           carried.oConversion.GetStoredType() == NumberTypeT::Float &&
                           m_dGreatestIntensity > 0.0 && m_dGreatestIntensity <= 1.0;
    if (bFraction) {
        note("none is above 1, and readers take the whole part; --intensity-scale 65535 --intensity uint16 "
             "spreads them");
    }
    return row;
}

void ScanImportC::AddHeader(ConversionReportC& report) const
{
    const ScanFrameC& header = m_oSource.GetHeader();
    report.Add(header.oPose ? PartRow("pose", OutcomeT::Kept, "")
                            : PartRow("pose", OutcomeT::Added, "the source has none; the identity"));
    report.Add(GridRow());
    report.Add(header.oInstrumentHeight
                   ? PartRow("instrument_height", OutcomeT::Kept, "")
                   : PartRow("instrument_height", OutcomeT::Added, "the source has none; 0"));
}

ReportRowC ScanImportC::GridRow() const
{
    if (!m_oGrid) return PartRow("grid", OutcomeT::Absent, "");
    const std::string size = fmt::format("{} rows, {} columns", (*m_oGrid)[0], (*m_oGrid)[1]);
    const bool bStated = m_oSource.GetHeader().oGrid.has_value();
    if ((*m_oGrid)[0] == 1 || (*m_oGrid)[1] == 1) {
        return PartRow("grid", OutcomeT::Dropped,
                       size + "; the file stores the largest indices, and one that is 0 reads as no grid",
                       bStated);
    }
    ReportRowC row = bStated ? PartRow("grid", OutcomeT::Kept, size)
                             : PartRow("grid", OutcomeT::Added, size + ", from the largest indices");
    if (m_ullOutsideGrid != 0) row.strNote += fmt::format("; {} points lie outside it", m_ullOutsideGrid);
    if (GetFormat().uiGrid == 0) row.strNote += "; the points have no indices";
    return row;
}

} // namespace Tool
