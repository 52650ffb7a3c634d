// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// qsb synth: what is in the files it writes, and how the command behaves.
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Cmd_Render.h"
#include "Tools/Qsb/Cmd_Synth.h"
#include "Tools/Qsb/Synth_Scanner.h"
#include "Tools/Qsb/Tool_Encodings.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/RunQsb.h"
#include "Tools/TinyScan.h"
#include "Tools/VerbRun.h"

#include <ScanReader/QsbReader.h>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using namespace Tool;
using Support::RunQsb;

class Synth : public testing::Test
{
protected:
    /// Writes a scan inside this process; 90 x 180 unless told otherwise.
    std::string Make(const std::string& name, const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments{"synth", m_directory.Narrow(name), "--quiet"};
        if (std::find(more.begin(), more.end(), "--rows") == more.end()) {
            arguments.insert(arguments.end(), {"--rows", "90", "--columns", "180"});
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(Support::RunVerb(AddSynth, arguments), s_iDone);
        return m_directory.Narrow(name);
    }

    const Support::TemporaryDirectory m_directory;
    const std::string m_strScan = m_directory.Narrow("scan.qsb");
};

/// FNV-1a of the bytes.
std::uint64_t Checksum(const std::string& bytes)
{
    std::uint64_t ullSum = 0xCBF29CE484222325;
    for (const char byte : bytes)
        ullSum = (ullSum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return ullSum;
}

/// The place of a point in the world, by the file's pose.
Vec3C InWorld(const SIO::QsbScanInfoC& info, const ScanPointC& point)
{
    const auto row = [&](int i) {
        const auto& m = info.oTransformation;
        return m.At(i, 0) * point.x + m.At(i, 1) * point.y + m.At(i, 2) * point.z + m.At(i, 3);
    };
    return {row(0), row(1), row(2)};
}

TEST_F(Synth, TheSameSeedGivesTheSameFileOnEveryPlatform)
{
    EXPECT_EQ(Checksum(Support::ReadAll(Make("a"))), 0xB3DBA1067CE767CAu);
    EXPECT_EQ(
        Checksum(Support::ReadAll(Make("b", {"--seed", "7", "--position", "double", "--intensity", "float",
                                             "--noise", "float", "--grid", "uint32", "--block", "3"}))),
        0x75E974E8974D2252u);
}

TEST_F(Synth, AnotherSeedGivesAnotherFile)
{
    EXPECT_NE(Support::ReadAll(Make("a", {"--seed", "1"})), Support::ReadAll(Make("b", {"--seed", "2"})));
}

TEST_F(Synth, EveryCombinationOfEncodingsIsWrittenAndReadBack)
{
    std::size_t nCombinations = 0;
    for (const std::string& position : EncodingNames(SIO::PD_POSITION)) {
        for (const std::string& intensity : EncodingNames(SIO::PD_INTENSITY)) {
            for (const std::string& noise : EncodingNames(SIO::PD_LEVEL_OF_NOISE)) {
                for (const std::string& grid : EncodingNames(SIO::PD_GRID)) {
                    for (const std::string& color : EncodingNames(SIO::PD_COLOR)) {
                        SCOPED_TRACE(position + " " + intensity + " " + noise + " " + grid + " " + color);
                        const std::string path =
                            Make("scan.qsb",
                                 {"--rows", "12", "--columns", "24", "--position", position, "--intensity",
                                  intensity, "--noise", noise, "--grid", grid, "--color", color, "--block",
                                  nCombinations % 2 == 0 ? "1" : "3", "--overwrite"});
                        const ScanFormatC format = ScanReaderC(path).GetFormat();
                        EXPECT_EQ(EncodingName(SIO::PD_POSITION, format.uiPosition), position);
                        EXPECT_EQ(EncodingName(SIO::PD_INTENSITY, format.uiIntensity), intensity);
                        EXPECT_EQ(EncodingName(SIO::PD_LEVEL_OF_NOISE, format.uiNoise), noise);
                        EXPECT_EQ(EncodingName(SIO::PD_GRID, format.uiGrid), grid);
                        EXPECT_EQ(EncodingName(SIO::PD_COLOR, format.uiColor), color);
                        EXPECT_EQ(format.uiBlockId, nCombinations % 2 == 0 ? 1u : 3u);
                        EXPECT_GT(Support::ReadScan(path).size(), 250u);
                        ++nCombinations;
                    }
                }
            }
        }
    }
    EXPECT_EQ(nCombinations, 2u * 3u * 4u * 3u * 2u);
}

TEST_F(Synth, TheFileHoldsWhatTheScannerMeasuredColumnByColumn)
{
    SynthSettingsC settings{30, 60, 4, 0.0005, Support::s_oRichFormat};
    const std::string path =
        Make("scan.qsb", {"--rows", "30", "--columns", "60", "--seed", "4", "--position", "double",
                          "--intensity", "float", "--noise", "float", "--grid", "uint32"});
    const std::vector<ScanPointC> points = Support::ReadScan(path);
    const SynthScannerC scanner(settings);
    std::size_t nNext = 0;
    ScanPointC expected;
    for (std::uint32_t uiColumn = 0; uiColumn < 60; ++uiColumn) {
        for (std::uint32_t uiRow = 0; uiRow < 30; ++uiRow) {
            if (scanner.Measure(uiRow, uiColumn, expected) != AnswerT::Point) continue;
            ASSERT_LT(nNext, points.size());
            const ScanPointC& point = points[nNext++];
            EXPECT_EQ(point.x, expected.x);
            EXPECT_EQ(point.dIntensity, expected.dIntensity);
            EXPECT_EQ(point.dNoise, expected.dNoise);
            EXPECT_EQ(point.adColor[1], expected.adColor[1]);
            EXPECT_EQ(point.adGrid[0], uiRow);
            EXPECT_EQ(point.adGrid[1], uiColumn);
        }
    }
    EXPECT_EQ(nNext, points.size());
}

TEST_F(Synth, TheExportedReaderDeliversEveryPointAndFact)
{
    const std::string path = Make("scan.qsb");
    Kry::ScanReader::QsbReader reader;
    ASSERT_EQ(reader.Open(path.c_str()), 0) << reader.RetMsg();
    EXPECT_TRUE(reader.HasColor() && reader.HasGrid() && reader.HasNoiseRatio());
    std::uint64_t rows = 0, columns = 0, count = 0, total = 0;
    ASSERT_TRUE(reader.GetGridSize(rows, columns));
    EXPECT_EQ(rows, 90u);
    EXPECT_EQ(columns, 180u);
    EXPECT_EQ(reader.GetInstrumentHeight(), 1.65);
    Kry::ScanReader::QsbReadIterator batch(1000);
    while (reader.Read(batch, count) == 0 && count > 0)
        total += count;
    EXPECT_EQ(total, reader.GetNumPoints());
    EXPECT_EQ(total, Support::ReadScan(path).size());
}

TEST_F(Synth, NoPlaceOfTheGridHasTwoPoints)
{
    std::set<std::pair<double, double>> places;
    const std::vector<ScanPointC> points = Support::ReadScan(Make("scan.qsb"));
    for (const ScanPointC& point : points) {
        EXPECT_LT(point.adGrid[0], 90.0);
        EXPECT_LT(point.adGrid[1], 180.0);
        places.insert({point.adGrid[0], point.adGrid[1]});
    }
    EXPECT_EQ(places.size(), points.size());
}

TEST_F(Synth, EveryDirectionHasAPointOrAReasonForNone)
{
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--rows", "100", "--columns", "200", "--json"});
    const auto json = nlohmann::json::parse(run.out);
    const auto& gaps = json["without_point"];
    for (const char* reason : {"nothing_there", "too_weak", "drop_out"})
        EXPECT_GT(gaps[reason], 5) << reason;
    const std::uint64_t ullAll =
        json["points"].get<std::uint64_t>() + gaps["nothing_there"].get<std::uint64_t>() +
        gaps["too_weak"].get<std::uint64_t>() + gaps["drop_out"].get<std::uint64_t>();
    EXPECT_EQ(ullAll, 20000u);
    EXPECT_EQ(json["points"], Support::ReadScan(m_strScan).size());
}

TEST_F(Synth, ThePoseIsARotationAndATranslationAndNeitherIsTrivial)
{
    const ScanReaderC reader(Make("scan.qsb"));
    const auto& m = reader.GetInfo().oTransformation;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double product = 0.0;
            for (int k = 0; k < 3; ++k)
                product += m.At(i, k) * m.At(j, k);
            EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-14);
        }
        EXPECT_EQ(m.At(3, i), 0.0);
        EXPECT_GT(m.At(i, 3), 10.0);
    }
    EXPECT_EQ(m.At(3, 3), 1.0);
    EXPECT_LT(m.At(0, 0), 0.9);
    const Vec3C x{m.At(0, 0), m.At(1, 0), m.At(2, 0)}, y{m.At(0, 1), m.At(1, 1), m.At(2, 1)};
    EXPECT_NEAR(Cross(x, y).z, m.At(2, 2), 1e-14) << "a reflection";
}

