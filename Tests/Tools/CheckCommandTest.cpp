// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb check as its users run it.
#include "Support/Files.h"
#include "Support/ScanFolder.h"
#include "Tools/CheckTest.h"
#include "Tools/RunQsb.h"

#include <nlohmann/json.hpp>

namespace {

using namespace CheckTest;
using Support::RunQsb;

class CheckCommand : public testing::Test
{
protected:
    std::string Torn() const
    {
        const BytesT whole = Support::SmallScan(3).Get();
        return m_oFolder.Write("torn.qsb", Support::Truncated(whole, whole.size() - 1));
    }

    const Support::ScanFolder m_oFolder;
    const std::string m_strClean = m_oFolder.Write("clean.qsb", CleanScan());
};

TEST_F(CheckCommand, AScanInOrderTakesOneLineAndExitCode0)
{
    const auto run = RunQsb({"check", "--deep", m_strClean});
    EXPECT_EQ(run.out, m_strClean + ": in order; 3 points\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.iExitCode, 0);
}

TEST_F(CheckCommand, ADamagedScanIsExplainedAndGivesExitCode3)
{
    const std::string torn = Torn();
    const auto run = RunQsb({"check", torn});
    EXPECT_EQ(run.out, torn + R"(: damaged, 1 error, 1 note; 2 of 3 points can be read
  error    QSB-007 at byte 113, block 1: the file ends within the data of a block
           expected  42 bytes of data, to byte 114
           found     the file ends after 41 of them
           readable  2 of 3 points
  note     QSB-307 at byte 28, block 1: no bounding box
           expected  entries with the tags 2 to 7
           found     0 of 6
)");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.iExitCode, 3);
}

TEST_F(CheckCommand, QuietPrintsErrorsOnly)
{
    const std::string torn = Torn();
    const auto run = RunQsb({"check", "--quiet", m_strClean, torn});
    EXPECT_EQ(run.out.find(m_strClean), std::string::npos);
    EXPECT_NE(run.out.find("QSB-007"), std::string::npos);
    EXPECT_EQ(run.out.find("QSB-307"), std::string::npos);
}

TEST_F(CheckCommand, WarningsAndNotesLeaveExitCode0)
{
    const std::string path = m_oFolder.Write("zeros.qsb", CleanScan().Raw(BytesT(24, 0)));
    const auto run = RunQsb({"check", path});
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')), path + ": readable, 1 warning; 3 points");
    EXPECT_EQ(run.iExitCode, 0);
}

TEST_F(CheckCommand, AFileThatIsNotThereGivesExitCode1AndTheOthersAreChecked)
{
    const std::string missing = m_oFolder.Path("missing.qsb");
    const auto run = RunQsb({"check", missing, m_strClean});
    EXPECT_EQ(run.out, m_strClean + ": in order; 3 points\n");
    EXPECT_EQ(run.err,
              "qsb: " + missing + ": cannot be opened; is there a file of that name that you may read?\n");
    EXPECT_EQ(run.iExitCode, 1);
}

TEST_F(CheckCommand, OfSeveralFilesTheWorstDecides)
{
    EXPECT_EQ(RunQsb({"check", Torn(), m_oFolder.Path("missing.qsb"), m_strClean}).iExitCode, 3);
}

TEST_F(CheckCommand, WithoutAFileTheUsageIsWrong)
{
    const auto run = RunQsb({"check"});
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("FILE is required"), std::string::npos);
    EXPECT_EQ(run.iExitCode, 2);
}

TEST_F(CheckCommand, HelpShowsExamplesOnStdout)
{
    const auto run = RunQsb({"check", "--help"});
    EXPECT_NE(run.out.find("Examples:"), std::string::npos);
    EXPECT_EQ(run.iExitCode, 0);
}

TEST_F(CheckCommand, JsonHasItsKeysInTheirOrder)
{
    const auto document = nlohmann::ordered_json::parse(RunQsb({"check", "--json", Torn()}).out);
    std::vector<std::string> keys;
    for (const auto& item : document.items())
        keys.push_back(item.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"schema_version", "command", "deep", "files"}));
    keys.clear();
    for (const auto& item : document["files"][0].items())
        keys.push_back(item.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"file", "status", "size_bytes", "points", "points_readable",
                                              "errors", "warnings", "notes", "findings", "not_listed"}));
}

TEST_F(CheckCommand, JsonSaysWhatTheTextSays)
{
    const auto document = nlohmann::json::parse(RunQsb({"check", "--json", Torn()}).out);
    const auto& file = document["files"][0];
    EXPECT_EQ(file["status"], "damaged");
    EXPECT_EQ(file["points_readable"], 2);
    EXPECT_EQ(file["findings"][0]["id"], "QSB-007");
    EXPECT_EQ(file["findings"][0]["severity"], "error");
    EXPECT_EQ(file["findings"][0]["offset"], 113);
    EXPECT_EQ(file["findings"][0]["block"], 1);
    EXPECT_EQ(file["findings"][1]["readable"], nullptr);
}

TEST_F(CheckCommand, JsonNamesFilesThatCannotBeRead)
{
    const auto run = RunQsb({"check", "--json", m_oFolder.Path("missing.qsb"), m_strClean});
    const auto document = nlohmann::json::parse(run.out);
    EXPECT_EQ(document["files"][0]["status"], "unreadable");
    EXPECT_EQ(document["files"][1]["status"], "ok");
    EXPECT_EQ(run.iExitCode, 1);
}

TEST_F(CheckCommand, WhatIsNotListedIsCounted)
{
    QsbBytes file = CleanScan();
    for (int i = 0; i < 12; ++i)
        file.Block(9).Data({1});
    const std::string path = m_oFolder.Write("many.qsb", file);
    EXPECT_NE(RunQsb({"check", path}).out.find("\n  2 more of QSB-009: block of an unknown kind\n"),
              std::string::npos);
    const auto document = nlohmann::json::parse(RunQsb({"check", "--json", path}).out);
    EXPECT_EQ(document["files"][0]["not_listed"]["QSB-009"], 2);
}

TEST_F(CheckCommand, NothingIsWrittenToTheErrorLog)
{
    const Support::ScopedEnvironment log("SCANREADER_LOG_DIR", m_oFolder.Path("log"));
    const QsbBytes clean = CleanScan();
    const BytesT bytes = Support::With32(clean.Get(), EntryOffset(clean, 104), 99);
    RunQsb({"check", "--deep", m_oFolder.Write("odd.qsb", bytes)});
    EXPECT_EQ(Support::ReadAll(m_oFolder.Path("log") + "/ErrorLog.txt"), "");
}

} // namespace
