// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One row per encoding.
#include "Tools/Qsb/Tool_Encoding.h"

#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>
#include <array>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

struct EncodingRowT
{
    SIO::PointDataKindT eKind;
    std::uint32_t uiTypeCode;
    NumberTypeT eType;
};

constexpr std::array<EncodingRowT, 11> s_aRows = {{
    {SIO::PD_POSITION, Format::s_uiTypeFloatTriple, NumberTypeT::Float},
    {SIO::PD_POSITION, Format::s_uiTypeDoubleTriple, NumberTypeT::Double},
    {SIO::PD_INTENSITY, Format::s_uiTypeInt16, NumberTypeT::Int16},
    {SIO::PD_INTENSITY, Format::s_uiTypeUInt16, NumberTypeT::UInt16},
    {SIO::PD_INTENSITY, Format::s_uiTypeFloat, NumberTypeT::Float},
    {SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeUInt8, NumberTypeT::UInt8},
    {SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeUInt16, NumberTypeT::UInt16},
    {SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeFloat, NumberTypeT::Float},
    {SIO::PD_GRID, Format::s_uiTypeUInt16Pair, NumberTypeT::UInt16},
    {SIO::PD_GRID, Format::s_uiTypeUInt32Pair, NumberTypeT::UInt32},
    {SIO::PD_COLOR, Format::s_uiTypeColor, NumberTypeT::UInt8},
}};

} // namespace

std::uint32_t TypeCodeOf(SIO::PointDataKindT eKind, NumberTypeT eType) noexcept
{
    for (const EncodingRowT& row : s_aRows) {
        if (row.eKind == eKind && row.eType == eType) return row.uiTypeCode;
    }
    return 0;
}

NumberTypeT NumberTypeOf(std::uint32_t uiTypeCode) noexcept
{
    // A type code that several kinds have stands for the same number type in all of them.
    const auto found = std::find_if(s_aRows.begin(), s_aRows.end(),
                                    [&](const EncodingRowT& row) { return row.uiTypeCode == uiTypeCode; });
    return found == s_aRows.end() ? NumberTypeT::Double : found->eType;
}

std::vector<std::string> EncodingNames(SIO::PointDataKindT eKind)
{
    std::vector<std::string> names;
    for (const EncodingRowT& row : s_aRows) {
        if (row.eKind == eKind) names.emplace_back(NameOf(row.eType));
    }
    return names;
}

std::optional<NumberTypeT> EncodingNamed(SIO::PointDataKindT eKind, const std::string& name)
{
    for (const EncodingRowT& row : s_aRows) {
        if (row.eKind == eKind && NameOf(row.eType) == name) return row.eType;
    }
    return std::nullopt;
}

} // namespace Tool
