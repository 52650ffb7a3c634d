// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a value becomes in another type, and what is counted.
#include "Tools/Qsb/Tool_ValueConversion.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using Tool::NumberTypeT;
using Tool::OutcomeT;
using Tool::ValueConversionC;
using ValuesT = std::vector<double>;

ValuesT Converted(ValueConversionC& conversion, ValuesT values)
{
    conversion.Convert(values);
    return values;
}

TEST(ValueConversion, ValuesThatTheNewTypeHoldsAreKept)
{
    ValueConversionC conversion(NumberTypeT::UInt16, NumberTypeT::Float);
    EXPECT_EQ(Converted(conversion, {0, 65535}), (ValuesT{0, 65535}));
    EXPECT_EQ(conversion.GetReportRow("a").eOutcome, OutcomeT::Kept);
    EXPECT_FALSE(conversion.GetReportRow("a").bLoss);
}

TEST(ValueConversion, WholeNumbersAreRoundedAndClampedAndCounted)
{
    ValueConversionC conversion(NumberTypeT::Float, NumberTypeT::UInt16);
    EXPECT_EQ(Converted(conversion, {1, 1.5, 2.5, 1.25, -3, 70000, INFINITY}),
              (ValuesT{1, 2, 2, 1, 0, 65535, 65535}));
    const Tool::ReportRowC row = conversion.GetReportRow("a");
    EXPECT_EQ(row.eOutcome, OutcomeT::Changed);
    EXPECT_EQ(row.ullChanged, 6u);
    EXPECT_EQ(row.dLargestChange, INFINITY);
    EXPECT_TRUE(row.bLoss);
}

TEST(ValueConversion, NanIsZeroWhereThereIsNoneAndCounted)
{
    ValueConversionC conversion(NumberTypeT::Float, NumberTypeT::UInt8);
    EXPECT_EQ(Converted(conversion, {std::nan("")}), (ValuesT{0}));
    EXPECT_EQ(conversion.GetChanged(), 1u);
    EXPECT_EQ(conversion.GetReportRow("a").strNote, "1 are not finite");
}

TEST(ValueConversion, NanStaysNanAndIsNoChange)
{
    ValueConversionC conversion(NumberTypeT::Double, NumberTypeT::Float);
    EXPECT_TRUE(std::isnan(Converted(conversion, {std::nan("")})[0]));
    EXPECT_EQ(conversion.GetChanged(), 0u);
}

TEST(ValueConversion, LostPrecisionIsCountedWithTheLargestChange)
{
    ValueConversionC conversion(NumberTypeT::Double, NumberTypeT::Float);
    const double dStored = static_cast<double>(0.1f);
    EXPECT_EQ(Converted(conversion, {0.1, 0.5}), (ValuesT{dStored, 0.5}));
    EXPECT_EQ(conversion.GetChanged(), 1u);
    EXPECT_EQ(conversion.GetReportRow("a").dLargestChange, dStored - 0.1);
}

TEST(ValueConversion, ScalingThatCanBeUndoneIsNoLoss)
{
    ValueConversionC wide(NumberTypeT::UInt16, NumberTypeT::UInt8, 255.0, 65535.0);
    EXPECT_EQ(Converted(wide, {0, 257, 25700, 65535}), (ValuesT{0, 1, 100, 255}));
    EXPECT_EQ(wide.GetReportRow("a").eOutcome, OutcomeT::Scaled);
    EXPECT_FALSE(wide.GetReportRow("a").bLoss);

    ValueConversionC fraction(NumberTypeT::Float, NumberTypeT::UInt8, 255.0, 1.0);
    ValuesT fractions, bytes;
    for (int i = 0; i < 256; ++i) {
        fractions.push_back(static_cast<double>(static_cast<float>(i / 255.0)));
        bytes.push_back(i);
    }
    EXPECT_EQ(Converted(fraction, fractions), bytes);
    EXPECT_EQ(fraction.GetChanged(), 0u);
}

TEST(ValueConversion, ScaledValuesBetweenTheStepsAreCounted)
{
    ValueConversionC conversion(NumberTypeT::UInt16, NumberTypeT::UInt8, 255.0, 65535.0);
    EXPECT_EQ(Converted(conversion, {258, 514, 385, 386}), (ValuesT{1, 2, 1, 2}));
    EXPECT_EQ(conversion.GetChanged(), 3u);
    EXPECT_EQ(conversion.GetReportRow("a").dLargestChange, 128.0);
    EXPECT_EQ(conversion.GetReportRow("a").dFactor, 255.0 / 65535.0);
}

} // namespace
