// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Every combination of encodings written and read again. The file in between is compared byte by byte with
// one made by hand, so writing and reading cannot agree on a mistake.
#include "WriteTest.h"

#include <random>

namespace {

using Support::BytesT;
using Support::Layout;
using Support::PlainPoint;
using Support::QsbBytes;

constexpr std::uint32_t s_nPoints = 5;

PlainPoint OddPoint(std::mt19937& random)
{
    PlainPoint point;
    for (double* number : {&point.x, &point.y, &point.z, &point.intensity, &point.noise, &point.red,
                           &point.green, &point.blue, &point.fourth, &point.grid0, &point.grid1}) {
        *number = Support::OddNumber(random);
    }
    return point;
}

class QsbRoundTrip : public SioTest::WriteTest, public testing::WithParamInterface<std::uint32_t>
{
protected:
    /// Writes the points in two batches.
    void WriteAll(const Layout& layout, const std::vector<PlainPoint>& points)
    {
        SIO::PointDefinitionC definition;
        SioTest::Define(definition, layout);
        SioTest::Scan writer;
        ASSERT_TRUE(writer.Open(Path(), false, true));
        writer.strategy.SetPointDefinition(&definition);
        SioTest::PlainSource source(points);
        ASSERT_TRUE(writer.container.WritePoints(source, 2, writer.strategy));
        ASSERT_TRUE(writer.container.WritePoints(source, s_nPoints - 2, writer.strategy));
        ASSERT_TRUE(writer.container.Close());
    }
};

TEST_P(QsbRoundTrip, EveryLayoutIsWrittenToTheByteAndReadBack)
{
    std::mt19937 random(GetParam());
    for (const Layout& layout : Support::AllLayouts(GetParam())) {
        std::vector<PlainPoint> points;
        BytesT data;
        for (std::uint32_t i = 0; i < s_nPoints; ++i) {
            points.push_back(OddPoint(random));
            const BytesT record = Support::PlainEncode(layout, points.back());
            data.insert(data.end(), record.begin(), record.end());
        }
        WriteAll(layout, points);

        QsbBytes expected;
        expected.Block(1);
        SioTest::AddNeutralEntries(expected);
        QsbBytes backwards = QsbBytes::Nothing();
        backwards.Block(0);
        Support::AddElements(backwards, layout);
        const BytesT entries = backwards.Get();
        for (std::size_t at = entries.size(); at > 12; at -= 16) {
            expected.Entry(static_cast<std::uint32_t>(Support::NumberAt(entries, at - 16, 4)),
                           static_cast<std::uint32_t>(Support::NumberAt(entries, at - 12, 4)),
                           Support::NumberAt(entries, at - 8, 8));
        }
        expected.Data(data);
        ASSERT_EQ(File(), expected.Get());

        SioTest::Scan reader;
        ASSERT_TRUE(reader.Open(Path()));
        ASSERT_EQ(reader.Read(100), s_nPoints);
        ASSERT_EQ(Support::Slice(reader.buffer, 0, data.size()), data);
    }
}

INSTANTIATE_TEST_SUITE_P(Positions, QsbRoundTrip, testing::Values(40u, 41u));

} // namespace
