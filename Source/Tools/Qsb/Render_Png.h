// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes a picture as a PNG file, row by row: 8 bits each of red, green, blue and opacity.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Tool {

/// Fills a row of `width` times four bytes with line `y` of the picture.
using PngRowT = std::function<void(std::uint32_t y, std::vector<std::uint8_t>& row)>;

/// Creates or empties the file at `path`. ToolErrorC with s_iFailed, naming `name`, when it cannot be
/// written; what `fill` throws comes through. The file is then of no use.
void WritePng(const std::string& path, const std::string& name, std::uint32_t width, std::uint32_t height,
              const PngRowT& fill);

} // namespace Tool
