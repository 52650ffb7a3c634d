// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Words and keys.
#include "Tools/Qsb/Tool_CheckReport.h"

#include "Tools/Qsb/Tool_ScanCheck.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

namespace {

std::string Counted(std::uint64_t ullCount, const char* szNoun)
{
    return fmt::format("{} {}{}", ullCount, szNoun, ullCount == 1 ? "" : "s");
}

std::string CountsText(const FindingListC& findings)
{
    std::string text;
    for (const SeverityT eSeverity : {SeverityT::Error, SeverityT::Warning, SeverityT::Note}) {
        const std::uint64_t ullCount = findings.CountOf(eSeverity);
        if (ullCount == 0) continue;
        if (!text.empty()) text += ", ";
        text += Counted(ullCount, NameOf(eSeverity));
    }
    return text;
}

std::string PointsText(const ScanCheckC& check)
{
    if (!check.CanReadPoints()) return "no points can be read";
    const std::uint64_t ullPoints = check.pHeader->GetPoints();
    const std::uint64_t ullReadable = check.GetReadable();
    if (check.oFindings.HasErrors() || ullReadable != ullPoints) {
        return fmt::format("{} of {} can be read", ullReadable, Counted(ullPoints, "point"));
    }
    return Counted(ullPoints, "point");
}

std::string HeadLine(const std::string& name, const ScanCheckC& check)
{
    const std::string counts = CountsText(check.oFindings);
    const char* szVerdict = check.oFindings.HasErrors() ? "damaged"
                            : counts.empty()            ? "in order"
                                                        : "readable";
    return fmt::format("{}: {}{}{}; {}\n", name, szVerdict, counts.empty() ? "" : ", ", counts,
                       PointsText(check));
}

std::uint64_t NotListed(const FindingListC& findings, RuleT eRule)
{
    return findings.CountOf(eRule) - std::min(findings.CountOf(eRule), FindingListC::s_ullKept);
}

std::string FindingText(const FindingC& finding)
{
    std::string text = fmt::format("  {:<7}  {}\n", NameOf(finding.eSeverity), FindingLine(finding));
    const auto add = [&](const char* szLabel, const std::string& value) {
        if (!value.empty()) text += fmt::format("           {:<8}  {}\n", szLabel, value);
    };
    add("expected", finding.strExpected);
    add("found", finding.strFound);
    add("readable", finding.strReadable);
    return text;
}

} // namespace

std::string FindingLine(const FindingC& finding)
{
    std::string place;
    if (finding.oOffset) place = fmt::format(" at byte {}", *finding.oOffset);
    if (finding.oBlock) place += fmt::format(", block {}", *finding.oBlock);
    return fmt::format("{}{}: {}", TextOf(finding.eRule).szId, place, TextOf(finding.eRule).szTitle);
}

std::string CheckText(const std::string& name, const ScanCheckC& check, bool bErrorsOnly)
{
    const FindingListC& findings = check.oFindings;
    if (bErrorsOnly && !findings.HasErrors()) return {};
    std::string text = HeadLine(name, check);
    for (const FindingC& finding : findings.GetKept()) {
        if (!bErrorsOnly || finding.eSeverity == SeverityT::Error) text += FindingText(finding);
    }
    for (std::size_t i = 0; !bErrorsOnly && i < std::size(s_aRules); ++i) {
        const std::uint64_t ullMore = NotListed(findings, static_cast<RuleT>(i));
        if (ullMore != 0)
            text += fmt::format("  {} more of {}: {}\n", ullMore, s_aRules[i].szId, s_aRules[i].szTitle);
    }
    return text;
}

JsonT FindingJson(const FindingC& finding)
{
    JsonT json;
    json["id"] = TextOf(finding.eRule).szId;
    json["severity"] = NameOf(finding.eSeverity);
    json["title"] = TextOf(finding.eRule).szTitle;
    json["offset"] = finding.oOffset ? JsonT(*finding.oOffset) : JsonT(nullptr);
    json["block"] = finding.oBlock ? JsonT(*finding.oBlock) : JsonT(nullptr);
    json["expected"] = finding.strExpected;
    json["found"] = finding.strFound;
    json["readable"] = finding.strReadable.empty() ? JsonT(nullptr) : JsonT(finding.strReadable);
    return json;
}

JsonT CheckJson(const std::string& name, const ScanCheckC& check)
{
    const FindingListC& findings = check.oFindings;
    JsonT json;
    json["file"] = name;
    json["status"] = findings.HasErrors() ? "damaged" : "ok";
    json["size_bytes"] = check.ullFileSize;
    json["points"] = check.CanReadPoints() ? JsonT(check.pHeader->GetPoints()) : JsonT(nullptr);
    json["points_readable"] = check.GetReadable();
    json["errors"] = findings.CountOf(SeverityT::Error);
    json["warnings"] = findings.CountOf(SeverityT::Warning);
    json["notes"] = findings.CountOf(SeverityT::Note);
    json["findings"] = JsonT::array();
    for (const FindingC& finding : findings.GetKept())
        json["findings"].push_back(FindingJson(finding));
    json["not_listed"] = JsonT::object();
    for (std::size_t i = 0; i < std::size(s_aRules); ++i) {
        const std::uint64_t ullMore = NotListed(findings, static_cast<RuleT>(i));
        if (ullMore != 0) json["not_listed"][s_aRules[i].szId] = ullMore;
    }
    return json;
}

} // namespace Tool
