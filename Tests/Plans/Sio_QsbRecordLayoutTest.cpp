// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which point definitions a plan is made of, and which are left to the virtual calls.
#include "Sio/Sio_QsbRecordLayout.h"
#include "Plans/PlanCases.h"
#include "Sio/SIO_QsbPointDefElements.h"
#include "Sio/Sio_QsbFileFormat.h"

namespace {

using namespace PlanTest;
using namespace SIO;
namespace F = QsbFormat;

/// An element that the kernels have never heard of, in the clothes of one that they know.
class StrangeIntensityC final : public PointDefElementT<PD_INTENSITY, 2>
{
public:
    void Encode(const QsbPointGetterI&, char*) const override {}
    void Decode(QsbPointModifierI& modifier, const char*, const GMAT::Matrix4C&) const override
    {
        modifier.SetIntensity(42.0);
    }
    std::uint32_t GetTypeCode() const override { return F::s_uiTypeUInt16; }
};

TEST(QsbRecordLayout, CountsTheBytesOfAStoredPoint)
{
    PointDefinitionC definition;
    LayoutT{{{PD_POSITION, F::s_uiTypeFloatTriple},
             {PD_INTENSITY, F::s_uiTypeUInt16},
             {PD_COLOR, F::s_uiTypeColor}}}
        .Define(definition);
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 18u);
}

TEST(QsbRecordLayout, LeavesADefinitionWithoutPositionToTheVirtualCalls)
{
    PointDefinitionC definition;
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 0u);
    LayoutT{{{PD_INTENSITY, F::s_uiTypeUInt16}}}.Define(definition);
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 0u);
}

TEST(QsbRecordLayout, LeavesTwoPositionsToTheVirtualCalls)
{
    PointDefinitionC definition;
    LayoutT{{{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_POSITION, F::s_uiTypeDoubleTriple}}}.Define(
        definition);
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 0u);
}

TEST(QsbRecordLayout, LeavesElementsOfUnknownClassesToTheVirtualCalls)
{
    PointDefinitionC definition;
    LayoutT{{{PD_POSITION, F::s_uiTypeFloatTriple}}}.Define(definition);
    definition.Add(std::make_unique<StrangeIntensityC>());
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 0u);
}

TEST(QsbRecordLayout, TakesThirtyTwoElementsAndLeavesMoreToTheVirtualCalls)
{
    PointDefinitionC definition;
    LayoutT{{{PD_POSITION, F::s_uiTypeFloatTriple}}}.Define(definition);
    while (definition.GetCount() < 32)
        definition.Add(PointDefinitionC::CreateElement(PD_COLOR, F::s_uiTypeColor));
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 12u + 31 * 4);
    definition.Add(PointDefinitionC::CreateElement(PD_COLOR, F::s_uiTypeColor));
    EXPECT_EQ(MakeRecordLayout(definition).tRecordBytes, 0u);
}

} // namespace
