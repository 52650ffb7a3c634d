// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// From elements to moves and loops.
#include "Sio/Sio_QsbRecordLayout.h"

#include "Sio/SIO_QsbPointDefElements.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>

namespace SIO {

namespace {

constexpr std::uint8_t s_ucZero = 0x80;
constexpr std::uint8_t s_ucWritten = 0xFF;

bool IsFloat(const PointDefinitionI& element)
{
    return element.GetTypeCode() == QsbFormat::s_uiTypeFloat;
}

/// More elements than this are left to the virtual path: no real scan has them, and a hostile header has
/// millions.
constexpr std::size_t s_nMaxElements = 32;

std::size_t CountKind(const PointDefinitionContainerI& definition, std::uint32_t uiKind)
{
    std::size_t nCount = 0;
    for (std::size_t i = 0; i < definition.GetCount(); ++i) {
        if (definition.GetElement(i)->GetAvailablePointData() == uiKind) ++nCount;
    }
    return nCount;
}

/// The position's class says what its type code does not: whether it is raw.
bool TakePosition(const PointDefinitionI& element, QsbRecordLayoutT& layout)
{
    const std::type_info& type = typeid(element);
    layout.bDouble =
        type == typeid(PointDefPositionC<double>) || type == typeid(PointDefPositionRawC<double>);
    layout.bRaw = type == typeid(PointDefPositionRawC<float>) || type == typeid(PointDefPositionRawC<double>);
    layout.tPositionBytes = element.GetSizeInBytes();
    return layout.bDouble || layout.bRaw || type == typeid(PointDefPositionC<float>);
}

bool IsKnownElement(const PointDefinitionI& element)
{
    const std::type_info& type = typeid(element);
    const std::type_info* const apKnown[] = {&typeid(PointDefIntensityC<std::int16_t>),
                                             &typeid(PointDefIntensityC<std::uint16_t>),
                                             &typeid(PointDefIntensityC<float>),
                                             &typeid(PointDefLevelOfNoiseC<std::uint8_t>),
                                             &typeid(PointDefLevelOfNoiseC<std::uint16_t>),
                                             &typeid(PointDefLevelOfNoiseC<float>),
                                             &typeid(PointDefGridC<std::uint16_t>),
                                             &typeid(PointDefGridC<std::uint32_t>),
                                             &typeid(PointDefColorC<std::uint8_t>)};
    return std::any_of(std::begin(apKnown), std::end(apKnown),
                       [&](const std::type_info* p) { return *p == type; });
}

QsbMovedElementT& MovedElement(QsbRecordLayoutT& layout, std::uint32_t uiKind)
{
    switch (uiKind) {
    case PD_INTENSITY:
        return layout.oIntensity;
    case PD_LEVEL_OF_NOISE:
        return layout.oNoise;
    case PD_GRID:
        return layout.oGrid;
    default:
        return layout.oColor;
    }
}

/// Moves `nBytes` from `nSource` to a field of `nField` bytes at `nTarget`, the rest of which becomes zero;
/// when encoding, back.
void Move(QsbRecordLayoutT& layout, std::size_t nSource, std::size_t nBytes, std::size_t nTarget,
          std::size_t nField)
{
    for (std::size_t i = 0; i < nField; ++i) {
        layout.aucShuffle[nTarget + i] = i < nBytes ? static_cast<std::uint8_t>(nSource + i) : s_ucZero;
        layout.aucWritten[nTarget + i] = s_ucWritten;
    }
    for (std::size_t i = 0; i < nBytes; ++i)
        layout.aucEncodeShuffle[nSource + i] = static_cast<std::uint8_t>(nTarget + i);
}

void MakeShuffle(QsbRecordLayoutT& layout)
{
    constexpr std::size_t nColor = 0;
    constexpr std::size_t nIntensity = offsetof(QsbPointC, intensity) - s_nTailOffset;
    constexpr std::size_t nNoise = offsetof(QsbPointC, levelOfNoise) - s_nTailOffset;
    constexpr std::size_t nGrid0 = offsetof(QsbPointC, gridIndex0) - s_nTailOffset;
    constexpr std::size_t nGrid1 = offsetof(QsbPointC, gridIndex1) - s_nTailOffset;

    std::fill(std::begin(layout.aucShuffle), std::end(layout.aucShuffle), s_ucZero);
    std::fill(std::begin(layout.aucEncodeShuffle), std::end(layout.aucEncodeShuffle), s_ucZero);
    if (layout.oIntensity.ucBytes != 0) Move(layout, layout.oIntensity.ucOffset, 2, nIntensity, 2);
    if (layout.oNoise.ucBytes != 0) Move(layout, layout.oNoise.ucOffset, layout.oNoise.ucBytes, nNoise, 2);
    if (layout.oColor.ucBytes != 0) {
        Move(layout, layout.oColor.ucOffset, 3, nColor, 3);
        layout.aucEncodeConstant[layout.oColor.ucOffset + 3] = s_ucFourthChannel;
    }
    if (layout.oGrid.ucBytes != 0) {
        const std::size_t nIndex = layout.oGrid.ucBytes / 2u;
        Move(layout, layout.oGrid.ucOffset, nIndex, nGrid0, 4);
        Move(layout, layout.oGrid.ucOffset + nIndex, nIndex, nGrid1, 4);
    }
}

} // namespace

QsbRecordLayoutT MakeRecordLayout(const PointDefinitionContainerI& definition)
{
    QsbRecordLayoutT layout;
    if (typeid(definition) != typeid(PointDefinitionC)) return layout;
    if (definition.GetCount() > s_nMaxElements) return layout;
    const PointDefinitionI* position = definition.GetElement(0);
    if (position == nullptr || CountKind(definition, PD_POSITION) != 1 || !TakePosition(*position, layout)) {
        return layout;
    }
    std::size_t tOffset = layout.tPositionBytes;
    for (std::size_t i = 1; i < definition.GetCount(); ++i) {
        const PointDefinitionI& element = *definition.GetElement(i);
        if (!IsKnownElement(element)) return layout;
        const std::uint32_t uiKind = element.GetAvailablePointData();
        const std::size_t tBytes = element.GetSizeInBytes();
        const std::size_t tBehind = tOffset - layout.tPositionBytes;
        // The shuffle sees sixteen bytes.
        const bool bMoves =
            !IsFloat(element) && tBehind + tBytes <= s_nTailBytes && CountKind(definition, uiKind) == 1;
        if (bMoves) {
            MovedElement(layout, uiKind) = {static_cast<std::uint8_t>(tBytes),
                                            static_cast<std::uint8_t>(tBehind)};
        } else {
            layout.vecLoops.push_back({uiKind, element.GetTypeCode(), tOffset});
        }
        tOffset += tBytes;
    }
    MakeShuffle(layout);
    layout.tRecordBytes = tOffset;
    return layout;
}

} // namespace SIO
