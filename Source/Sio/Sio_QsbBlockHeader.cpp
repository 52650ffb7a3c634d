// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tag by tag.
#include "Sio/Sio_QsbBlockHeader.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_QsbStrategy.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\Sio_Qsb)";

} // namespace

namespace SIO {

namespace {

using namespace QsbFormat;

/// Elements of one block that are reported one by one when they cannot be made.
constexpr unsigned s_nReportedElements = 4;

bool TagOfKind(std::uint32_t kind, std::uint32_t& tag)
{
    if (!std::has_single_bit(kind) || kind > PD_COLOR) return false;
    tag = s_uiTagPosition + static_cast<std::uint32_t>(std::countr_zero(kind));
    return true;
}

/// Collects the elements of a block and reports those that cannot be made.
class ElementCollectorC
{
public:
    explicit ElementCollectorC(bool bApplyTransformation) : m_bApplyTransformation(bApplyTransformation) {}

    /// False when there would be more elements than a point may have. Those that cannot be made do not count.
    bool Add(std::uint32_t kind, std::uint32_t typeCode)
    {
        if (!PointDefinitionC::CanCreateElement(kind, typeCode)) {
            if (++m_nFailed > s_nReportedElements) return true;
        } else if (m_vecElements.size() >= s_nMaxPointElements) {
            return false;
        }
        auto pPointDef = PointDefinitionC::CreateElement(kind, typeCode, m_bApplyTransformation);
        BSS_ASSERT(0 != pPointDef);
        if (pPointDef != nullptr) m_vecElements.push_back(std::move(pPointDef));
        return true;
    }

