// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb import and qsb export as their users run them: files, outputs and exit codes, on small files and on
// real scans.
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_ScanInput.h"
#include "Tools/RunQsb.h"

#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

namespace {

using Support::QsbRunT;
using Support::ReadAll;
using Support::RunQsb;
using Support::WriteAll;

const std::string s_strPly =
    "ply\nformat ascii 1.0\ncomment qsb pose 1 0 0 10 0 1 0 20 0 0 1 30 0 0 0 1\n"
    "comment qsb grid 2 2\ncomment qsb instrument_height 1.5\nelement vertex 2\n"
    "property float x\nproperty float y\nproperty float z\nproperty ushort intensity\n"
    "property uchar red\nproperty uchar green\nproperty uchar blue\n"
    "property ushort row\nproperty ushort col\nend_header\n"
    "0.1 2 3 400 1 2 3 0 1\n-4 5.5 nan 65535 255 0 7 1 0\n";

class ConvertCommand : public testing::Test
{
protected:
    std::string Path(const std::string& name) const { return m_directory.Narrow(name); }
    bool Exists(const std::string& name) const { return boost::filesystem::exists(Path(name)); }

    std::ptrdiff_t CountFiles() const
    {
        return std::distance(boost::filesystem::directory_iterator(m_directory.Path()),
                             boost::filesystem::directory_iterator());
    }

