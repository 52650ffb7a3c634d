// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Numbers as text, both ways.
#include "Tools/Qsb/Tool_Numerals.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Tool::NumberTypeT;
using Tool::ParseNumber;

std::string Text(double dValue, NumberTypeT eType)
{
    std::string text;
    Tool::AppendNumber(text, dValue, eType);
    return text;
}

TEST(Numerals, TextIsTheShortestThatReadsBackAsTheSameNumber)
{
    EXPECT_EQ(Text(0.1, NumberTypeT::Double), "0.1");
    EXPECT_EQ(Text(static_cast<double>(0.1f), NumberTypeT::Float), "0.1");
    EXPECT_EQ(Text(static_cast<double>(0.1f), NumberTypeT::Double), "0.10000000149011612");
    EXPECT_EQ(Text(-0.0, NumberTypeT::Double), "-0");
    EXPECT_EQ(Text(1e300, NumberTypeT::Double), "1e+300");
    EXPECT_EQ(Text(5e-324, NumberTypeT::Double), "5e-324");
}

TEST(Numerals, IntegersAreDigits)
{
    EXPECT_EQ(Text(4294967295.0, NumberTypeT::UInt32), "4294967295");
    EXPECT_EQ(Text(-128, NumberTypeT::Int8), "-128");
}

TEST(Numerals, WhatIsNotFiniteHasANameWithoutASignForNan)
{
    EXPECT_EQ(Text(std::nan(""), NumberTypeT::Double), "nan");
    EXPECT_EQ(Text(-std::nan(""), NumberTypeT::Float), "nan");
    EXPECT_EQ(Text(-INFINITY, NumberTypeT::Float), "-inf");
}

TEST(Numerals, ANumberReadsAsItsTypeHoldsIt)
{
    EXPECT_EQ(ParseNumber("0.1", NumberTypeT::Float), static_cast<double>(0.1f));
    EXPECT_EQ(ParseNumber("0.1", NumberTypeT::Double), 0.1);
    EXPECT_EQ(ParseNumber("+12.0", NumberTypeT::UInt8), 12.0);
    EXPECT_EQ(ParseNumber("1e2", NumberTypeT::UInt8), 100.0);
    EXPECT_EQ(ParseNumber("-0", NumberTypeT::UInt8), 0.0);
}

TEST(Numerals, WhatTheTypeCannotHoldIsNoNumber)
{
    for (const char* text : {"", "+", "-", "+-1", "++1", "1,5", "1 ", " 1", "0x10", "12a", "nan", "inf", "-1",
                             "256", "0.5", "1e99"}) {
        EXPECT_EQ(ParseNumber(text, NumberTypeT::UInt8), std::nullopt) << text;
    }
    EXPECT_EQ(ParseNumber("1e999", NumberTypeT::Double), std::nullopt);
    EXPECT_EQ(ParseNumber("1e39", NumberTypeT::Float), std::nullopt);
}

} // namespace
