// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The numbers of a point one by one, as interchange files know them: each is a column with a name, where the
// scan file knows elements of several numbers. Their order is the order in which columns are written.
#pragma once

#include "Sio/SIO_QsbPointDefinition.h"
#include "Tools/Qsb/Tool_NumberType.h"
#include "Tools/Qsb/Tool_ScanFormat.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace Tool {

enum class ScanValueT : std::size_t
{
    X,
    Y,
    Z,
    Intensity,
    Noise,
    Red,
    Green,
    Blue,
    Row,
    Column,
};

inline constexpr std::size_t s_nScanValues = 10;

/// The column names that the command writes.
inline constexpr std::array<std::string_view, s_nScanValues> s_astrScanValueNames = {
    "x", "y", "z", "intensity", "noise", "red", "green", "blue", "row", "col"};

constexpr std::string_view NameOf(ScanValueT eValue)
{
    return s_astrScanValueNames[static_cast<std::size_t>(eValue)];
}

/// Whether points of this format have the value.
bool IsStored(const ScanFormatC& format, ScanValueT eValue);

/// The type of number that a stored value is.
NumberTypeT StoredTypeOf(const ScanFormatC& format, ScanValueT eValue);

/// The kind of the element that the value is part of.
SIO::PointDataKindT KindOf(ScanValueT eValue);

/// Which of its element's numbers the value is.
std::size_t IndexInElement(ScanValueT eValue);

/// The value in a point.
inline double& ValueIn(ScanPointC& point, ScanValueT eValue) noexcept
{
    switch (eValue) {
    case ScanValueT::X:
        return point.x;
    case ScanValueT::Y:
        return point.y;
    case ScanValueT::Z:
        return point.z;
    case ScanValueT::Intensity:
        return point.dIntensity;
    case ScanValueT::Noise:
        return point.dNoise;
    case ScanValueT::Red:
        return point.adColor[0];
    case ScanValueT::Green:
        return point.adColor[1];
    case ScanValueT::Blue:
        return point.adColor[2];
    case ScanValueT::Row:
        return point.adGrid[0];
    default:
        return point.adGrid[1];
    }
}

inline double ValueIn(const ScanPointC& point, ScanValueT eValue) noexcept
{
    return ValueIn(const_cast<ScanPointC&>(point), eValue);
}

} // namespace Tool
