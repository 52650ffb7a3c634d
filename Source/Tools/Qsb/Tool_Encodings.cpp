// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One table for both ways.
#include "Tools/Qsb/Tool_Encodings.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_QsbFileFormat.h"

namespace Tool {

namespace {

using namespace SIO::QsbFormat;

struct EncodingC
{
    std::uint32_t uiKind;
    const char* pszName;
    std::uint32_t uiType;
};

constexpr EncodingC s_aoEncodings[] = {
    {SIO::PD_POSITION, "float", s_uiTypeFloatTriple},
    {SIO::PD_POSITION, "double", s_uiTypeDoubleTriple},
    {SIO::PD_INTENSITY, "uint16", s_uiTypeUInt16},
    {SIO::PD_INTENSITY, "int16", s_uiTypeInt16},
    {SIO::PD_INTENSITY, "float", s_uiTypeFloat},
    {SIO::PD_LEVEL_OF_NOISE, "none", 0},
    {SIO::PD_LEVEL_OF_NOISE, "uint8", s_uiTypeUInt8},
    {SIO::PD_LEVEL_OF_NOISE, "uint16", s_uiTypeUInt16},
    {SIO::PD_LEVEL_OF_NOISE, "float", s_uiTypeFloat},
    {SIO::PD_GRID, "none", 0},
    {SIO::PD_GRID, "uint16", s_uiTypeUInt16Pair},
    {SIO::PD_GRID, "uint32", s_uiTypeUInt32Pair},
    {SIO::PD_COLOR, "none", 0},
    {SIO::PD_COLOR, "uint8", s_uiTypeColor},
};

} // namespace

std::vector<std::string> EncodingNames(std::uint32_t uiKind)
{
    std::vector<std::string> names;
    for (const EncodingC& encoding : s_aoEncodings) {
        if (encoding.uiKind == uiKind) names.emplace_back(encoding.pszName);
    }
    return names;
}

std::uint32_t EncodingOf(std::uint32_t uiKind, const std::string& name)
{
    for (const EncodingC& encoding : s_aoEncodings) {
        if (encoding.uiKind == uiKind && name == encoding.pszName) return encoding.uiType;
    }
    return 0;
}

std::string EncodingName(std::uint32_t uiKind, std::uint32_t uiType)
{
    for (const EncodingC& encoding : s_aoEncodings) {
        if (encoding.uiKind == uiKind && uiType == encoding.uiType) return encoding.pszName;
    }
    return "none";
}

} // namespace Tool
