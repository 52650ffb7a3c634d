// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What became of each part of a scan when it was converted: kept, scaled, changed, dropped or added, with
// counts. Conversions fill it, verbs print it. Nothing that a conversion loses is missing from it.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace Tool {

enum class OutcomeT
{
    Kept,
    Scaled,
    Changed,
    Dropped,
    Added,
    Absent, ///< neither in the source nor in the result
};

struct ReportRowC
{
    std::string strWhat;       ///< a field, or a part such as the pose
    std::string strSourceType; ///< empty where there is none
    std::string strStoredType; ///< likewise
    OutcomeT eOutcome = OutcomeT::Kept;
    double dFactor = 1.0;         ///< of scaled values
    std::uint64_t ullChanged = 0; ///< values that cannot be had back as they were
    double dLargestChange = 0.0;  ///< of those, in the unit of the source
    std::string strNote;
    bool bLoss = false; ///< measured data that cannot be had back as it was
};

/// A row for a part that is not a field of the points.
ReportRowC PartRow(const std::string& what, OutcomeT eOutcome, const std::string& note, bool bLoss = false);

class ConversionReportC
{
public:
    ConversionReportC(const std::string& verb, const std::string& input, const std::string& output)
        : m_strVerb(verb), m_strInput(input), m_strOutput(output)
    {}

    void SetPoints(std::uint64_t ullPoints, std::uint64_t ullPointsInSource)
    {
        m_ullPoints = ullPoints;
        m_ullPointsInSource = ullPointsInSource;
    }

    void Add(ReportRowC row) { m_vecRows.push_back(std::move(row)); }

    const std::vector<ReportRowC>& GetRows() const noexcept { return m_vecRows; }

    bool IsLossless() const noexcept;

    /// A line for the whole and one per row, in columns.
    std::string GetText() const;

    /// One line per row with loss, each beginning with `prefix`.
    std::string GetLossText(const std::string& prefix) const;

    nlohmann::ordered_json GetJson() const;

private:
    std::string m_strVerb;
    std::string m_strInput;
    std::string m_strOutput;
    std::uint64_t m_ullPoints = 0;
    std::uint64_t m_ullPointsInSource = 0;
    std::vector<ReportRowC> m_vecRows;
};

} // namespace Tool
