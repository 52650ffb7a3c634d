// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The container of elements and the factory; then every combination of encodings against the second decoder.
#include "Sio/SIO_QsbPointDefinitionImpl.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "RecordingModifier.h"
#include "ScanTest.h"

#include <memory>
#include <random>

namespace {

using Support::BytesT;
using Support::Layout;

class PointDefinition : public testing::Test
{
protected:
    void Add(std::uint32_t kind, std::uint32_t type, bool transform = true)
    {
        definition.Add(SIO::PointDefinitionC::CreateElement(kind, type, transform));
    }

    void AddAll(const Layout& layout, bool transform)
    {
        if (layout.color != 0) Add(SIO::PD_COLOR, layout.color);
        if (layout.grid != 0) Add(SIO::PD_GRID, layout.grid);
        if (layout.noise != 0) Add(SIO::PD_LEVEL_OF_NOISE, layout.noise);
        if (layout.intensity != 0) Add(SIO::PD_INTENSITY, layout.intensity);
        Add(SIO::PD_POSITION, layout.position, transform);
    }

    void Decode(const BytesT& bytes)
    {
        definition.Decode(modifier, reinterpret_cast<const char*>(bytes.data()), matrix);
    }

    Support::ReportCapture reports;
    SIO::PointDefinitionC definition;
    GMAT::Matrix4C matrix;
    SioTest::RecordingModifier modifier;
    SioTest::PlainGetter getter;
};

TEST_F(PointDefinition, AnEmptyContainerHasNoSizeAndNoKinds)
{
    EXPECT_EQ(definition.GetSizeInBytes(), 0u);
    EXPECT_EQ(definition.GetAvailablePointData(), 0u);
    EXPECT_EQ(definition.GetCount(), 0u);
    EXPECT_EQ(definition.GetElement(0), nullptr);
}

TEST_F(PointDefinition, ElementsAreSortedByKindWhateverTheOrderOfAdding)
{
    Add(SIO::PD_COLOR, 7);
    Add(SIO::PD_POSITION, 40);
    Add(SIO::PD_GRID, 21);
    Add(SIO::PD_INTENSITY, 5);
    Add(SIO::PD_LEVEL_OF_NOISE, 2);
    ASSERT_EQ(definition.GetCount(), 5u);
    EXPECT_EQ(definition.GetElement(0)->GetAvailablePointData(), 1u);
    EXPECT_EQ(definition.GetElement(1)->GetAvailablePointData(), 2u);
    EXPECT_EQ(definition.GetElement(2)->GetAvailablePointData(), 4u);
    EXPECT_EQ(definition.GetElement(3)->GetAvailablePointData(), 8u);
    EXPECT_EQ(definition.GetElement(4)->GetAvailablePointData(), 16u);
}

TEST_F(PointDefinition, TheSizeIsTheSumAndFollowsWhatIsAdded)
{
    Add(SIO::PD_POSITION, 40);
    EXPECT_EQ(definition.GetSizeInBytes(), 12u);
    Add(SIO::PD_INTENSITY, 5);
    Add(SIO::PD_COLOR, 7);
    EXPECT_EQ(definition.GetSizeInBytes(), 18u);
}

TEST_F(PointDefinition, TheKindsAreTheUnionOfTheElements)
{
    Add(SIO::PD_POSITION, 40);
    Add(SIO::PD_COLOR, 7);
    EXPECT_EQ(definition.GetAvailablePointData(), 17u);
}

TEST_F(PointDefinition, ClearDeletesAllElements)
{
    Add(SIO::PD_POSITION, 40);
    EXPECT_EQ(definition.GetSizeInBytes(), 12u);
    definition.Clear();
    EXPECT_EQ(definition.GetSizeInBytes(), 0u);
    EXPECT_EQ(definition.GetCount(), 0u);
    EXPECT_EQ(definition.GetAvailablePointData(), 0u);
}

TEST_F(PointDefinition, ANullElementIsReportedAndNotAdded)
{
    definition.Add(nullptr);
    EXPECT_EQ(definition.GetCount(), 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poPointDefinition", SioTest::s_szDefinition));
}

TEST_F(PointDefinition, TheTypeCodeOfAContainerIsReportedAndZero)
{
    EXPECT_EQ(definition.GetTypeCode(), 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "false", SioTest::s_szDefinition));
}

TEST_F(PointDefinition, DecodingWithAnEmptyContainerIsReported)
{
    Decode(BytesT(64));
    EXPECT_EQ(modifier.calls, 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(
        reports, "m_vecPointDefs.size() > 0 && PD_POSITION == m_vecPointDefs[0]->GetAvailablePointData()",
        SioTest::s_szDefinition));
}

TEST_F(PointDefinition, DecodingWithoutAPositionIsReported)
{
    Add(SIO::PD_INTENSITY, 5);
    Decode(BytesT(64));
    EXPECT_TRUE(SioTest::ReportedOnce(
        reports, "m_vecPointDefs.size() > 0 && PD_POSITION == m_vecPointDefs[0]->GetAvailablePointData()",
        SioTest::s_szDefinition));
}

TEST_F(PointDefinition, ANullSourceIsReportedAndPassesNothing)
{
    Add(SIO::PD_POSITION, 40);
    definition.Decode(modifier, nullptr, matrix);
    EXPECT_EQ(modifier.calls, 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != pszSrcBuffer", SioTest::s_szDefinition));
}

TEST_F(PointDefinition, ANullDestinationIsReported)
{
    Add(SIO::PD_POSITION, 40);
    definition.Encode(getter, nullptr);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != pszDestBuffer", SioTest::s_szDefinition));
}

TEST_F(PointDefinition, OfTwoElementsOfAKindBothTakeBytesAndTheLaterOneWins)
{
    Add(SIO::PD_POSITION, 40);
    Add(SIO::PD_INTENSITY, 5);
    Add(SIO::PD_INTENSITY, 4);
    EXPECT_EQ(definition.GetSizeInBytes(), 16u);
    Decode(Support::Bytes(0.0f, 0.0f, 0.0f, std::uint16_t{7}, std::int16_t{-9}));
    EXPECT_EQ(modifier.calls, 3u);
    EXPECT_EQ(modifier.point.intensity, -9.0);
}

TEST_F(PointDefinition, EqualKindsKeepTheOrderInWhichTheyWereAdded)
{
    // Enough of them for an unstable sort to show.
    for (std::uint32_t i = 0; i < 100; ++i)
        Add(SIO::PD_INTENSITY, i % 3 == 0 ? 4 : 5);
    Add(SIO::PD_POSITION, 40);
    for (std::uint32_t i = 0; i < 100; ++i) {
        EXPECT_EQ(definition.GetElement(i + 1)->GetTypeCode(), i % 3 == 0 ? 4u : 5u) << i;
    }
}

TEST_F(PointDefinition, TheFlagOfTheFactoryChoosesBetweenMappedAndRaw)
{
    matrix.At(0, 3) = 10;
    Add(SIO::PD_POSITION, 40, false);
    Decode(Support::Bytes(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(modifier.point.x, 1.0);
    definition.Clear();
    definition.Add(SIO::PointDefinitionC::CreateElement(SIO::PD_POSITION, 40));
    Decode(Support::Bytes(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(modifier.point.x, 11.0);
}

TEST_F(PointDefinition, TheFactoryReportsAnEncodingThatAKindDoesNotHave)
{
    for (const std::uint32_t kind : {1u, 2u, 4u, 8u, 16u}) {
        reports.Clear();
        EXPECT_EQ(SIO::PointDefinitionC::CreateElement(kind, 99), nullptr);
        EXPECT_TRUE(SioTest::ReportedOnce(reports, "false", SioTest::s_szDefinition));
    }
}

TEST_F(PointDefinition, TheFactoryGivesNothingForAnUnknownKindAndReportsNothing)
{
    for (const std::uint32_t kind : {0u, 3u, 32u, 0x80000000u}) {
        EXPECT_EQ(SIO::PointDefinitionC::CreateElement(kind, 5), nullptr);
    }
    EXPECT_EQ(reports.Reports().size(), 0u);
}

/// Position type and whether it is mapped.
class EveryLayout : public PointDefinition,
                    public testing::WithParamInterface<std::tuple<std::uint32_t, bool>>
{
protected:
    std::mt19937 random{std::get<0>(GetParam())};
    std::vector<double> elements = std::vector<double>(16);

    void RandomMatrix()
    {
        for (std::uint32_t i = 0; i < 16; ++i) {
            elements[i] = std::uniform_real_distribution<double>(-2, 2)(random);
            matrix.At(static_cast<int>(i / 4), static_cast<int>(i % 4)) = elements[i];
        }
    }
};

TEST_P(EveryLayout, DecodesRandomBytesAsTheSecondDecoderDoes)
{
    const auto [position, transform] = GetParam();
    for (const Layout& layout : Support::AllLayouts(position)) {
        definition.Clear();
        AddAll(layout, transform);
        ASSERT_EQ(definition.GetSizeInBytes(), Support::RecordBytes(layout));
        for (int run = 0; run < 100; ++run) {
            RandomMatrix();
            const BytesT bytes = Support::RandomBytes(random, Support::RecordBytes(layout));
            Support::PlainPoint expected = Support::PlainDecode(layout, bytes.data());
            if (transform) Support::PlainTransform(elements, expected);
            modifier.point = {};
            Decode(bytes);
            ASSERT_TRUE(SioTest::IsSamePoint(modifier.point, expected)) << run;
        }
    }
}

TEST_P(EveryLayout, EncodesOddNumbersAsTheSecondEncoderDoes)
{
    const auto [position, transform] = GetParam();
    for (const Layout& layout : Support::AllLayouts(position)) {
        definition.Clear();
        AddAll(layout, transform);
        for (int run = 0; run < 100; ++run) {
            Support::PlainPoint& p = getter.point;
            for (double* number : {&p.x, &p.y, &p.z, &p.intensity, &p.noise, &p.red, &p.green, &p.blue,
                                   &p.fourth, &p.grid0, &p.grid1}) {
                *number = Support::OddNumber(random);
            }
            BytesT bytes(definition.GetSizeInBytes() + 1, 0xA5);
            definition.Encode(getter, reinterpret_cast<char*>(bytes.data()));
            BytesT expected = Support::PlainEncode(layout, p);
            expected.push_back(0xA5); // nothing is written behind the point
            ASSERT_EQ(bytes, expected) << run;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Positions, EveryLayout,
                         testing::Combine(testing::Values(40u, 41u), testing::Values(true, false)));

} // namespace
