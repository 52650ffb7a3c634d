// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The names.
#include "Tools/Qsb/Tool_FormatNames.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <fmt/format.h>

namespace Tool {

namespace Format = SIO::QsbFormat;

const char* NameOfBlock(std::uint32_t uiId)
{
    switch (uiId) {
    case Format::s_uiFileHeaderId:
        return "file header";
    case Format::s_uiPointCloudId:
    case Format::s_uiCountedPointCloudId:
        return "point cloud";
    case 0:
        return "zeros";
    default:
        return "unknown";
    }
}

const char* NameOfKind(std::uint32_t uiKind)
{
    switch (uiKind) {
    case SIO::PD_POSITION:
        return "position";
    case SIO::PD_INTENSITY:
        return "intensity";
    case SIO::PD_LEVEL_OF_NOISE:
        return "noise";
    case SIO::PD_GRID:
        return "grid";
    default:
        return "color";
    }
}

const char* NameOfEncoding(std::uint32_t uiTypeCode)
{
    switch (uiTypeCode) {
    case Format::s_uiTypeUInt8:
        return "uint8";
    case Format::s_uiTypeInt16:
        return "int16";
    case Format::s_uiTypeUInt16:
        return "uint16";
    case Format::s_uiTypeColor:
        return "4 x uint8";
    case Format::s_uiTypeFloat:
        return "float";
    case Format::s_uiTypeUInt16Pair:
        return "2 x uint16";
    case Format::s_uiTypeUInt32Pair:
        return "2 x uint32";
    case Format::s_uiTypeFloatTriple:
        return "3 x float";
    default:
        return "3 x double";
    }
}

std::string NameOfVersion(std::uint32_t uiVersion)
{
    return fmt::format("{}.{}", uiVersion >> 16, uiVersion & 0xFFFF);
}

} // namespace Tool