    /// Makes a.qsb of a PLY file.
    void MakeScan(const std::string& ply = s_strPly) const
    {
        WriteAll(Path("a.ply"), ply);
        const QsbRunT run = RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--quiet"});
        ASSERT_EQ(run.iExitCode, 0) << run.err;
    }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(ConvertCommand, AScanSurvivesPlyAndTheRawForm)
{
    MakeScan();
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.ply"), "--strict"}).iExitCode, 0);
    ASSERT_EQ(RunQsb({"import", Path("b.ply"), Path("b.qsb"), "--strict"}).iExitCode, 0);
    ASSERT_EQ(RunQsb({"export", Path("b.qsb"), Path("c.bin"), "--strict"}).iExitCode, 0);
    ASSERT_EQ(RunQsb({"import", Path("c.json"), Path("c.qsb"), "--strict"}).iExitCode, 0);
    EXPECT_EQ(ReadAll(Path("b.qsb")), ReadAll(Path("a.qsb")));
    EXPECT_EQ(ReadAll(Path("c.qsb")), ReadAll(Path("a.qsb")));
}

TEST_F(ConvertCommand, TheReportTellsEveryFieldAndPart)
{
    WriteAll(Path("a.ply"), s_strPly);
    const QsbRunT run = RunQsb({"import", Path("a.ply"), Path("a.qsb")});
    EXPECT_EQ(run.iExitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, Path("a.ply") + " -> " + Path("a.qsb") +
                           ": 2 points\n"
                           "  x                  float   kept\n"
                           "  y                  float   kept\n"
                           "  z                  float   kept: 1 are not finite\n"
                           "  intensity          uint16  kept\n"
                           "  red                uint8   kept\n"
                           "  green              uint8   kept\n"
                           "  blue               uint8   kept\n"
                           "  row                uint16  kept\n"
                           "  col                uint16  kept\n"
                           "  pose                       kept\n"
                           "  grid                       kept: 2 rows, 2 columns\n"
                           "  instrument_height          kept\n");
}

TEST_F(ConvertCommand, TheReportAsJsonHasItsKeysInOrder)
{
    WriteAll(Path("a.ply"), s_strPly);
    const QsbRunT run = RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--json", "--position", "double"});
    const auto json = nlohmann::ordered_json::parse(run.out);
    std::string keys, partKeys;
    for (const auto& [key, value] : json.items())
        keys.append(key).append(" ");
    for (const auto& [key, value] : json["parts"][0].items())
        partKeys.append(key).append(" ");
    EXPECT_EQ(keys, "schema_version command input output points points_in_source lossless parts ");
    EXPECT_EQ(partKeys, "name source_type stored_type outcome factor changed largest_change loss note ");
    EXPECT_EQ(json["schema_version"], 1);
    EXPECT_EQ(json["parts"][0]["stored_type"], "double");
    EXPECT_EQ(run.err, "");
}

TEST_F(ConvertCommand, QuietTellsLossesAloneOnStderr)
{
    WriteAll(Path("a.ply"), s_strPly);
    const QsbRunT run = RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--quiet", "--color", "none"});
    EXPECT_EQ(run.iExitCode, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.find("qsb: " + Path("a.qsb") + ": red: dropped: left out as asked\n"), 0u);
}

TEST_F(ConvertCommand, StrictRefusesWhatTypesTellAndWhatOnlyValuesTell)
{
    WriteAll(Path("a.ply"), s_strPly);
    const QsbRunT dropped =
        RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--strict", "--noise", "none", "--color", "none"});
    EXPECT_EQ(dropped.iExitCode, 1);
    EXPECT_NE(dropped.err.find("--strict refuses loss\n  red: dropped"), std::string::npos);
    const QsbRunT changed =
        RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--strict", "--intensity", "int16"});
    EXPECT_EQ(changed.iExitCode, 1);
    EXPECT_NE(changed.err.find("  intensity: changed, 1 values differ, by 3.28e+04 at most\n"),
              std::string::npos);
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(ConvertCommand, AnExistingOutputStaysUnlessItIsToBeReplaced)
{
    MakeScan();
    WriteAll(Path("b.qsb"), "mine");
    EXPECT_EQ(RunQsb({"import", Path("a.ply"), Path("b.qsb")}).iExitCode, 1);
    EXPECT_EQ(ReadAll(Path("b.qsb")), "mine");
    EXPECT_EQ(RunQsb({"import", Path("a.ply"), Path("b.qsb"), "--overwrite"}).iExitCode, 0);
    EXPECT_EQ(ReadAll(Path("b.qsb")), ReadAll(Path("a.qsb")));
    WriteAll(Path("c.bin"), "mine");
    EXPECT_EQ(RunQsb({"export", Path("a.qsb"), Path("c.json")}).iExitCode, 1);
    EXPECT_FALSE(Exists("c.json"));
}

TEST_F(ConvertCommand, AFailedImportLeavesTheOldFileAndNothingElse)
{
    WriteAll(Path("a.ply"), s_strPly.substr(0, s_strPly.size() - 8));
    WriteAll(Path("a.qsb"), "mine");
    const QsbRunT run = RunQsb({"import", Path("a.ply"), Path("a.qsb"), "--overwrite"});
    EXPECT_EQ(run.iExitCode, 3);
    EXPECT_NE(run.err.find("a.ply: line 18: the file ends in the middle of the data"), std::string::npos)
        << run.err;
    EXPECT_EQ(ReadAll(Path("a.qsb")), "mine");
    EXPECT_EQ(CountFiles(), 2);
}

TEST_F(ConvertCommand, TheInputIsNeverTheOutput)
{
    MakeScan();
    EXPECT_EQ(RunQsb({"import", Path("a.ply"), Path("a.ply"), "--overwrite"}).iExitCode, 1);
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.json")}).iExitCode, 0);
    EXPECT_EQ(RunQsb({"import", Path("b.json"), Path("b.bin"), "--overwrite"}).iExitCode, 1);
    EXPECT_EQ(RunQsb({"export", Path("a.qsb"), Path("a.qsb"), "--format", "ply", "--overwrite"}).iExitCode,
              1);
}

TEST_F(ConvertCommand, ExitCodesTellUsageFailureAndDamageApart)
{
    MakeScan();
    WriteAll(Path("bad.ply"), "ply\n");
    WriteAll(Path("bad.qsb"), "no scan");
    WriteAll(Path("odd.xyz"), "1 2 3");
    EXPECT_EQ(RunQsb({"import", Path("a.ply")}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"import", Path("odd.xyz"), Path("o.qsb")}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"import", Path("a.ply"), Path("o.qsb"), "--intensity", "int8"}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"import", Path("a.ply"), Path("o.qsb"), "--intensity-scale", "nan"}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"export", Path("a.qsb"), Path("o.xyz")}).iExitCode, 2);
    EXPECT_EQ(RunQsb({"import", Path("none.ply"), Path("o.qsb")}).iExitCode, 1);
    EXPECT_EQ(RunQsb({"export", Path("none.qsb"), Path("o.ply")}).iExitCode, 1);
    EXPECT_EQ(RunQsb({"export", Path("a.qsb"), Path("none/o.ply")}).iExitCode, 1);
    EXPECT_EQ(RunQsb({"import", Path("bad.ply"), Path("o.qsb")}).iExitCode, 3);
    EXPECT_EQ(RunQsb({"export", Path("bad.qsb"), Path("o.ply")}).iExitCode, 3);
    EXPECT_FALSE(Exists("o.qsb") || Exists("o.ply"));
}

TEST_F(ConvertCommand, HelpHasExamples)
{
    for (const char* verb : {"import", "export"}) {
        const QsbRunT run = RunQsb({verb, "--help"});
        EXPECT_EQ(run.iExitCode, 0);
        EXPECT_NE(run.out.find(std::string("Examples:\n  qsb ") + verb), std::string::npos);
    }
}

