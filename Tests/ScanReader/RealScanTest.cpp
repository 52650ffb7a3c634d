// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Real scans, written with our container in every encoding that holds their values, and read back through the
// exported reader field by field. The data is found beside the checkout or where SCANREADER_DATA says.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "ReaderTest.h"
#include "Sio/RecordingModifier.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Support/Environment.h"
#include "Support/PlainDecoder.h"
#include "Support/RawScan.h"

#include <boost/filesystem/operations.hpp>
#include <memory>

namespace {

using namespace ReaderTest;
using Support::Layout;
using Support::PlainPoint;
using Support::RawField;
using Support::RawScan;

std::string DataFolder()
{
    return Support::GetEnvironment("SCANREADER_DATA").value_or(SCANREADER_DATA_DEFAULT);
}

std::uint32_t TypeCode(const RawField* field, std::uint32_t ofFloat, std::uint32_t ofInteger)
{
    if (field == nullptr) return 0;
    return field->type == "f32" ? ofFloat : ofInteger;
}

/// The elements of a raw scan as points to be written.
class RawSource final : public SIO::QsbPointSourceI
{
public:
    explicit RawSource(const RawScan& scan) : m_scan(scan) {}

    PlainPoint Point(std::uint32_t i) const
    {
        PlainPoint point;
        const auto set = [&](double& value, const char* name) {
            if (const RawField* field = m_scan.Find(name)) value = m_scan.Value(i, *field);
        };
        set(point.x, "x");
        set(point.y, "y");
        set(point.z, "z");
        set(point.intensity, "intensity");
        set(point.red, "red");
        set(point.green, "green");
        set(point.blue, "blue");
        set(point.grid0, "row");
        set(point.grid1, "col");
        return point;
    }

    void Advance() override { ++m_next; }

    const SIO::QsbPointGetterI& Current() override
    {
        m_getter.point = Point(m_next);
        return m_getter;
    }

private:
    const RawScan& m_scan;
    std::uint32_t m_next = 0;
    SioTest::PlainGetter m_getter;
};

class RealScan : public Fixture, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        const std::string path = DataFolder() + "/" + GetParam();
        if (!boost::filesystem::exists(path + ".json")) {
            if (Support::GetEnvironment("CI") == "true") FAIL() << "no test data at " << path;
            GTEST_SKIP() << "no test data at " << path;
        }
        raw = Support::ReadRawScan(path);
        layout.position = TypeCode(raw.Find("x"), 40, 41);
        layout.intensity = TypeCode(raw.Find("intensity"), 8, 5);
        layout.grid = TypeCode(raw.Find("row"), 0, 23);
        layout.color = TypeCode(raw.Find("red"), 0, 7);
    }

    /// Writes the scan in batches of an odd size.
    void WriteWithOurContainer()
    {
        SIO::PointDefinitionC definition;
        const std::uint32_t types[] = {layout.position, layout.intensity, layout.noise, layout.grid,
                                       layout.color};
        for (std::uint32_t i = 0; i < 5; ++i) {
            if (types[i] != 0) definition.Add(SIO::PointDefinitionC::CreateElement(1u << i, types[i]));
        }
        SIO::QsbStrategyC strategy;
        if (raw.pose) {
            for (int i = 0; i < 16; ++i) {
                strategy.WriteInfo().oTransformation.At(i / 4, i % 4) =
                    (*raw.pose)[static_cast<std::size_t>(i)];
            }
        }
        if (raw.grid) {
            for (std::size_t i = 0; i < 2; ++i)
                strategy.WriteInfo().auiGridSize[i] = (*raw.grid)[i] - 1;
        }
        strategy.SetPointDefinition(&definition);
        SIO::QsbC container;
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(folder.Path("scan.qsb")), false, true));
        RawSource source(raw);
        constexpr std::uint32_t batch = 7777;
        for (std::uint32_t done = 0; done < raw.points; done += batch) {
            ASSERT_TRUE(container.WritePoints(source, std::min(batch, raw.points - done), strategy));
        }
        ASSERT_TRUE(container.Close());
    }

    /// Whether a point that was read is the raw one with the pose applied and the intensity cut to 16 bits.
    bool IsDelivered(const QsbPoint& read, PlainPoint expected) const
    {
        static const std::vector<double> identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        Support::PlainTransform(raw.pose.value_or(identity), expected);
        return Support::IsSame(read.x, expected.x) && Support::IsSame(read.y, expected.y) &&
               Support::IsSame(read.z, expected.z) &&
               read.intensity == Support::LowBits(expected.intensity, 16) && read.red == expected.red &&
               read.green == expected.green && read.blue == expected.blue &&
               read.gridIndex0 == expected.grid0 && read.gridIndex1 == expected.grid1 &&
               read.levelOfNoise == 0;
    }

    RawScan raw;
    Layout layout{};
};

TEST_P(RealScan, WrittenWithOurContainerItsStoredPointsAreTheOriginalBytes)
{
    WriteWithOurContainer();
    const Support::BytesT file = Support::ReadFile(folder.Path("scan.qsb"));
    const std::size_t size = Support::RecordBytes(layout);
    const RawSource source(raw);
    const std::size_t data = file.size() - raw.points * size;
    for (std::uint32_t i = 0; i < raw.points; ++i) {
        ASSERT_EQ(Support::Slice(file, data + i * size, size), Support::PlainEncode(layout, source.Point(i)))
            << i;
    }
}

TEST_P(RealScan, ReadThroughTheExportedReaderEveryFieldIsThatOfTheOriginal)
{
    WriteWithOurContainer();
    ASSERT_EQ(reader.Open(folder.Path("scan.qsb").c_str()), 0);
    ASSERT_EQ(reader.GetNumPoints(), raw.points);
    const RawSource source(raw);
    QsbReadIterator iterator;
    std::uint32_t done = 0;
    for (ReadResult read = Read(iterator); read.count != 0; read = Read(iterator)) {
        ASSERT_EQ(read.result, 0);
        for (std::uint32_t i = 0; i < read.count; ++i) {
            ASSERT_TRUE(IsDelivered(*iterator.GetPoint(i), source.Point(done + i))) << done + i;
        }
        done += static_cast<std::uint32_t>(read.count);
    }
    EXPECT_EQ(done, raw.points);
    EXPECT_EQ(Message(), s_szEnd);
}

TEST_P(RealScan, ItsGridAndPoseAreThoseOfTheOriginal)
{
    WriteWithOurContainer();
    ASSERT_EQ(reader.Open(folder.Path("scan.qsb").c_str()), 0);
    std::uint64_t rows = 0, columns = 0;
    EXPECT_EQ(reader.GetGridSize(rows, columns), raw.grid.has_value());
    EXPECT_EQ(reader.HasGrid(), raw.grid.has_value());
    EXPECT_EQ(reader.HasColor(), raw.Find("red") != nullptr);
    if (raw.grid) {
        EXPECT_EQ(rows, (*raw.grid)[0]);
        EXPECT_EQ(columns, (*raw.grid)[1]);
    }
    std::vector<double> matrix(16);
    reader.GetTransformation(matrix.data());
    if (raw.pose) {
        EXPECT_EQ(matrix, *raw.pose);
    }
}

INSTANTIATE_TEST_SUITE_P(Data, RealScan,
                         testing::Values("tls_pump", "als_park", "road_a", "road_b", "road_c", "als_thin"));

} // namespace
