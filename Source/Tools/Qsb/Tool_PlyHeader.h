// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The header of a PLY file: its elements with their properties in file order, and what the command's own
// comments say of the scan (Docs/tool.md). Read from bytes that are not trusted: numbers of elements and
// properties are bounded, and counts are what the file claims, to be compared with its size by whoever reads
// on.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

class TextInputC;

struct PlyPropertyC
{
    std::string strName;
    NumberTypeT eType = NumberTypeT::Float;
    std::optional<NumberTypeT> oListCount; ///< type of a list's length; none for a property that is no list
};

struct PlyElementC
{
    std::string strName;
    std::uint64_t ullCount = 0;
    std::vector<PlyPropertyC> vecProperties;

    bool HasLists() const noexcept;

    /// Bytes of one record in a binary file, lists counted as empty.
    std::uint64_t GetLeastBytes() const noexcept;
};

enum class PlyFormatT
{
    Ascii,
    LittleEndian,
    BigEndian,
};

struct PlyHeaderC
{
    PlyFormatT eFormat = PlyFormatT::Ascii;
    std::vector<PlyElementC> vecElements;
    ScanFrameC oScan;
    std::uint64_t ullRemarks = 0; ///< comments that are not the command's own
};

/// Reads the header and leaves `input` at the first byte of the data. ToolErrorC with s_iDamaged and the
/// line.
PlyHeaderC ReadPlyHeader(TextInputC& input);

/// The comment lines for what is known of a scan.
std::string PlyScanComments(const ScanFrameC& scan);

} // namespace Tool