TEST_F(Synth, ThePoseSetsTheFloorLevelOneInstrumentHeightBelowTheScanner)
{
    const std::string path = Make("scan.qsb", {"--position", "double", "--range-noise", "0"});
    const SIO::QsbScanInfoC info = ScanReaderC(path).GetInfo();
    const double floor = info.oTransformation.At(2, 3) - info.dInstrumentHeight;
    std::size_t nOnFloor = 0;
    for (const ScanPointC& point : Support::ReadScan(path)) {
        const double height = InWorld(info, point).z - floor;
        EXPECT_GT(height, -1.1e-3); // The corridor's floor is a millimetre lower.
        nOnFloor += std::fabs(height) < 1e-9 ? 1 : 0;
    }
    EXPECT_GT(nOnFloor, 2000u);
}

TEST_F(Synth, RangeNoiseMovesPointsAlongTheirDirection)
{
    const std::vector<ScanPointC> exact =
        Support::ReadScan(Make("a", {"--position", "double", "--range-noise", "0"}));
    const std::vector<ScanPointC> noisy =
        Support::ReadScan(Make("b", {"--position", "double", "--range-noise", "5"}));
    ASSERT_EQ(exact.size(), noisy.size());
    double squares = 0.0;
    for (std::size_t i = 0; i < exact.size(); ++i) {
        const Vec3C a{exact[i].x, exact[i].y, exact[i].z}, b{noisy[i].x, noisy[i].y, noisy[i].z};
        EXPECT_NEAR(Length(Cross(a, b)) / Length(a) / Length(b), 0.0, 1e-12);
        squares += (Length(a) - Length(b)) * (Length(a) - Length(b));
    }
    const double deviation = std::sqrt(squares / static_cast<double>(exact.size()));
    EXPECT_GT(deviation, 0.003);
    EXPECT_LT(deviation, 0.010);
}

