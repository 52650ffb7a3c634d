// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Entry by entry.
#include "Tools/Qsb/Tool_ScanHeader.h"

#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_QsbBlockHeader.h"

#include <algorithm>

namespace Tool {

namespace Format = SIO::QsbFormat;

namespace {

void AddElement(std::vector<ScanElementC>& elements, std::uint32_t uiKind, std::uint32_t uiTypeCode)
{
    if (!SIO::PointDefinitionC::CanCreateElement(uiKind, uiTypeCode)) return;
    const auto element = SIO::PointDefinitionC::CreateElement(uiKind, uiTypeCode, false);
    elements.push_back({uiKind, uiTypeCode, element->GetSizeInBytes()});
}

} // namespace

ScanHeaderC::ScanHeaderC(const SIO::QsbBlockC& block, std::uint64_t ullFileSize)
    : ullDataOffset(block.GetDataOffset()), ullDataBytes(block.GetDataBytes()),
      ullDataPresent(std::min(ullDataBytes, ullFileSize - std::min(ullFileSize, ullDataOffset)))
{
    const SIO::QsbHeaderEntryC* position = block.FindEntry(Format::s_uiTagPosition);
    AddElement(vecElements, SIO::PD_POSITION, position ? position->GetType() : Format::s_uiTypeDoubleTriple);
    const bool bPositionKnown = !vecElements.empty();

    for (const SIO::QsbHeaderEntryC& entry : block) {
        const std::uint32_t uiTag = entry.GetTag();
        if (uiTag > Format::s_uiTagColor) continue;
        bsTags.set(uiTag);
        SIO::TakeHeaderValue(entry, oInfo);
        if (uiTag > Format::s_uiTagPosition) AddElement(vecElements, SIO::KindOfTag(uiTag), entry.GetType());
    }
    std::stable_sort(vecElements.begin(), vecElements.end(),
                     [](const ScanElementC& a, const ScanElementC& b) { return a.uiKind < b.uiKind; });
    if (bPositionKnown) {
        for (const ScanElementC& element : vecElements)
            ullRecordBytes += element.nBytes;
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
    const auto found = std::find_if(vecElements.rbegin(), vecElements.rend(),
                                    [&](const ScanElementC& element) { return element.uiKind == uiKind; });
    return found == vecElements.rend() ? nullptr : &*found;
}

void ScanHeaderC::Define(SIO::PointDefinitionC& definition) const
{
    for (const ScanElementC& element : vecElements) {
        definition.Add(SIO::PointDefinitionC::CreateElement(element.uiKind, element.uiTypeCode, false));
    }
}

} // namespace Tool
