// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Real scans, imported, as a host sees them through the library: positions mapped by the pose in double
// precision, intensity as the low 16 bits of its whole part, everything else as it was.
#include "Sio/Sio_LittleEndian.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_ScanInput.h"
#include "Tools/RunQsb.h"

#include <ScanReader/QsbReader.h>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using Kry::ScanReader::QsbPoint;

/// A data set in the raw form, whole in memory, read without the parts of the command that import uses.
class RawScan
{
public:
    explicit RawScan(const std::string& json)
        : m_oHeader(Tool::ReadRawHeader({json, std::make_unique<Tool::FileInputC>(json)})),
          m_strData(Support::ReadAll(Tool::RawPaths(json).second))
    {}

    const Tool::RawHeaderC& Header() const { return m_oHeader; }

    bool Has(const std::string& field) const { return Offset(field).second != nullptr; }

    double Value(std::size_t nPoint, const std::string& field) const
    {
        const auto [nOffset, pField] = Offset(field);
        const char* bytes = m_strData.data() + nPoint * m_oHeader.GetRecordBytes() + nOffset;
        switch (pField->eType) {
        case Tool::NumberTypeT::UInt8:
            return SIO::LoadLittleEndian<std::uint8_t>(bytes);
        case Tool::NumberTypeT::UInt16:
            return SIO::LoadLittleEndian<std::uint16_t>(bytes);
        case Tool::NumberTypeT::UInt32:
            return SIO::LoadLittleEndian<std::uint32_t>(bytes);
        case Tool::NumberTypeT::Float:
            return static_cast<double>(SIO::LoadLittleEndian<float>(bytes));
        case Tool::NumberTypeT::Double:
            return SIO::LoadLittleEndian<double>(bytes);
        default:
            ADD_FAILURE() << "no data set has this type";
            return 0.0;
        }
    }

private:
    std::pair<std::size_t, const Tool::SourceFieldC*> Offset(const std::string& name) const
    {
        std::size_t nOffset = 0;
        for (const Tool::SourceFieldC& field : m_oHeader.vecFields) {
            if (field.strName == name) return {nOffset, &field};
            nOffset += Tool::SizeOf(field.eType);
        }
        return {0, nullptr};
    }

    Tool::RawHeaderC m_oHeader;
    std::string m_strData;
};

/// The record that a host must get for a point, by the documented conversion.
QsbPoint Expected(const RawScan& scan, std::size_t nPoint)
{
    const double x = scan.Value(nPoint, "x"), y = scan.Value(nPoint, "y"), z = scan.Value(nPoint, "z");
    const std::array<double, 16> m = scan.Header().oScan.oPose.value_or(
        std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    const double w = m[12] * x + m[13] * y + m[14] * z + m[15];
    QsbPoint point;
    point.x = (m[0] * x + m[1] * y + m[2] * z + m[3]) / w;
    point.y = (m[4] * x + m[5] * y + m[6] * z + m[7]) / w;
    point.z = (m[8] * x + m[9] * y + m[10] * z + m[11]) / w;
    point.intensity =
        static_cast<std::uint16_t>(static_cast<std::int64_t>(std::trunc(scan.Value(nPoint, "intensity"))));
    if (scan.Has("red")) {
        point.red = static_cast<std::uint8_t>(scan.Value(nPoint, "red"));
        point.green = static_cast<std::uint8_t>(scan.Value(nPoint, "green"));
        point.blue = static_cast<std::uint8_t>(scan.Value(nPoint, "blue"));
    }
    if (scan.Has("row")) {
        point.gridIndex0 = static_cast<std::uint32_t>(scan.Value(nPoint, "row"));
        point.gridIndex1 = static_cast<std::uint32_t>(scan.Value(nPoint, "col"));
    }
    return point;
}

bool Same(const QsbPoint& a, const QsbPoint& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z && a.red == b.red && a.green == b.green &&
           a.blue == b.blue && a.intensity == b.intensity && a.levelOfNoise == b.levelOfNoise &&
           a.gridIndex0 == b.gridIndex0 && a.gridIndex1 == b.gridIndex1;
}

class ImportedScan : public testing::TestWithParam<const char*>
{
protected:
    /// Imports the data set and opens the scan.
    void Open(const std::string& source)
    {
        const Support::QsbRunT run =
            Support::RunQsb({"import", source, m_directory.Narrow("a.qsb"), "--quiet"});
        ASSERT_EQ(run.iExitCode, 0) << run.err;
        ASSERT_EQ(m_oReader.Open(m_directory.Narrow("a.qsb").c_str()), 0) << m_oReader.RetMsg();
    }

    const Support::TemporaryDirectory m_directory;
    Kry::ScanReader::QsbReader m_oReader;
};

TEST_P(ImportedScan, GivesAHostEveryPointOfTheSource)
{
    REAL_DATA(source, std::string(GetParam()) + ".json");
    ASSERT_NO_FATAL_FAILURE(Open(source));
    const RawScan scan(source);
    Kry::ScanReader::QsbReadIterator batch(777);
    std::uint64_t ullCount = 0;
    std::size_t nPoint = 0;
    while (m_oReader.Read(batch, ullCount) == 0 && ullCount != 0) {
        for (std::uint64_t i = 0; i < ullCount; ++i, ++nPoint) {
            ASSERT_TRUE(Same(*batch.GetPoint(i), Expected(scan, nPoint))) << "point " << nPoint;
        }
    }
    EXPECT_EQ(nPoint, scan.Header().ullPoints);
}

TEST_P(ImportedScan, TellsAHostWhatTheSourceHas)
{
    REAL_DATA(source, std::string(GetParam()) + ".json");
    ASSERT_NO_FATAL_FAILURE(Open(source));
    const RawScan scan(source);
    std::uint64_t ullRows = 0, ullColumns = 0;
    EXPECT_EQ(m_oReader.GetNumPoints(), scan.Header().ullPoints);
    EXPECT_EQ(m_oReader.HasColor(), scan.Has("red"));
    EXPECT_EQ(m_oReader.HasGrid(), scan.Has("row"));
    EXPECT_FALSE(m_oReader.HasNoiseRatio());
    EXPECT_EQ(m_oReader.GetGridSize(ullRows, ullColumns), scan.Header().oScan.oGrid.has_value());
    EXPECT_EQ((std::array<std::uint64_t, 2>{ullRows, ullColumns}),
              scan.Header().oScan.oGrid.value_or(std::array<std::uint64_t, 2>{0, 0}));
    double adMatrix[16] = {};
    m_oReader.GetTransformation(adMatrix);
    for (std::size_t i = 0; scan.Header().oScan.oPose && i < 16; ++i) {
        EXPECT_EQ(adMatrix[i], (*scan.Header().oScan.oPose)[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(RealScans, ImportedScan,
                         testing::Values("tls_pump", "als_park", "road_a", "road_b", "road_c", "als_thin"));

} // namespace
