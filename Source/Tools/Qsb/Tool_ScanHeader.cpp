// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Entry by entry.
#include "Tools/Qsb/Tool_ScanHeader.h"

#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_QsbBlockHeader.h"

#include <algorithm>
#include <bit>

namespace Tool {

namespace Format = SIO::QsbFormat;

namespace {

std::size_t IndexOf(std::uint32_t uiKind)
{
    return static_cast<std::size_t>(std::countr_zero(uiKind));
}

} // namespace

ScanHeaderC::ScanHeaderC(const SIO::QsbBlockC& block, std::uint64_t ullFileSize)
    : ullDataOffset(block.GetDataOffset()), ullDataBytes(block.GetDataBytes()),
      ullDataPresent(std::min(ullDataBytes, ullFileSize - std::min(ullFileSize, ullDataOffset)))
{
    const SIO::QsbHeaderEntryC* position = block.FindEntry(Format::s_uiTagPosition);
    AddElement(SIO::PD_POSITION, position ? position->GetType() : Format::s_uiTypeDoubleTriple);

    for (const SIO::QsbHeaderEntryC& entry : block) {
        const std::uint32_t uiTag = entry.GetTag();
        if (uiTag > Format::s_uiTagColor) continue;
        bsTags.set(uiTag);
        SIO::TakeHeaderValue(entry, oInfo);
        if (uiTag > Format::s_uiTagPosition) AddElement(SIO::KindOfTag(uiTag), entry.GetType());
    }
    std::stable_sort(vecShown.begin(), vecShown.end(),
                     [](const ScanElementC& a, const ScanElementC& b) { return a.uiKind < b.uiKind; });
    if (FindElement(SIO::PD_POSITION) != nullptr) {
        for (const ScanElementsC& elements : aByKind)
            ullRecordBytes += elements.ullBytes;
    }
    if (block.GetId() == Format::s_uiCountedPointCloudId && HasTag(Format::s_uiTagPointCount)) {
        oStatedPoints = SIO::PointCountOf(*block.FindEntry(Format::s_uiTagPointCount));
    }
}

std::uint64_t ScanHeaderC::GetReadable() const noexcept
{
    return std::min(GetPoints(), GetHeld());
}

const ScanElementC* ScanHeaderC::FindElement(std::uint32_t uiKind) const noexcept
{
    const ScanElementsC& elements = aByKind[IndexOf(uiKind)];
    return elements.ullCount == 0 ? nullptr : &elements.oLast;
}

std::vector<std::pair<ScanElementC, std::uint64_t>> ScanHeaderC::GetCountingElements() const
{
    std::vector<std::pair<ScanElementC, std::uint64_t>> counting;
    std::uint64_t ullEnd = 0;
    for (const ScanElementsC& elements : aByKind) {
        ullEnd += elements.ullBytes;
        if (elements.ullCount != 0) counting.emplace_back(elements.oLast, ullEnd - elements.oLast.nBytes);
    }
    return counting;
}

void ScanHeaderC::AddElement(std::uint32_t uiKind, std::uint32_t uiTypeCode)
{
    if (!SIO::PointDefinitionC::CanCreateElement(uiKind, uiTypeCode)) return;
    const auto definition = SIO::PointDefinitionC::CreateElement(uiKind, uiTypeCode, false);
    const ScanElementC element{uiKind, uiTypeCode, definition->GetSizeInBytes()};
    ScanElementsC& elements = aByKind[IndexOf(uiKind)];
    ++elements.ullCount;
    elements.ullBytes += element.nBytes;
    elements.oLast = element;
    if (++ullElements <= s_nShown) vecShown.push_back(element);
}

} // namespace Tool