TEST_F(ConvertCommand, PlyHasTheDocumentedHeader)
{
    MakeScan();
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.ply")}).iExitCode, 0);
    const std::string header =
        "ply\nformat binary_little_endian 1.0\ncomment qsb pose 1 0 0 10 0 1 0 20 0 0 1 30 0 0 0 1\n"
        "comment qsb grid 2 2\ncomment qsb instrument_height 1.5\nelement vertex 2\n"
        "property float x\nproperty float y\nproperty float z\nproperty ushort intensity\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\n"
        "property ushort row\nproperty ushort col\nend_header\n";
    const std::string ply = ReadAll(Path("b.ply"));
    EXPECT_EQ(ply.substr(0, header.size()), header);
    EXPECT_EQ(ply.size(), header.size() + 2 * 21);
}

TEST_F(ConvertCommand, PlyHasTheTypeOfPositionsThatIsAskedFor)
{
    MakeScan();
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.ply"), "--position", "double"}).iExitCode, 0);
    EXPECT_NE(ReadAll(Path("b.ply")).find("property double x\n"), std::string::npos);
    ASSERT_EQ(RunQsb({"import", Path("b.ply"), Path("b.qsb")}).iExitCode, 0);
    const QsbRunT run = RunQsb({"export", Path("b.qsb"), Path("c.ply"), "--position", "float", "--strict"});
    EXPECT_EQ(run.iExitCode, 0) << run.err; // floats in disguise
}

TEST_F(ConvertCommand, CsvHasAHeaderLineShortestNumbersAndASidecar)
{
    MakeScan();
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.csv")}).iExitCode, 0);
    EXPECT_EQ(ReadAll(Path("b.csv")), "x,y,z,intensity,red,green,blue,row,col\n"
                                      "0.1,2,3,400,1,2,3,0,1\n"
                                      "-4,5.5,nan,65535,255,0,7,1,0\n");
    const auto sidecar = nlohmann::json::parse(ReadAll(Path("b.csv.json")));
    EXPECT_EQ(sidecar["points"], 2);
    EXPECT_EQ(sidecar["pose"][3], 10.0);
    EXPECT_EQ(sidecar["grid"], (std::vector<int>{2, 2}));
    EXPECT_EQ(sidecar["instrument_height"], 1.5);
}

TEST_F(ConvertCommand, ApplyPoseMapsPositionsAndDoesNotOfferThePoseAgain)
{
    MakeScan();
    const QsbRunT run = RunQsb({"export", Path("a.qsb"), Path("b.csv"), "--apply-pose"});
    ASSERT_EQ(run.iExitCode, 0);
    EXPECT_NE(run.out.find("float -> double  changed: mapped by the pose"), std::string::npos);
    const std::string x = "10.100000001490116"; // 0.1 as float, plus 10, in double precision
    EXPECT_NE(ReadAll(Path("b.csv")).find("\n" + x + ",22,33,400"), std::string::npos)
        << ReadAll(Path("b.csv"));
    const auto sidecar = nlohmann::json::parse(ReadAll(Path("b.csv.json")));
    EXPECT_TRUE(sidecar["pose"].is_null());
    EXPECT_EQ(sidecar["applied_pose"][3], 10.0);
}

TEST_F(ConvertCommand, ATornScanIsExportedAsFarAsItCanBeRead)
{
    MakeScan();
    const std::string whole = ReadAll(Path("a.qsb"));
    WriteAll(Path("torn.qsb"), whole.substr(0, whole.size() - 1));
    const QsbRunT run = RunQsb({"export", Path("torn.qsb"), Path("b.csv")});
    EXPECT_EQ(run.iExitCode, 3);
    EXPECT_NE(run.err.find("torn.qsb: the data is torn; 1 of 2 points are readable, these were exported"),
              std::string::npos);
    EXPECT_NE(run.out.find("1 points of 2\n"), std::string::npos);
    EXPECT_EQ(ReadAll(Path("b.csv")), "x,y,z,intensity,red,green,blue,row,col\n0.1,2,3,400,1,2,3,0,1\n");
    EXPECT_EQ(RunQsb({"export", Path("torn.qsb"), Path("c.csv"), "--strict"}).iExitCode, 3);
    EXPECT_FALSE(Exists("c.csv"));
}

TEST_F(ConvertCommand, AScanWithoutPointsIsConvertedToo)
{
    MakeScan("ply\nformat ascii 1.0\nelement vertex 0\nproperty float x\nproperty float y\nproperty float z\n"
             "property uchar intensity\nend_header\n");
    EXPECT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.csv")}).iExitCode, 0);
    EXPECT_EQ(ReadAll(Path("b.csv")), "x,y,z,intensity\n");
}

