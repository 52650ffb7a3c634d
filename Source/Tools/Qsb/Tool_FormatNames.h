// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the numbers of the file format are called in the tool's output. Names are stable: scripts may compare
// them.
#pragma once

#include <cstdint>
#include <string>

namespace Tool {

/// "file header", "point cloud", "zeros" or "unknown", for a block identifier.
const char* NameOfBlock(std::uint32_t uiId);

/// "position", "intensity", "noise", "grid" or "color", for a kind of element.
const char* NameOfKind(std::uint32_t uiKind);

/// The encoding of an element with how many numbers it has, for example "3 x float".
std::string NameOfElement(std::uint32_t uiKind, std::uint32_t uiTypeCode);

/// A format version as people write it: "2.0" for 0x00020000.
std::string NameOfVersion(std::uint32_t uiVersion);

} // namespace Tool
