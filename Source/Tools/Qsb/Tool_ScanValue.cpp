// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Values and the encodings of the elements that they are part of.
#include "Tools/Qsb/Tool_ScanValue.h"

#include "Tools/Qsb/Tool_Encodings.h"

#include <utility>

namespace Tool {

namespace {

/// The kind of the element, and its type code in a format.
std::pair<SIO::PointDataKindT, std::uint32_t> ElementOf(const ScanFormatC& format, ScanValueT eValue)
{
    switch (eValue) {
    case ScanValueT::X:
    case ScanValueT::Y:
    case ScanValueT::Z:
        return {SIO::PD_POSITION, format.uiPosition};
    case ScanValueT::Intensity:
        return {SIO::PD_INTENSITY, format.uiIntensity};
    case ScanValueT::Noise:
        return {SIO::PD_LEVEL_OF_NOISE, format.uiNoise};
    case ScanValueT::Row:
    case ScanValueT::Column:
        return {SIO::PD_GRID, format.uiGrid};
    default:
        return {SIO::PD_COLOR, format.uiColor};
    }
}

} // namespace

SIO::PointDataKindT KindOf(ScanValueT eValue)
{
    return ElementOf({}, eValue).first;
}

std::size_t IndexInElement(ScanValueT eValue)
{
    switch (eValue) {
    case ScanValueT::Y:
    case ScanValueT::Green:
    case ScanValueT::Column:
        return 1;
    case ScanValueT::Z:
    case ScanValueT::Blue:
        return 2;
    default:
        return 0;
    }
}

bool IsStored(const ScanFormatC& format, ScanValueT eValue)
{
    return ElementOf(format, eValue).second != 0;
}

NumberTypeT StoredTypeOf(const ScanFormatC& format, ScanValueT eValue)
{
    const auto [eKind, uiTypeCode] = ElementOf(format, eValue);
    return TypeNamed(EncodingName(eKind, uiTypeCode)).value_or(NumberTypeT::Double);
}

} // namespace Tool
