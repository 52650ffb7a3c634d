// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What info and check say of real scans, against the numbers in their raw form.
#include "Support/Environment.h"
#include "Support/RawScan.h"
#include "Support/ScanFolder.h"
#include "Tools/RunQsb.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using Support::RunQsb;

/// Smallest and largest value of a field.
std::pair<double, double> RangeOf(const Support::RawScan& raw, const std::string& name)
{
    const Support::RawField& field = *raw.Find(name);
    std::pair<double, double> range(raw.Value(0, field), raw.Value(0, field));
    for (std::uint32_t i = 1; i < raw.points; ++i) {
        const double d = raw.Value(i, field);
        range = {std::min(range.first, d), std::max(range.second, d)};
    }
    return range;
}

class InfoRealScan : public testing::TestWithParam<const char*>
{
protected:
    /// Imports the scan and returns its path.
    std::string Import(const std::string& raw) const
    {
        const std::string path = m_oFolder.Path("scan.qsb");
        EXPECT_EQ(RunQsb({"import", "--quiet", raw, path}).iExitCode, 0);
        return path;
    }

    const Support::ScanFolder m_oFolder;
};

TEST_P(InfoRealScan, StatisticsAreThoseOfTheRawForm)
{
    REAL_DATA(raw, std::string(GetParam()) + ".json");
    const auto scan = Support::ReadRawScan(raw.substr(0, raw.size() - 5));
    const json info = json::parse(RunQsb({"info", "--json", "--stats", Import(raw)}).out);
    const json& statistics = info["statistics"];
    EXPECT_EQ(info["scan"]["points"], scan.points);
    EXPECT_EQ(statistics["points"], scan.points);
    for (int i = 0; i < 3; ++i) {
        const auto [dMin, dMax] = RangeOf(scan, std::string(1, "xyz"[i]));
        EXPECT_EQ(statistics["box_stored"]["min"][i], dMin);
        EXPECT_EQ(statistics["box_stored"]["max"][i], dMax);
        EXPECT_EQ(info["scan"]["bounding_box"]["max"][i], dMax);
    }
    EXPECT_EQ(statistics["intensity"]["min"], RangeOf(scan, "intensity").first);
    EXPECT_EQ(statistics["intensity"]["max"], RangeOf(scan, "intensity").second);
}

TEST_P(InfoRealScan, PoseAndGridAreThoseOfTheRawForm)
{
    REAL_DATA(raw, std::string(GetParam()) + ".json");
    const auto scan = Support::ReadRawScan(raw.substr(0, raw.size() - 5));
    const json info = json::parse(RunQsb({"info", "--json", Import(raw)}).out);
    if (scan.pose) {
        EXPECT_EQ(info["scan"]["pose"], *scan.pose);
    }
    if (!scan.grid) return;
    EXPECT_EQ(info["scan"]["grid"]["rows"], scan.grid->at(0));
    EXPECT_EQ(info["scan"]["grid"]["columns"], scan.grid->at(1));
}

TEST_P(InfoRealScan, NothingButValuesThatReadersGetChangedIsFound)
{
    REAL_DATA(raw, std::string(GetParam()) + ".json");
    const auto run = RunQsb({"check", "--deep", "--json", Import(raw)});
    EXPECT_EQ(run.iExitCode, 0);
    const json report = json::parse(run.out);
    for (const json& finding : report.at("files").at(0).at("findings")) {
        // The intensities of one scan are fractions, and its header says so in no way that a reader knows.
        EXPECT_EQ(finding["id"], "QSB-406") << finding;
        EXPECT_STREQ(GetParam(), "als_thin") << finding;
    }
}

INSTANTIATE_TEST_SUITE_P(All, InfoRealScan,
                         testing::Values("tls_pump", "als_park", "road_a", "road_b", "road_c", "als_thin"),
                         [](const auto& instance) { return std::string(instance.param); });

} // namespace
