// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Counting, and keeping the first few.
#include "Tools/Qsb/Tool_Finding.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace Tool {

const char* NameOf(SeverityT eSeverity)
{
    switch (eSeverity) {
    case SeverityT::Note:
        return "note";
    case SeverityT::Warning:
        return "warning";
    default:
        return "error";
    }
}

void FindingListC::Add(FindingC finding)
{
    const bool bKept = CountOf(finding.eRule) < s_ullKept;
    finding.eSeverity = Count(finding.eRule, finding.eSeverity);
    if (bKept) m_vecKept.push_back(std::move(finding));
}

SeverityT FindingListC::Count(RuleT eRule, SeverityT eSeverity) noexcept
{
    const SeverityT eCounted = std::min(eSeverity, TextOf(eRule).eSeverity);
    ++m_aByRule[static_cast<std::size_t>(eRule)];
    ++m_aBySeverity[static_cast<std::size_t>(eCounted)];
    return eCounted;
}

void FindingListC::Sort()
{
    const auto key = [](const FindingC& finding) {
        const auto ullOffset = finding.oOffset.value_or(std::numeric_limits<std::uint64_t>::max());
        return std::tuple(-static_cast<int>(finding.eSeverity), ullOffset);
    };
    std::stable_sort(m_vecKept.begin(), m_vecKept.end(),
                     [&](const FindingC& a, const FindingC& b) { return key(a) < key(b); });
}

} // namespace Tool
