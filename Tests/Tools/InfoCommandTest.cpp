// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb info as its users run it.
#include "Support/ScanFolder.h"
#include "Tools/CheckTest.h"
#include "Tools/RunQsb.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace {

using namespace CheckTest;
using nlohmann::ordered_json;
using Support::RunQsb;

class InfoCommand : public testing::Test
{
protected:
    std::string Clean() const { return m_oFolder.Write("clean.qsb", CleanScan()); }

    ordered_json Json(const std::string& path, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments = {"info", "--json", path};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return ordered_json::parse(RunQsb(arguments).out);
    }

    const Support::ScanFolder m_oFolder;
};

TEST_F(InfoCommand, SaysWhatTheHeadersSay)
{
    const std::string path = Clean();
    const auto run = RunQsb({"info", path});
    EXPECT_EQ(run.out, path + R"(
  size     589 bytes
  version  2.0 (0x00020000)

Blocks: 2
  block  offset  identifier               header  data
      0       0  0x12879054  file header      16     0
      1      28  0x00000001  point cloud     480    69  <- the scan

Scan, in block 1
  points             3
  size of a point    23 bytes
  elements           position   3 x float   12 bytes
                     intensity  uint16       2 bytes
                     noise      uint8        1 byte
                     grid       2 x uint16   4 bytes
                     color      4 x uint8    4 bytes
  grid               2 rows x 16 columns, stored as largest indices 1 and 15
  instrument height  1.5
  pose               0  -1  0  10
                     1   0  0  20
                     0   0  1  30
                     0   0  0   1
  bounding box       x  0  to  15
                     y  0  to  15
                     z  0  to  15
)");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.iExitCode, 0);
}

TEST_F(InfoCommand, WithStatsSaysWhatThePointsAre)
{
    const auto run = RunQsb({"info", "--stats", Clean()});
    EXPECT_EQ(run.out.substr(run.out.find("\nThe 3 points")), R"(
The 3 points that were read
  x as stored     0  to     2
  y as stored     0  to     2
  z as stored     0  to     2
  x with pose     8  to    10
  y with pose    20  to    22
  z with pose    30  to    32
  intensity    1000  to  1002
  noise           7  to     7
  row             0  to     0
  column          0  to     2

  positions that are not finite       0
  positions that the pose makes so    0
  positions outside the bounding box  0
  intensities that are not finite     0
  noise levels that are not finite    0
  grid indices outside the grid       0
)");
}

TEST_F(InfoCommand, WhatAHeaderDoesNotStateIsNotInvented)
{
    const std::string path = m_oFolder.Write("small.qsb", Support::SmallScan(1));
    const std::string text = RunQsb({"info", path}).out;
    for (const char* szFact : {"grid               not stored", "instrument height  not stored",
                               "pose               not stored", "bounding box       not stored"})
        EXPECT_NE(text.find(szFact), std::string::npos) << szFact;
    const auto scan = Json(path)["scan"];
    for (const char* szKey : {"grid", "instrument_height", "pose", "bounding_box"})
        EXPECT_EQ(scan[szKey], nullptr) << szKey;
}

TEST_F(InfoCommand, AGridOneLineWideIsToldWithItsStoredNumbers)
{
    const QsbBytes clean = CleanScan();
    const std::string path =
        m_oFolder.Write("line.qsb", Support::With32(clean.Get(), EntryOffset(clean, 24) + 8, 0));
    EXPECT_NE(RunQsb({"info", path}).out.find("none, stored as largest indices 0 and 15"), std::string::npos);
}

TEST_F(InfoCommand, RunsOfEmptyBlocksTakeOneLine)
{
    const std::string path = m_oFolder.Write("zeros.qsb", CleanScan().Raw(BytesT(12 * 1000, 0)));
    const std::string text = RunQsb({"info", path}).out;
    EXPECT_NE(text.find("Blocks: 1002\n"), std::string::npos);
    EXPECT_NE(text.find("      2     589  0x00000000  zeros             0     0  1000 of these\n"),
              std::string::npos);
}

TEST_F(InfoCommand, UnlikeEmptyBlocksTakeALineEach)
{
    QsbBytes file = CleanScan();
    file.Block(0x50).Block(0x51).Block(0x51).Block(0x52);
    const std::string path = m_oFolder.Write("empty.qsb", file);
    const std::string text = RunQsb({"info", path}).out;
    EXPECT_NE(text.find("      2     589  0x00000050"), std::string::npos) << text;
    EXPECT_NE(text.find("      3     601  0x00000051"), std::string::npos) << text;
    EXPECT_NE(text.find("2 of these"), std::string::npos) << text;
    EXPECT_NE(text.find("      5     625  0x00000052"), std::string::npos) << text;
    EXPECT_NE(RunQsb({"info", "--blocks", "3", path}).out.find("\n  3 more; --blocks N lists N\n"),
              std::string::npos);
    EXPECT_EQ(Json(path)["blocks"][3]["count"], 2);
    EXPECT_EQ(Json(path)["blocks"][4]["identifier"], 0x52);
}

