// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The names.
#include "Tools/Qsb/Tool_FormatNames.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Tools/Qsb/Tool_Encodings.h"

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

std::string NameOfElement(std::uint32_t uiKind, std::uint32_t uiTypeCode)
{
    const std::string encoding = EncodingName(uiKind, uiTypeCode);
    switch (uiKind) {
    case SIO::PD_POSITION:
        return "3 x " + encoding;
    case SIO::PD_GRID:
        return "2 x " + encoding;
    case SIO::PD_COLOR:
        return "4 x " + encoding;
    default:
        return encoding;
    }
}

std::string NameOfVersion(std::uint32_t uiVersion)
{
    return fmt::format("{}.{}", uiVersion >> 16, uiVersion & 0xFFFF);
}

} // namespace Tool