    /// Hands the elements over sorted, since a container takes elements in order at no cost.
    void MoveTo(PointDefinitionC& definition)
    {
        if (m_nFailed > s_nReportedElements) BSS_ASSERT(!"More point elements of this block are unknown");
        std::stable_sort(m_vecElements.begin(), m_vecElements.end(), [](const auto& a, const auto& b) {
            return a->GetAvailablePointData() < b->GetAvailablePointData();
        });
        for (auto& element : m_vecElements)
            definition.Add(std::move(element));
        m_vecElements.clear();
    }

private:
    bool m_bApplyTransformation;
    std::uint64_t m_nFailed = 0;
    std::vector<std::unique_ptr<PointDefinitionI>> m_vecElements;
};

/// The number of points of a block whose data area has room for `ullRoom`. False when it claims more.
bool CountPoints(const QsbBlockC& block, std::uint64_t ullRoom, std::uint64_t& ullPoints)
{
    ullPoints = ullRoom;
    if (block.GetId() != s_uiCountedPointCloudId) return true;
    const QsbHeaderEntryC* entry = block.FindEntry(s_uiTagPointCount);
    if (entry == nullptr) return true;
    ullPoints = PointCountOf(*entry);
    return ullPoints <= ullRoom;
}

} // namespace

std::uint32_t KindOfTag(std::uint32_t tag)
{
    // Each kind is the double of the one before.
    return std::uint32_t{PD_POSITION} << (tag - s_uiTagPosition);
}

void TakeHeaderValue(const QsbHeaderEntryC& entry, QsbScanInfoC& info)
{
    const std::uint32_t tag = entry.GetTag();
    if (tag >= s_uiTagBoxMinX && tag < s_uiTagBoxMaxX) {
        info.oBoundingBox.adMin[tag - s_uiTagBoxMinX] = entry.AsDouble();
    } else if (tag >= s_uiTagBoxMaxX && tag < s_uiTagMatrix) {
        info.oBoundingBox.adMax[tag - s_uiTagBoxMaxX] = entry.AsDouble();
    } else if (tag >= s_uiTagMatrix && tag <= s_uiTagMatrixLast) {
        const int i = static_cast<int>(tag - s_uiTagMatrix);
        info.oTransformation.At(i / 4, i % 4) = entry.AsDouble();
    } else if (tag == s_uiTagGrid0 || tag == s_uiTagGrid1) {
        info.auiGridSize[tag - s_uiTagGrid0] = entry.AsUInt32();
    } else if (tag == s_uiTagInstrumentHeight) {
        info.dInstrumentHeight = entry.AsDouble();
    }
}

std::uint64_t PointCountOf(const QsbHeaderEntryC& entry)
{
    switch (entry.GetType()) {
    case s_uiTypeByte:
        return entry.AsByte();
    case s_uiType32Bit:
    case s_uiTypeUInt32:
        return entry.AsUInt32();
    case s_uiType64Bit:
        return entry.AsUInt64();
    default:
        return 0;
    }
}

bool InterpretBlockHeader(const QsbBlockC& block, bool bApplyTransformation, QsbStrategyDataC& data)
{
    data.m_oInfo = QsbScanInfoC{};
    data.m_oPointDefinition.Clear();

    std::uint32_t uiPositionType = s_uiTypeDoubleTriple;
    if (const QsbHeaderEntryC* position = block.FindEntry(s_uiTagPosition))
        uiPositionType = position->GetType();
    if (!PointDefinitionC::CanCreateElement(PD_POSITION, uiPositionType)) return false;

    ElementCollectorC collector(bApplyTransformation);
    (void)collector.Add(PD_POSITION, uiPositionType); // the first
    for (const QsbHeaderEntryC& entry : block) {
        const std::uint32_t tag = entry.GetTag();
        if (tag > s_uiTagColor) return false;
        if (tag > s_uiTagPosition) {
            if (!collector.Add(KindOfTag(tag), entry.GetType())) return false;
        } else {
            TakeHeaderValue(entry, data.m_oInfo);
        }
    }
    collector.MoveTo(data.m_oPointDefinition);

    data.m_oDecodePlan = QsbDecodePlanC(data.m_oPointDefinition);
    data.m_oEncodePlan = QsbEncodePlanC(data.m_oPointDefinition);
    data.m_ullPosition = 0;
    data.m_ullDataBytes = block.GetDataBytes();
    return CountPoints(block, data.m_ullDataBytes / data.m_oPointDefinition.GetSizeInBytes(),
                       data.m_ullNumberOfPoints);
}

bool AddBlockHeader(QsbBlockC& block, const QsbScanInfoC& info,
                    const PointDefinitionContainerI* poPointDefinitionContainer)
{
    const auto addDouble = [&](std::uint32_t tag, double value) {
        return block.AddEntry(QsbHeaderEntryC::FromDouble(tag, value));
    };
    const auto addUInt32 = [&](std::uint32_t type, std::uint32_t tag, std::uint32_t value) {
        return block.AddEntry(QsbHeaderEntryC::FromUInt32(type, tag, value));
    };

    for (std::uint32_t i = 0; i < 3; ++i) {
        if (!addDouble(s_uiTagBoxMinX + i, info.oBoundingBox.adMin[i])) return false;
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
        if (!addDouble(s_uiTagBoxMaxX + i, info.oBoundingBox.adMax[i])) return false;
    }
    for (int i = 0; i < 16; ++i) {
        const auto tag = s_uiTagMatrix + static_cast<std::uint32_t>(i);
        if (!addDouble(tag, info.oTransformation.At(i / 4, i % 4))) return false;
    }
    for (std::uint32_t i = 0; i < 2; ++i) {
        if (!addUInt32(s_uiTypeUInt32, s_uiTagGrid0 + i, info.auiGridSize[i])) return false;
    }
    if (!addDouble(s_uiTagInstrumentHeight, info.dInstrumentHeight)) return false;

    BSS_ASSERT(0 != poPointDefinitionContainer);
    if (poPointDefinitionContainer == nullptr) return false;
    for (std::size_t i = 0; i < poPointDefinitionContainer->GetCount(); ++i) {
        const PointDefinitionI* poPointDefElement = poPointDefinitionContainer->GetElement(i);
        BSS_ASSERT(0 != poPointDefElement);
        std::uint32_t tag = 0;
        if (poPointDefElement == nullptr || !TagOfKind(poPointDefElement->GetAvailablePointData(), tag))
            return false;
        const auto uiBytes = static_cast<std::uint32_t>(poPointDefElement->GetSizeInBytes());
        if (!addUInt32(poPointDefElement->GetTypeCode(), tag, uiBytes)) return false;
    }
    return true;
}

void ChangeBoundingBox(QsbBlockC& block, const QsbBoundingBoxC& box)
{
    for (std::uint32_t i = 0; i < 3; ++i) {
        if (QsbHeaderEntryC* entry = block.ChangeEntry(s_uiTagBoxMinX + i)) entry->SetDouble(box.adMin[i]);
        if (QsbHeaderEntryC* entry = block.ChangeEntry(s_uiTagBoxMaxX + i)) entry->SetDouble(box.adMax[i]);
    }
}

bool CanChangePointCount(const QsbBlockC& block, std::uint64_t ullPoints)
{
    if (block.GetId() != s_uiCountedPointCloudId) return true;
    const QsbHeaderEntryC* entry = block.FindEntry(s_uiTagPointCount);
    if (entry == nullptr) return true;
    switch (entry->GetType()) {
    case s_uiTypeByte:
        return ullPoints <= std::numeric_limits<std::uint8_t>::max();
    case s_uiType32Bit:
    case s_uiTypeUInt32:
        return ullPoints <= std::numeric_limits<std::uint32_t>::max();
    case s_uiType64Bit:
        return true;
    default:
        return false; // Read as no points at all, whatever is written there.
    }
}

void ChangePointCount(QsbBlockC& block, std::uint64_t ullPoints)
{
    if (block.GetId() != s_uiCountedPointCloudId) return;
    const QsbHeaderEntryC* found = block.FindEntry(s_uiTagPointCount);
    if (found == nullptr || PointCountOf(*found) >= ullPoints) return;
    QsbHeaderEntryC* entry = block.ChangeEntry(s_uiTagPointCount);
    switch (entry->GetType()) {
    case s_uiTypeByte:
        entry->SetByte(static_cast<std::uint8_t>(ullPoints));
        break;
    case s_uiType32Bit:
    case s_uiTypeUInt32:
        entry->SetUInt32(static_cast<std::uint32_t>(ullPoints));
        break;
    default:
        entry->SetUInt64(ullPoints);
        break;
    }
}

} // namespace SIO
