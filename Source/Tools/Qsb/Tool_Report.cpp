// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The report as text and as JSON.
#include "Tools/Qsb/Tool_Report.h"

#include "Tools/Qsb/Tool_Json.h"
#include "Tools/Qsb/Tool_TextTable.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace Tool {

namespace {

constexpr std::array<const char*, 6> s_apszOutcomes = {"kept",    "scaled", "changed",
                                                       "dropped", "added",  "absent"};

const char* NameOf(OutcomeT eOutcome)
{
    return s_apszOutcomes[static_cast<std::size_t>(eOutcome)];
}

std::string Types(const ReportRowC& row)
{
    if (row.strStoredType.empty() || row.strSourceType.empty()) return row.strSourceType + row.strStoredType;
    return row.strSourceType == row.strStoredType ? row.strSourceType
                                                  : row.strSourceType + " -> " + row.strStoredType;
}

std::string Result(const ReportRowC& row)
{
    std::string text = NameOf(row.eOutcome);
    if (row.eOutcome == OutcomeT::Scaled) text += fmt::format(" by {:.6g}", row.dFactor);
    if (row.ullChanged != 0) {
        text += fmt::format(", {} values differ, by {:.3g} at most", row.ullChanged, row.dLargestChange);
    }
    return row.strNote.empty() ? text : text + ": " + row.strNote;
}

} // namespace

ReportRowC PartRow(const std::string& what, OutcomeT eOutcome, const std::string& note, bool bLoss)
{
    ReportRowC row;
    row.strWhat = what;
    row.eOutcome = eOutcome;
    row.strNote = note;
    row.bLoss = bLoss;
    return row;
}

bool ConversionReportC::IsLossless() const noexcept
{
    return std::none_of(m_vecRows.begin(), m_vecRows.end(), [](const ReportRowC& row) { return row.bLoss; });
}

std::string ConversionReportC::GetText() const
{
    std::string text = fmt::format("{} -> {}: {} points", m_strInput, m_strOutput, m_ullPoints);
    if (m_ullPoints != m_ullPointsInSource) text += fmt::format(" of {}", m_ullPointsInSource);
    text += '\n';
    TextTableC table("lll");
    for (const ReportRowC& row : m_vecRows)
        table.AddRow({row.strWhat, Types(row), Result(row)});
    return text + table.ToText("  ");
}

std::string ConversionReportC::GetLossText(const std::string& prefix) const
{
    std::string text;
    for (const ReportRowC& row : m_vecRows) {
        if (row.bLoss) text += fmt::format("{}{}: {}\n", prefix, row.strWhat, Result(row));
    }
    return text;
}

JsonT ConversionReportC::GetJson() const
{
    JsonT document = NewJsonDocument(m_strVerb);
    document["input"] = m_strInput;
    document["output"] = m_strOutput;
    document["points"] = m_ullPoints;
    document["points_in_source"] = m_ullPointsInSource;
    document["lossless"] = IsLossless();
    document["parts"] = JsonT::array();
    for (const ReportRowC& row : m_vecRows) {
        JsonT part;
        part["name"] = row.strWhat;
        part["source_type"] = row.strSourceType.empty() ? JsonT() : JsonT(row.strSourceType);
        part["stored_type"] = row.strStoredType.empty() ? JsonT() : JsonT(row.strStoredType);
        part["outcome"] = NameOf(row.eOutcome);
        part["factor"] = row.dFactor;
        part["changed"] = row.ullChanged;
        part["largest_change"] = row.dLargestChange;
        part["loss"] = row.bLoss;
        part["note"] = row.strNote.empty() ? JsonT() : JsonT(row.strNote);
        document["parts"].push_back(part);
    }
    return document;
}

} // namespace Tool
