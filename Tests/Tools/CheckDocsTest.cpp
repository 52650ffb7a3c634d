// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The page of findings says what the command says.
#include "Support/Files.h"
#include "Tools/Qsb/Tool_Finding.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <set>

namespace {

TEST(CheckDocs, EveryFindingHasItsRowInTheOrderOfTheIds)
{
    const std::string page = Support::ReadAll(SCANREADER_SOURCE_DIR "/Docs/check-findings.md");
    std::size_t nAt = 0;
    for (const Tool::RuleTextC& rule : Tool::s_aRules) {
        const std::string row =
            fmt::format("\n| {} | {} | {} |", rule.szId, NameOf(rule.eSeverity), rule.szTitle);
        const std::size_t nFound = page.find(row, nAt);
        ASSERT_NE(nFound, std::string::npos) << "no row, or not in order: " << row;
        nAt = nFound;
    }
}

TEST(CheckDocs, NoTwoFindingsShareAnId)
{
    std::set<std::string> ids;
    for (const Tool::RuleTextC& rule : Tool::s_aRules)
        EXPECT_TRUE(ids.insert(rule.szId).second) << rule.szId;
}

} // namespace
