// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Encoding a batch stores the bytes that the virtual calls store.
#include "Sio/Sio_QsbEncodePlan.h"
#include "Plans/PlanCases.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <cstring>

namespace {

using namespace PlanTest;
using namespace SIO;
namespace F = QsbFormat;

void ExpectPlanEqualsVirtualCalls(const LayoutT& layout, std::mt19937& random)
{
    constexpr std::size_t nMostPoints = 70;
    PointDefinitionC definition;
    layout.Define(definition);
    const QsbEncodePlanC plan(definition);
    ASSERT_TRUE(plan.IsUsable()) << layout.Name();
    const std::vector<QsbPointC> records = RandomRecords(nMostPoints, random);
    const std::vector<char> expected = EncodeVirtually(definition, records.data(), nMostPoints);
    const std::vector<char> before(expected.size(), 'b');

    for (const QsbInstructionSetT eSet : PlanSets()) {
        for (std::size_t nPoints = 0; nPoints <= nMostPoints; ++nPoints) {
            // Blocks of exactly the size that is needed, and addresses of all sorts.
            const std::size_t nBytes = nPoints * definition.GetSizeInBytes();
            const ExactBytesC target(before.data(), nBytes, nPoints % 17);
            const ExactBytesC source(records.data(), nPoints * sizeof(QsbPointC), nPoints % 4 * 8);
            plan.Encode(source.Records(), nPoints, target.Get(), eSet);
            ASSERT_TRUE(nBytes == 0 || std::memcmp(expected.data(), target.Get(), nBytes) == 0)
                << layout.Name() << ", " << nPoints << " points, set " << static_cast<int>(eSet);
            ASSERT_TRUE(target.IsAloneTouched())
                << layout.Name() << ", " << nPoints << " points, set " << static_cast<int>(eSet);
        }
    }
}

TEST(QsbEncodePlan, StoresEveryCombinationAsTheVirtualCallsDo)
{
    std::mt19937 random(11);
    for (const std::uint32_t uiPositionType : {F::s_uiTypeFloatTriple, F::s_uiTypeDoubleTriple}) {
        for (const bool bRaw : {false, true}) {
            for (const LayoutT& layout : AllCombinations(uiPositionType, bRaw)) {
                ExpectPlanEqualsVirtualCalls(layout, random);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(QsbEncodePlan, StoresAllElementsOfAKind)
{
    std::mt19937 random(12);
    for (const LayoutT& layout : LayoutsWithDuplicates()) {
        ExpectPlanEqualsVirtualCalls(layout, random);
        if (HasFatalFailure()) return;
    }
}

TEST(QsbEncodePlan, StoresLongBatchesTileByTile)
{
    constexpr std::size_t nPoints = 1000; // more than a tile, and no multiple of one
    std::mt19937 random(13);
    PointDefinitionC definition;
    LayoutT{{{PD_POSITION, F::s_uiTypeFloatTriple},
             {PD_INTENSITY, F::s_uiTypeFloat},
             {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt8},
             {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt16},
             {PD_COLOR, F::s_uiTypeColor}}}
        .Define(definition);
    const std::vector<QsbPointC> records = RandomRecords(nPoints, random);
    for (const QsbInstructionSetT eSet : PlanSets()) {
        std::vector<char> actual(nPoints * definition.GetSizeInBytes());
        QsbEncodePlanC(definition).Encode(records.data(), nPoints, actual.data(), eSet);
        EXPECT_EQ(actual, EncodeVirtually(definition, records.data(), nPoints)) << static_cast<int>(eSet);
    }
}

} // namespace