TEST_F(ConvertCommand, NumbersDoNotFollowTheLocale)
{
    const Support::ScopedEnvironment locale("LC_ALL", "de_DE.UTF-8");
    MakeScan();
    ASSERT_EQ(RunQsb({"export", Path("a.qsb"), Path("b.csv")}).iExitCode, 0);
    EXPECT_NE(ReadAll(Path("b.csv")).find("\n0.1,2,3,"), std::string::npos);
}

/// The bytes of each field of a raw-form data set.
std::map<std::string, std::string> FieldBytes(const std::string& json)
{
    const auto [headerPath, dataPath] = Tool::RawPaths(json);
    const Tool::RawHeaderC header =
        Tool::ReadRawHeader({headerPath, std::make_unique<Tool::FileInputC>(headerPath)});
    const std::string data = ReadAll(dataPath);
    std::map<std::string, std::string> fields;
    std::size_t nOffset = 0;
    for (const Tool::SourceFieldC& field : header.vecFields) {
        std::string& bytes = fields[field.strName + " " + std::string(Tool::ShortName(field.eType))];
        const std::size_t nBytes = Tool::SizeOf(field.eType);
        for (std::size_t i = nOffset; i < data.size(); i += header.GetRecordBytes())
            bytes.append(data, i, nBytes);
        nOffset += nBytes;
    }
    return fields;
}

struct DataSetT
{
    std::string strName;
    std::vector<std::string> dropped; ///< fields with their type
};

class RealScan : public testing::TestWithParam<DataSetT>
{};

TEST_P(RealScan, ImportAndExportGiveTheSameBytesForEveryFieldThatAScanFileCarries)
{
    REAL_DATA(source, GetParam().strName + ".json");
    const Support::TemporaryDirectory directory;
    ASSERT_EQ(RunQsb({"import", source, directory.Narrow("a.qsb"), "--quiet"}).iExitCode, 0);
    ASSERT_EQ(RunQsb({"export", directory.Narrow("a.qsb"), directory.Narrow("a.json"), "--strict"}).iExitCode,
              0);
    auto expected = FieldBytes(source);
    for (const std::string& field : GetParam().dropped)
        ASSERT_EQ(expected.erase(field), 1u);
    EXPECT_TRUE(FieldBytes(directory.Narrow("a.json")) == expected);
    const auto before = nlohmann::json::parse(ReadAll(source)),
               after = nlohmann::json::parse(ReadAll(directory.Narrow("a.json")));
    EXPECT_EQ(after["points"], before["points"]);
    EXPECT_EQ(after["grid"], before["grid"]);
    const auto identity = nlohmann::json{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(after["pose"], before["pose"].is_null() ? identity : before["pose"]);
}

TEST_P(RealScan, StrictRefusesExactlyTheScansWithFieldsThatAreDropped)
{
    REAL_DATA(source, GetParam().strName + ".json");
    const Support::TemporaryDirectory directory;
    const QsbRunT run = RunQsb({"import", source, directory.Narrow("a.qsb"), "--strict"});
    EXPECT_EQ(run.iExitCode, GetParam().dropped.empty() ? 0 : 1);
    for (const std::string& field : GetParam().dropped) {
        EXPECT_NE(run.err.find("  " + field.substr(0, field.find(' ')) + ": dropped"), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(ConvertCommand, RealScan,
                         testing::Values(DataSetT{"tls_pump", {}},
                                         DataSetT{"als_park", {"return_number u8", "number_of_returns u8"}},
                                         DataSetT{"road_a", {"timestamp f64"}},
                                         DataSetT{"road_b", {"timestamp f64"}}, DataSetT{"road_c", {}},
                                         DataSetT{"als_thin", {}}),
                         [](const auto& set) { return set.param.strName; });

TEST(RealPly, TheRealPlyFileHasThePointsThatItWasMadeOf)
{
    REAL_DATA(ply, "derived/tls_pump.ply");
    REAL_DATA(source, "tls_pump.json");
    const Support::TemporaryDirectory directory;
    ASSERT_EQ(RunQsb({"import", ply, directory.Narrow("a.qsb"), "--strict"}).iExitCode, 0);
    ASSERT_EQ(RunQsb({"export", directory.Narrow("a.qsb"), directory.Narrow("a.json")}).iExitCode, 0);
    auto expected = FieldBytes(source), fields = FieldBytes(directory.Narrow("a.json"));
    for (const char* field : {"intensity u16", "red u8", "green u8", "blue u8"}) {
        EXPECT_TRUE(fields[field] == expected[field]) << field;
    }
    EXPECT_EQ(fields["x f32"].size(), expected["x f64"].size() / 2);
}

} // namespace