TEST_F(InfoCommand, ManyBlocksAreListedUpToANumber)
{
    QsbBytes file = CleanScan();
    for (std::uint32_t i = 0; i < 200; ++i)
        file.Block(100 + i).Data({1});
    const std::string path = m_oFolder.Write("many.qsb", file);
    EXPECT_NE(RunQsb({"info", path}).out.find("\n  102 more; --blocks N lists N\n"), std::string::npos);
    EXPECT_EQ(RunQsb({"info", "--blocks", "500", path}).out.find(" more; "), std::string::npos);
    EXPECT_EQ(Json(path, {"--blocks", "3"})["blocks"].size(), 3u);
}

TEST_F(InfoCommand, ADamagedScanStillGivesItsFactsThenTheReasonAndExitCode3)
{
    const BytesT whole = CleanScan().Get();
    const std::string path = m_oFolder.Write("torn.qsb", Support::Truncated(whole, whole.size() - 1));
    const auto run = RunQsb({"info", path});
    EXPECT_NE(run.out.find("points             3, of which the file holds 2\n"), std::string::npos);
    EXPECT_NE(run.out.find("instrument height  1.5\n"), std::string::npos);
    EXPECT_EQ(run.err,
              "qsb: " + path +
                  ": damaged, QSB-007 at byte 588, block 1: the file ends within the data of a block; "
                  "qsb check says more\n");
    EXPECT_EQ(run.iExitCode, 3);
}

TEST_F(InfoCommand, ATornHeaderGivesTheFactsBeforeTheTear)
{
    const QsbBytes clean = CleanScan();
    const std::string path =
        m_oFolder.Write("header.qsb", Support::Truncated(clean.Get(), EntryOffset(clean, 101)));
    const auto run = RunQsb({"info", path});
    EXPECT_NE(run.out.find("points             not known, since the header is not whole\n"),
              std::string::npos);
    EXPECT_NE(run.out.find("grid               2 rows x 16 columns"), std::string::npos);
    EXPECT_EQ(run.iExitCode, 3);
}

TEST_F(InfoCommand, AFileWithATagTooLargeGivesItsFacts)
{
    const QsbBytes clean = CleanScan();
    const BytesT bytes = Support::With32(clean.Get(), EntryOffset(clean, 2) + 4, 1000);
    const auto run = RunQsb({"info", m_oFolder.Write("tag.qsb", bytes)});
    EXPECT_NE(run.out.find("instrument height  1.5\n"), std::string::npos);
    EXPECT_EQ(run.iExitCode, 3);
}

TEST_F(InfoCommand, AFileOfAnotherKindIsNamedDamaged)
{
    const auto run = RunQsb({"info", m_oFolder.Write("text", BytesT(100, 'x'))});
    EXPECT_NE(run.out.find("version  none\n"), std::string::npos);
    EXPECT_NE(run.err.find("QSB-002"), std::string::npos);
    EXPECT_EQ(run.iExitCode, 3);
}

TEST_F(InfoCommand, AFileThatIsNotThereGivesExitCode1)
{
    const auto run = RunQsb({"info", m_oFolder.Path("missing")});
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.iExitCode, 1);
}

TEST_F(InfoCommand, JsonHasItsKeysInTheirOrder)
{
    std::vector<std::string> keys;
    const auto document = Json(Clean());
    for (const auto& item : document.items())
        keys.push_back(item.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"schema_version", "command", "file", "status", "size_bytes",
                                              "version", "version_number", "block_count", "blocks", "scan",
                                              "statistics", "errors"}));
}

TEST_F(InfoCommand, JsonSaysWhatTheTextSays)
{
    const auto document = Json(Clean(), {"--stats"});
    EXPECT_EQ(document["blocks"][1]["data_bytes"], 69);
    const auto& scan = document["scan"];
    EXPECT_EQ(scan["points"], 3);
    EXPECT_EQ(scan["elements"][4]["kind"], "color");
    EXPECT_EQ(scan["grid"], (ordered_json{{"stored", {1, 15}}, {"rows", 2}, {"columns", 16}}));
    EXPECT_EQ(scan["pose"][3], 10.0);
    EXPECT_EQ(scan["bounding_box"]["max"], (ordered_json{15.0, 15.0, 15.0}));
    EXPECT_EQ(document["statistics"]["box_posed"]["min"], (ordered_json{8.0, 20.0, 30.0}));
    EXPECT_EQ(document["statistics"]["intensity"]["max"], 1002.0);
}

TEST_F(InfoCommand, JsonHasNullForNumbersThatAreNotFinite)
{
    QsbBytes file;
    file.Block(1)
        .DoubleEntry(26, std::numeric_limits<double>::quiet_NaN())
        .Entry(40, 100, 12)
        .Entry(5, 101, 2);
    EXPECT_EQ(Json(m_oFolder.Write("nan.qsb", file))["scan"]["instrument_height"], nullptr);
}

TEST_F(InfoCommand, JsonOfADamagedScanNamesTheErrors)
{
    const BytesT whole = CleanScan().Get();
    const auto document = Json(m_oFolder.Write("torn.qsb", Support::Truncated(whole, whole.size() - 1)));
    EXPECT_EQ(document["status"], "damaged");
    EXPECT_EQ(document["errors"][0]["id"], "QSB-007");
    EXPECT_EQ(document["scan"]["points_readable"], 2);
}

} // namespace
