// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The names that people give to the encodings of a point's elements ("float", "uint16"), and the file's type
// codes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tool {

/// Names of the encodings of this kind of element (PointDataKindT), smallest first; "none" comes first for
/// the kinds that a scan may lack.
std::vector<std::string> EncodingNames(std::uint32_t uiKind);

/// The type code of a name, 0 for "none". The name is one of EncodingNames.
std::uint32_t EncodingOf(std::uint32_t uiKind, const std::string& name);

/// The name of a type code; "none" for 0 and codes that this kind does not have.
std::string EncodingName(std::uint32_t uiKind, std::uint32_t uiType);

} // namespace Tool
