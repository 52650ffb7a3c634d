// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Each element alone: which bytes mean which numbers, and which numbers become which bytes.
#include "API_Hdr/GMAT_Algebra.h"
#include "RecordingModifier.h"
#include "ScanTest.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"

#include <limits>
#include <memory>

namespace {

using Support::Bytes;
using Support::BytesT;

constexpr double s_dNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();

class PointElement : public testing::Test
{
protected:
    /// The element that the factory makes for a kind and a type code.
    void Make(std::uint32_t kind, std::uint32_t type, bool transform = true)
    {
        element = SIO::PointDefinitionC::CreateElement(kind, type, transform);
        ASSERT_NE(element, nullptr);
    }

    const Support::PlainPoint& Decode(const BytesT& bytes)
    {
        EXPECT_EQ(bytes.size(), element->GetSizeInBytes());
        element->Decode(modifier, reinterpret_cast<const char*>(bytes.data()), matrix);
        return modifier.point;
    }

    BytesT Encode()
    {
        BytesT bytes(element->GetSizeInBytes());
        element->Encode(getter, reinterpret_cast<char*>(bytes.data()));
        return bytes;
    }

    Support::ReportCapture reports;
    std::unique_ptr<SIO::PointDefinitionI> element;
    GMAT::Matrix4C matrix;
    SioTest::RecordingModifier modifier;
    SioTest::PlainGetter getter;
};

TEST_F(PointElement, FloatPositionsAreWidened)
{
    Make(SIO::PD_POSITION, 40);
    const Support::PlainPoint& point = Decode(Bytes(1.5f, -2.25f, 0.1f));
    EXPECT_EQ(point.x, 1.5);
    EXPECT_EQ(point.y, -2.25);
    EXPECT_EQ(point.z, static_cast<double>(0.1f));
    EXPECT_EQ(modifier.calls, 1u);
}

TEST_F(PointElement, DoublePositionsPassAsTheyAre)
{
    Make(SIO::PD_POSITION, 41);
    const Support::PlainPoint& point = Decode(Bytes(0.1, -1e300, 5e-324));
    EXPECT_EQ(point.x, 0.1);
    EXPECT_EQ(point.y, -1e300);
    EXPECT_EQ(point.z, 5e-324);
}

TEST_F(PointElement, ALastRowOfZeroZeroZeroTwoHalvesFloatPositions)
{
    matrix.At(3, 3) = 2;
    Make(SIO::PD_POSITION, 40);
    const Support::PlainPoint& point = Decode(Bytes(2.0f, 4.0f, 7.0f));
    EXPECT_EQ(point.x, 1.0);
    EXPECT_EQ(point.y, 2.0);
    EXPECT_EQ(point.z, 3.5);
}

TEST_F(PointElement, RawPositionsIgnoreTheMatrix)
{
    matrix.At(0, 3) = 100;
    matrix.At(3, 3) = 2;
    Make(SIO::PD_POSITION, 40, false);
    EXPECT_EQ(Decode(Bytes(1.0f, 2.0f, 3.0f)).x, 1.0);
    Make(SIO::PD_POSITION, 41, false);
    EXPECT_EQ(Decode(Bytes(4.0, 5.0, 6.0)).x, 4.0);
    EXPECT_EQ(modifier.point.z, 6.0);
}

TEST_F(PointElement, TheFullDivideIsDoneAlsoWhenWIsOne)
{
    // Minus zero plus zero is plus zero: a shortcut for the identity would keep the sign.
    Make(SIO::PD_POSITION, 41);
    EXPECT_TRUE(Support::IsSame(Decode(Bytes(-0.0, 1.0, 1.0)).x, 0.0));
    EXPECT_TRUE(std::isnan(Decode(Bytes(s_dInfinity, 1.0, 1.0)).y));
}

TEST_F(PointElement, RawPositionsKeepMinusZeroAndInfinity)
{
    Make(SIO::PD_POSITION, 41, false);
    const Support::PlainPoint& point = Decode(Bytes(-0.0, -s_dInfinity, s_dNaN));
    EXPECT_TRUE(Support::IsSame(point.x, -0.0));
    EXPECT_EQ(point.y, -s_dInfinity);
    EXPECT_TRUE(std::isnan(point.z));
}

TEST_F(PointElement, IntensityType4ReadsFFFFAsMinusOne)
{
    Make(SIO::PD_INTENSITY, 4);
    EXPECT_EQ(Decode({0xFF, 0xFF}).intensity, -1.0);
    EXPECT_EQ(Decode({0x00, 0x80}).intensity, -32768.0);
    EXPECT_EQ(Decode({0xFF, 0x7F}).intensity, 32767.0);
}

TEST_F(PointElement, IntensityType5ReadsFFFFAs65535)
{
    Make(SIO::PD_INTENSITY, 5);
    EXPECT_EQ(Decode({0xFF, 0xFF}).intensity, 65535.0);
    EXPECT_EQ(Decode({0x01, 0x02}).intensity, 513.0);
}

TEST_F(PointElement, IntensityType8IsAFloat)
{
    Make(SIO::PD_INTENSITY, 8);
    EXPECT_EQ(Decode(Bytes(-0.75f)).intensity, -0.75);
    EXPECT_TRUE(std::isnan(Decode({0, 0, 0xC0, 0x7F}).intensity));
    EXPECT_EQ(Decode({0, 0, 0x80, 0xFF}).intensity, -s_dInfinity);
}

TEST_F(PointElement, LevelOfNoiseType2IsAByte)
{
    Make(SIO::PD_LEVEL_OF_NOISE, 2);
    EXPECT_EQ(Decode({0xFF}).noise, 255.0);
}

TEST_F(PointElement, LevelOfNoiseType5HasSixteenBits)
{
    Make(SIO::PD_LEVEL_OF_NOISE, 5);
    EXPECT_EQ(Decode({0xFE, 0xFF}).noise, 65534.0);
}

TEST_F(PointElement, LevelOfNoiseType8IsAFloat)
{
    Make(SIO::PD_LEVEL_OF_NOISE, 8);
    EXPECT_EQ(Decode(Bytes(3.5f)).noise, 3.5);
}

TEST_F(PointElement, GridType21HasTheFirstIndexAtByte0AndTheSecondAtByte2)
{
    Make(SIO::PD_GRID, 21);
    const Support::PlainPoint& point = Decode({0x34, 0x12, 0xFF, 0xFF});
    EXPECT_EQ(point.grid0, 0x1234);
    EXPECT_EQ(point.grid1, 65535.0);
}

TEST_F(PointElement, GridType23HasTheFirstIndexAtByte0AndTheSecondAtByte4)
{
    Make(SIO::PD_GRID, 23);
    const Support::PlainPoint& point = Decode({0x78, 0x56, 0x34, 0x12, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(point.grid0, 0x12345678);
    EXPECT_EQ(point.grid1, 4294967295.0);
}

TEST_F(PointElement, ColourBytesAreRedGreenBlueAndOneIgnored)
{
    Make(SIO::PD_COLOR, 7);
    const Support::PlainPoint& point = Decode({1, 2, 255, 99});
    EXPECT_EQ(point.red, 1);
    EXPECT_EQ(point.green, 2);
    EXPECT_EQ(point.blue, 255);
}

TEST_F(PointElement, PositionsAreEncodedWithoutAnyTransformation)
{
    getter.point.x = 0.1;
    getter.point.y = -2;
    getter.point.z = 1e300;
    Make(SIO::PD_POSITION, 41);
    EXPECT_EQ(Encode(), Bytes(0.1, -2.0, 1e300));
    getter.point.z = 1e30;
    Make(SIO::PD_POSITION, 40);
    EXPECT_EQ(Encode(), Bytes(0.1f, -2.0f, 1e30f));
}

TEST_F(PointElement, ASignedIntensityIsCutThrough32Bits)
{
    Make(SIO::PD_INTENSITY, 4);
    getter.point.intensity = -1.9;
    EXPECT_EQ(Encode(), (BytesT{0xFF, 0xFF}));
    getter.point.intensity = 40000.5; // the low bits of what 32 bits hold
    EXPECT_EQ(Encode(), Bytes(std::uint16_t{40000}));
    getter.point.intensity = 4294967301.0; // does not fit 32 bits
    EXPECT_EQ(Encode(), (BytesT{0, 0}));
}

TEST_F(PointElement, AnUnsignedIntensityIsCutThrough64Bits)
{
    Make(SIO::PD_INTENSITY, 5);
    getter.point.intensity = 4294967301.0; // 2^32 + 5
    EXPECT_EQ(Encode(), (BytesT{5, 0}));
    getter.point.intensity = -1;
    EXPECT_EQ(Encode(), (BytesT{0xFF, 0xFF}));
    getter.point.intensity = s_dNaN;
    EXPECT_EQ(Encode(), (BytesT{0, 0}));
}

TEST_F(PointElement, AFloatIntensityIsRounded)
{
    Make(SIO::PD_INTENSITY, 8);
    getter.point.intensity = 16777217.0;
    EXPECT_EQ(Encode(), Bytes(16777216.0f));
    getter.point.intensity = 0.1;
    EXPECT_EQ(Encode(), Bytes(0.1f));
}

TEST_F(PointElement, LevelsOfNoiseKeepTheirLowBits)
{
    getter.point.noise = 256 + 7.9;
    Make(SIO::PD_LEVEL_OF_NOISE, 2);
    EXPECT_EQ(Encode(), (BytesT{7}));
    Make(SIO::PD_LEVEL_OF_NOISE, 5);
    EXPECT_EQ(Encode(), (BytesT{7, 1}));
    Make(SIO::PD_LEVEL_OF_NOISE, 8);
    EXPECT_EQ(Encode(), Bytes(263.9f));
}

TEST_F(PointElement, GridIndicesAreCutIntoTheirWidth)
{
    getter.point.grid0 = 65536.0 + 3.7;
    getter.point.grid1 = 4294967296.0 + 9;
    Make(SIO::PD_GRID, 21);
    EXPECT_EQ(Encode(), (BytesT{3, 0, 9, 0}));
    Make(SIO::PD_GRID, 23);
    EXPECT_EQ(Encode(), (BytesT{3, 0, 1, 0, 9, 0, 0, 0}));
}

TEST_F(PointElement, EachColourChannelKeepsItsLowEightBits)
{
    getter.point.red = 255.9;
    getter.point.green = 256;
    getter.point.blue = -1;
    getter.point.fourth = 300;
    Make(SIO::PD_COLOR, 7);
    EXPECT_EQ(Encode(), (BytesT{255, 0, 255, 44}));
}

/// What the table of encodings says of each element class.
struct ElementRow
{
    std::uint32_t kind;
    std::uint32_t type;
    std::size_t bytes;
};

void PrintTo(const ElementRow& row, std::ostream* out)
{
    *out << "kind " << row.kind << " type " << row.type;
}

class EveryPointElement : public PointElement, public testing::WithParamInterface<ElementRow>
{
protected:
    void SetUp() override { Make(GetParam().kind, GetParam().type); }
};

TEST_P(EveryPointElement, HasItsKindTypeCodeAndSize)
{
    EXPECT_EQ(element->GetAvailablePointData(), GetParam().kind);
    EXPECT_EQ(element->GetTypeCode(), GetParam().type);
    EXPECT_EQ(element->GetSizeInBytes(), GetParam().bytes);
}

TEST_P(EveryPointElement, ReportsANullSourceAndPassesNothing)
{
    element->Decode(modifier, nullptr, matrix);
    EXPECT_EQ(modifier.calls, 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != pszSrcBuffer", SioTest::s_szDefinition));
}

TEST_P(EveryPointElement, ReportsANullSourceInItsRawVariantToo)
{
    Make(GetParam().kind, GetParam().type, false);
    EXPECT_EQ(element->GetTypeCode(), GetParam().type);
    element->Decode(modifier, nullptr, matrix);
    EXPECT_EQ(modifier.calls, 0u);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != pszSrcBuffer", SioTest::s_szDefinition));
}

TEST_P(EveryPointElement, ReportsANullDestination)
{
    element->Encode(getter, nullptr);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != pszDestBuffer", SioTest::s_szDefinition));
}

INSTANTIATE_TEST_SUITE_P(Table, EveryPointElement,
                         testing::Values(ElementRow{1, 40, 12}, ElementRow{1, 41, 24}, ElementRow{2, 4, 2},
                                         ElementRow{2, 5, 2}, ElementRow{2, 8, 4}, ElementRow{4, 2, 1},
                                         ElementRow{4, 5, 2}, ElementRow{4, 8, 4}, ElementRow{8, 21, 4},
                                         ElementRow{8, 23, 8}, ElementRow{16, 7, 4}));

} // namespace
