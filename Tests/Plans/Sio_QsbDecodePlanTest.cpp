// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding a batch gives what the virtual calls give, whatever the elements, the numbers, the matrix, the
// count and where the bytes lie.
#include "Sio/Sio_QsbDecodePlan.h"
#include "Plans/PlanCases.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>
#include <cstring>

namespace {

using namespace PlanTest;
using namespace SIO;
namespace F = QsbFormat;

constexpr std::size_t s_nMostPoints = 70;

void ExpectPlanEqualsVirtualCalls(const LayoutT& layout, const GMAT::Matrix4C& matrix, std::mt19937& random)
{
    PointDefinitionC definition;
    layout.Define(definition);
    const QsbDecodePlanC plan(definition);
    ASSERT_TRUE(plan.IsUsable()) << layout.Name();
    const std::size_t nRecordBytes = definition.GetSizeInBytes();
    const std::vector<char> stored = RandomStoredPoints(definition, s_nMostPoints, random);
    const std::vector<QsbPointC> before = RandomRecords(s_nMostPoints, random);
    std::vector<QsbPointC> expected = before;
    DecodeVirtually(definition, stored.data(), s_nMostPoints, matrix, expected.data());

    for (const QsbInstructionSetT eSet : PlanSets()) {
        for (std::size_t nPoints = 0; nPoints <= s_nMostPoints; ++nPoints) {
            const ExactBytesC source(stored.data(), nPoints * nRecordBytes, nPoints % 17);
            const ExactBytesC target(before.data(), nPoints * sizeof(QsbPointC), nPoints % 4 * 8);
            plan.Decode(source.Get(), nPoints, matrix, target.Records(), eSet);
            ASSERT_TRUE(SameBytes(expected.data(), target.Records(), nPoints))
                << layout.Name() << ", set " << static_cast<int>(eSet);
            ASSERT_TRUE(target.IsAloneTouched())
                << layout.Name() << ", " << nPoints << " points, set " << static_cast<int>(eSet);
        }
    }
}

void ExpectAllCombinationsEqual(std::uint32_t uiPositionType, bool bRaw, unsigned int uiSeed)
{
    std::mt19937 random(uiSeed);
    for (const LayoutT& layout : AllCombinations(uiPositionType, bRaw)) {
        for (const GMAT::Matrix4C& matrix : Matrices()) {
            ExpectPlanEqualsVirtualCalls(layout, matrix, random);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(QsbDecodePlan, DecodesFloatPositionsAsTheVirtualCallsDo)
{
    ExpectAllCombinationsEqual(F::s_uiTypeFloatTriple, false, 1);
}

TEST(QsbDecodePlan, DecodesDoublePositionsAsTheVirtualCallsDo)
{
    ExpectAllCombinationsEqual(F::s_uiTypeDoubleTriple, false, 2);
}

TEST(QsbDecodePlan, DecodesRawFloatPositionsAsTheVirtualCallsDo)
{
    ExpectAllCombinationsEqual(F::s_uiTypeFloatTriple, true, 3);
}

TEST(QsbDecodePlan, DecodesRawDoublePositionsAsTheVirtualCallsDo)
{
    ExpectAllCombinationsEqual(F::s_uiTypeDoubleTriple, true, 4);
}

TEST(QsbDecodePlan, OfSeveralElementsOfAKindTheLastOneWins)
{
    std::mt19937 random(6);
    for (const LayoutT& layout : LayoutsWithDuplicates()) {
        for (const GMAT::Matrix4C& matrix : Matrices()) {
            ExpectPlanEqualsVirtualCalls(layout, matrix, random);
            if (HasFatalFailure()) return;
        }
    }
}

/// Bytes of a record that decoding these elements may write.
std::vector<bool> WrittenBytes(const LayoutT& layout)
{
    std::vector<bool> written(sizeof(QsbPointC), false);
    const auto mark = [&](std::size_t nOffset, std::size_t nBytes) {
        std::fill_n(written.begin() + static_cast<std::ptrdiff_t>(nOffset), nBytes, true);
    };
    mark(offsetof(QsbPointC, x), 24);
    for (const ElementT& element : layout.elements) {
        if (element.uiKind == PD_INTENSITY) mark(offsetof(QsbPointC, intensity), 2);
        if (element.uiKind == PD_LEVEL_OF_NOISE) mark(offsetof(QsbPointC, levelOfNoise), 2);
        if (element.uiKind == PD_COLOR) mark(offsetof(QsbPointC, red), 3);
        if (element.uiKind == PD_GRID) mark(offsetof(QsbPointC, gridIndex0), 8);
    }
    return written;
}

TEST(QsbDecodePlan, WritesNoByteOfAbsentElementsOrOfAlignment)
{
    std::mt19937 random(8);
    const std::string strBefore(s_nMostPoints * sizeof(QsbPointC), '\xA5');
    for (const std::uint32_t uiPositionType : {F::s_uiTypeFloatTriple, F::s_uiTypeDoubleTriple}) {
        for (const LayoutT& layout : AllCombinations(uiPositionType, false)) {
            PointDefinitionC definition;
            layout.Define(definition);
            const std::vector<char> stored = RandomStoredPoints(definition, s_nMostPoints, random);
            const std::vector<bool> written = WrittenBytes(layout);
            for (const QsbInstructionSetT eSet : PlanSets()) {
                const ExactBytesC target(strBefore.data(), strBefore.size(), 8);
                QsbDecodePlanC(definition)
                    .Decode(stored.data(), s_nMostPoints, Matrices()[1], target.Records(), eSet);
                for (std::size_t i = 0; i < strBefore.size(); ++i) {
                    ASSERT_TRUE(written[i % sizeof(QsbPointC)] || target.Get()[i] == strBefore[i])
                        << layout.Name() << ", byte " << i << ", set " << static_cast<int>(eSet);
                }
            }
        }
    }
}

TEST(QsbDecodePlan, DecodesLongBatchesTileByTile)
{
    constexpr std::size_t nPoints = 1000; // more than a tile, and no multiple of one
    std::mt19937 random(7);
    const LayoutT layout{{{PD_POSITION, F::s_uiTypeFloatTriple},
                          {PD_INTENSITY, F::s_uiTypeFloat},
                          {PD_INTENSITY, F::s_uiTypeUInt16},
                          {PD_LEVEL_OF_NOISE, F::s_uiTypeFloat},
                          {PD_COLOR, F::s_uiTypeColor}}};
    PointDefinitionC definition;
    layout.Define(definition);
    const std::vector<char> stored = RandomStoredPoints(definition, nPoints, random);
    const std::vector<QsbPointC> before = RandomRecords(nPoints, random);
    std::vector<QsbPointC> expected = before;
    DecodeVirtually(definition, stored.data(), nPoints, Matrices()[1], expected.data());
    for (const QsbInstructionSetT eSet : PlanSets()) {
        std::vector<QsbPointC> actual = before;
        QsbDecodePlanC(definition).Decode(stored.data(), nPoints, Matrices()[1], actual.data(), eSet);
        EXPECT_TRUE(SameBytes(expected.data(), actual.data(), nPoints)) << static_cast<int>(eSet);
    }
}

} // namespace