TEST_F(Synth, OnTheFloorIntensityFallsWithRangeAndIncidence)
{
    const std::string path = Make("scan.qsb", {"--position", "double", "--range-noise", "0"});
    const SIO::QsbScanInfoC info = ScanReaderC(path).GetInfo();
    const double floor = info.oTransformation.At(2, 3) - info.dInstrumentHeight;
    double adSum[3] = {}, adCount[3] = {};
    for (const ScanPointC& point : Support::ReadScan(path)) {
        const double range = Length({point.x, point.y, point.z});
        if (std::fabs(InWorld(info, point).z - floor) > 1e-9 || range >= 5.0) continue;
        const int band = range < 2.5 ? 0 : range < 3.5 ? 1 : 2;
        adSum[band] += point.dIntensity;
        adCount[band] += 1.0;
    }
    EXPECT_GT(adSum[0] / adCount[0], 1.5 * adSum[1] / adCount[1]);
    EXPECT_GT(adSum[1] / adCount[1], 1.5 * adSum[2] / adCount[2]);
}

TEST_F(Synth, PositionsAreInTheScannersFrameWithZUp)
{
    for (const ScanPointC& point : Support::ReadScan(Make("scan.qsb", {"--position", "double"}))) {
        const double elevation = std::asin(point.z / Length({point.x, point.y, point.z}));
        const double expected = (-60.0 + 150.0 * (point.adGrid[0] + 0.5) / 90.0) * std::acos(-1.0) / 180.0;
        EXPECT_NEAR(elevation, expected, 1e-9);
    }
}

TEST_F(Synth, PointsChoosesRowsAndColumnsForAboutThatMany)
{
    for (const double wanted : {500.0, 20000.0, 100000.0}) {
        ASSERT_EQ(
            Support::RunVerb(AddSynth, {"synth", m_strScan, "--points",
                                        std::to_string(static_cast<int>(wanted)), "--quiet", "--overwrite"}),
            s_iDone);
        EXPECT_NEAR(static_cast<double>(ScanReaderC(m_strScan).GetNumberOfPoints()) / wanted, 1.0, 0.05);
    }
}

TEST_F(Synth, WithoutAGridTheHeaderHasNone)
{
    EXPECT_FALSE(ScanReaderC(Make("scan.qsb", {"--grid", "none"})).HasGridSize());
}

TEST_F(Synth, AGridOfOneLineIsWrittenWithAWarning)
{
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--rows", "1", "--columns", "50"});
    EXPECT_EQ(run.iExitCode, 0);
    EXPECT_NE(run.err.find("a grid of one line"), std::string::npos);
    EXPECT_FALSE(ScanReaderC(m_strScan).HasGridSize());
}

TEST_F(Synth, MoreLinesThanAGridOfUint16HoldsAreMisuse)
{
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--rows", "2", "--columns", "65537"});
    EXPECT_EQ(run.iExitCode, 2);
    EXPECT_NE(run.err.find("use --grid uint32"), std::string::npos);
    EXPECT_FALSE(boost::filesystem::exists(m_strScan));
}

