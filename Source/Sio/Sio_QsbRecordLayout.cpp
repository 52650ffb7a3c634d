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

// Where the fields lie in a record's tail.
constexpr std::size_t s_nColor = 0;
constexpr std::size_t s_nIntensity = offsetof(QsbPointC, intensity) - s_nTailOffset;
constexpr std::size_t s_nNoise = offsetof(QsbPointC, levelOfNoise) - s_nTailOffset;
constexpr std::size_t s_nGrid0 = offsetof(QsbPointC, gridIndex0) - s_nTailOffset;
constexpr std::size_t s_nGrid1 = offsetof(QsbPointC, gridIndex1) - s_nTailOffset;

/// Moves `nBytes` from `nSource` to a field of `nField` bytes at `nTarget`, the rest of which becomes zero.
void Move(QsbRecordLayoutT& layout, std::size_t nSource, std::size_t nBytes, std::size_t nTarget,
          std::size_t nField)
{
    for (std::size_t i = 0; i < nField; ++i) {
        layout.aucShuffle[nTarget + i] = i < nBytes ? static_cast<std::uint8_t>(nSource + i) : s_ucZero;
        layout.aucWritten[nTarget + i] = s_ucWritten;
    }
}

/// When encoding, moves `nBytes` of the field at `nField` to `nStored`.
void MoveBack(QsbRecordLayoutT& layout, std::size_t nField, std::size_t nBytes, std::size_t nStored)
{
    for (std::size_t i = 0; i < nBytes; ++i)
        layout.aucEncodeShuffle[nStored + i] = static_cast<std::uint8_t>(nField + i);
}

/// An integer element of `nBytes` at `nStored` behind the position. It takes its bytes of the record however
/// many others of its kind there are.
void EncodeByShuffle(QsbRecordLayoutT& layout, std::uint32_t uiKind, std::size_t nBytes, std::size_t nStored)
{
    switch (uiKind) {
    case PD_INTENSITY:
        return MoveBack(layout, s_nIntensity, nBytes, nStored);
    case PD_LEVEL_OF_NOISE:
        return MoveBack(layout, s_nNoise, nBytes, nStored);
    case PD_GRID:
        MoveBack(layout, s_nGrid0, nBytes / 2, nStored);
        return MoveBack(layout, s_nGrid1, nBytes / 2, nStored + nBytes / 2);
    default:
        MoveBack(layout, s_nColor, 3, nStored);
        layout.aucEncodeConstant[nStored + 3] = s_ucFourthChannel;
    }
}

void MakeShuffle(QsbRecordLayoutT& layout)
{
    std::fill(std::begin(layout.aucShuffle), std::end(layout.aucShuffle), s_ucZero);
    if (layout.oIntensity.ucBytes != 0) Move(layout, layout.oIntensity.ucOffset, 2, s_nIntensity, 2);
    if (layout.oNoise.ucBytes != 0) Move(layout, layout.oNoise.ucOffset, layout.oNoise.ucBytes, s_nNoise, 2);
    if (layout.oColor.ucBytes != 0) Move(layout, layout.oColor.ucOffset, 3, s_nColor, 3);
    if (layout.oGrid.ucBytes != 0) {
        const std::size_t nIndex = layout.oGrid.ucBytes / 2u;
        Move(layout, layout.oGrid.ucOffset, nIndex, s_nGrid0, 4);
        Move(layout, layout.oGrid.ucOffset + nIndex, nIndex, s_nGrid1, 4);
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
    std::fill(std::begin(layout.aucEncodeShuffle), std::end(layout.aucEncodeShuffle), s_ucZero);
    std::size_t tOffset = layout.tPositionBytes;
    for (std::size_t i = 1; i < definition.GetCount(); ++i) {
        const PointDefinitionI& element = *definition.GetElement(i);
        if (!IsKnownElement(element)) return layout;
        const std::uint32_t uiKind = element.GetAvailablePointData();
        const std::size_t tBytes = element.GetSizeInBytes();
        const std::size_t tBehind = tOffset - layout.tPositionBytes;
        // The shuffle sees sixteen bytes.
        const bool bShuffled = !IsFloat(element) && tBehind + tBytes <= s_nTailBytes;
        if (bShuffled) EncodeByShuffle(layout, uiKind, tBytes, tBehind);
        if (bShuffled && CountKind(definition, uiKind) == 1) {
            MovedElement(layout, uiKind) = {static_cast<std::uint8_t>(tBytes),
                                            static_cast<std::uint8_t>(tBehind)};
        } else {
            layout.vecLoops.push_back({uiKind, element.GetTypeCode(), tOffset, bShuffled});
        }
        tOffset += tBytes;
    }
    MakeShuffle(layout);
    layout.tRecordBytes = tOffset;
    return layout;
}

} // namespace SIO
