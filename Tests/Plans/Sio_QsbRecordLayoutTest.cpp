// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which point definitions a plan is made of, and which are left to the virtual calls.
#include "Sio/Sio_QsbRecordLayout.h"
#include "Plans/PlanCases.h"
#include "Sio/Sio_QsbFileFormat.h"

namespace {

using namespace PlanTest;
using namespace SIO;
namespace F = QsbFormat;

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

/// A definition that does things its own way, with elements that the kernels know.
class StrangeDefinitionC final : public PointDefinitionContainerI
{
public:
    void Encode(const QsbPointGetterI&, char*) const override {}
    void Decode(QsbPointModifierI&, const char*, const GMAT::Matrix4C&) const override {}
    std::size_t GetSizeInBytes() const override { return m_oDefinition.GetSizeInBytes(); }
    std::uint32_t GetAvailablePointData() const override { return m_oDefinition.GetAvailablePointData(); }
    std::uint32_t GetTypeCode() const override { return m_oDefinition.GetTypeCode(); }
    void Add(std::unique_ptr<PointDefinitionI> element) override { m_oDefinition.Add(std::move(element)); }
    void Clear() override { m_oDefinition.Clear(); }
    std::size_t GetCount() const override { return m_oDefinition.GetCount(); }
    const PointDefinitionI* GetElement(std::size_t i) const override { return m_oDefinition.GetElement(i); }

private:
    PointDefinitionC m_oDefinition;
};

TEST(QsbRecordLayout, LeavesADefinitionOfAnUnknownClassToTheVirtualCalls)
{
    StrangeDefinitionC definition;
    definition.Add(PointDefinitionC::CreateElement(PD_POSITION, F::s_uiTypeFloatTriple));
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