TEST_F(Synth, TheLargestGridOfUint16IsWritten)
{
    const std::string path = Make("scan.qsb", {"--rows", "2", "--columns", "65536", "--color", "none"});
    double largest = 0.0;
    for (const ScanPointC& point : Support::ReadScan(path))
        largest = std::max(largest, point.adGrid[1]);
    EXPECT_EQ(largest, 65535.0);
    EXPECT_EQ(ScanReaderC(path).GetInfo().auiGridSize[1], 65535u);
}

TEST_F(Synth, MorePointsThanAFileHoldsAreMisuse)
{
    const Support::QsbRunT run =
        RunQsb({"synth", m_strScan, "--rows", "60000", "--columns", "60000", "--grid", "uint32"});
    EXPECT_EQ(run.iExitCode, 2);
    EXPECT_NE(run.err.find("4 GiB"), std::string::npos);
    EXPECT_TRUE(boost::filesystem::is_empty(m_directory.Path())) << "a temporary file is left";
}

TEST_F(Synth, AnExistingFileStaysUnlessItIsToBeOverwritten)
{
    Support::WriteAll(m_strScan, "old");
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--points", "100"});
    EXPECT_EQ(run.iExitCode, 1);
    EXPECT_NE(run.err.find("--overwrite"), std::string::npos);
    EXPECT_EQ(Support::ReadAll(m_strScan), "old");
    EXPECT_EQ(RunQsb({"synth", m_strScan, "--points", "100", "--overwrite"}).iExitCode, 0);
    EXPECT_NE(Support::ReadAll(m_strScan), "old");
}

TEST_F(Synth, WrongOptionsAreMisuse)
{
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--rows", "0"},
                                               {"--rows", "10", "--points", "100"},
                                               {"--position", "half"},
                                               {"--intensity", "none"},
                                               {"--block", "2"},
                                               {"--range-noise", "-1"},
                                               {"--range-noise", "nan"},
                                               {"--seed", "-1"}}) {
        std::vector<std::string> arguments{"synth", m_strScan};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        EXPECT_EQ(RunQsb(arguments).iExitCode, 2) << wrong[0] << " " << wrong[1];
        EXPECT_FALSE(boost::filesystem::exists(m_strScan));
    }
}

TEST_F(Synth, JsonSaysWhatWasWrittenAndNothingElseIsOnStdout)
{
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--rows", "20", "--columns", "30", "--json"});
    EXPECT_EQ(run.iExitCode, 0);
    const auto json = nlohmann::ordered_json::parse(run.out);
    EXPECT_EQ(json.begin().key(), "schema_version");
    EXPECT_EQ(json["command"], "synth");
    EXPECT_EQ(json["rows"], 20);
    EXPECT_EQ(json["columns"], 30);
    EXPECT_EQ(json["elements"]["position"], "float");
    EXPECT_EQ(json["pose"].size(), 16u);
    EXPECT_EQ(json["instrument_height"], 1.65);
}

/// Works after an interrupt has come. The exit code, or another number when something is left behind.
int WorkAfterAnInterrupt(void (*add)(CLI::App&, VerbActionT&), const std::string& input)
{
    const Support::TemporaryDirectory directory;
    std::vector<std::string> arguments{input.empty() ? "synth" : "render", input, directory.Narrow("out")};
    if (input.empty()) arguments.erase(arguments.begin() + 1);
    CatchInterrupts();
    (void)std::raise(SIGINT);
    int iExitCode = 0;
    try {
        iExitCode = Support::RunVerb(add, arguments);
    } catch (const ToolErrorC& error) {
        iExitCode = error.GetExitCode();
    }
    return boost::filesystem::is_empty(directory.Path()) ? iExitCode : 99;
}

TEST(SynthDeathTest, AnInterruptEndsSynthAndRenderAndLeavesNoFile)
{
    const Support::TemporaryDirectory directory;
    Support::WriteScan(directory.Narrow("scan.qsb"), {ScanPointC{1.0, 1.0, 1.0}});
    EXPECT_EXIT(std::exit(WorkAfterAnInterrupt(AddSynth, "")), testing::ExitedWithCode(s_iInterrupted), "");
    EXPECT_EXIT(std::exit(WorkAfterAnInterrupt(AddRender, directory.Narrow("scan.qsb"))),
                testing::ExitedWithCode(s_iInterrupted), "");
}

TEST_F(Synth, QuietSaysNothing)
{
    const Support::QsbRunT run = RunQsb({"synth", m_strScan, "--rows", "20", "--columns", "30", "--quiet"});
    EXPECT_EQ(run.iExitCode, 0);
    EXPECT_EQ(run.out + run.err, "");
}

} // namespace
